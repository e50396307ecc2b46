#pragma once

#include <QByteArray>
#include <QRect>

#include <optional>
#include <vector>

namespace tickwise {

/// The limits and the first size of the settings window's content, in logical pixels.
inline constexpr QSize settingsWindowSize(786, 500);
inline constexpr QSize settingsWindowMinimum(600, 420);
inline constexpr QSize settingsWindowMaximum(800, 500);

/// The size brought inside the limits.
QSize clampedSettingsWindowSize(QSize size);

/// The frame that a window opens with: the saved one inside the limits of its size and, where no screen has all of it,
/// moved into the one that has the largest part, or into the nearest where none has any; without a saved one in the
/// middle of the first screen. `screens` are the areas without panels.
QRect restoredSettingsWindowFrame(const std::optional<QRect> &saved, const std::vector<QRect> &screens);

/// A frame as it is stored: a JSON array of x, y, width and height.
QByteArray encodeWindowFrame(const QRect &frame);
/// None for what is no such array.
std::optional<QRect> decodeWindowFrame(const QByteArray &stored);

} // namespace tickwise
