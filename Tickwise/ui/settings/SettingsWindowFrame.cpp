#include "ui/settings/SettingsWindowFrame.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace tickwise {

namespace {

constexpr int coordinateLimit = 1 << 20; ///< no desktop is larger

qint64 sharedArea(const QRect &a, const QRect &b)
{
    const QRect shared = a & b;
    return qint64(shared.width()) * shared.height();
}

/// How far the rectangles lie apart.
double gapBetween(const QRect &a, const QRect &b)
{
    const int x = std::max({0, a.left() - b.right(), b.left() - a.right()});
    const int y = std::max({0, a.top() - b.bottom(), b.top() - a.bottom()});
    return std::hypot(x, y);
}

/// The screen that shows the largest part of the frame; where none shows any of it, the nearest.
const QRect &closestScreen(const QRect &frame, const std::vector<QRect> &screens)
{
    const auto rank = [&frame](const QRect &screen) {
        return std::pair(-sharedArea(frame, screen), gapBetween(frame, screen));
    };
    return *std::min_element(screens.begin(), screens.end(),
                             [&](const QRect &a, const QRect &b) { return rank(a) < rank(b); });
}

int clampedStart(int start, int length, int low, int lengthOfAll)
{
    return std::max(low, std::min(start, low + lengthOfAll - length));
}

} // namespace

QSize clampedSettingsWindowSize(QSize size)
{
    return size.expandedTo(settingsWindowMinimum).boundedTo(settingsWindowMaximum);
}

QRect restoredSettingsWindowFrame(const std::optional<QRect> &saved, const std::vector<QRect> &screens)
{
    QRect frame(saved ? saved->topLeft() : QPoint(),
                clampedSettingsWindowSize(saved ? saved->size() : settingsWindowSize));
    if (screens.empty())
        return frame;
    if (!saved) {
        frame.moveCenter(screens.front().center());
        return frame;
    }
    const bool isOnAScreen =
        std::any_of(screens.begin(), screens.end(), [&](const QRect &screen) { return screen.contains(frame); });
    if (isOnAScreen)
        return frame;
    const QRect &screen = closestScreen(frame, screens);
    frame.moveLeft(clampedStart(frame.left(), frame.width(), screen.left(), screen.width()));
    frame.moveTop(clampedStart(frame.top(), frame.height(), screen.top(), screen.height()));
    return frame;
}

QByteArray encodeWindowFrame(const QRect &frame)
{
    const nlohmann::ordered_json array{frame.x(), frame.y(), frame.width(), frame.height()};
    return QByteArray::fromStdString(array.dump());
}

std::optional<QRect> decodeWindowFrame(const QByteArray &stored)
{
    const auto json = nlohmann::ordered_json::parse(stored.begin(), stored.end(), nullptr, false);
    if (!json.is_array() || json.size() != 4)
        return std::nullopt;
    std::array<int, 4> values{};
    for (size_t i = 0; i < values.size(); ++i) {
        if (!json[i].is_number())
            return std::nullopt;
        const double value = json[i].get<double>();
        if (!(value >= -coordinateLimit && value <= coordinateLimit))
            return std::nullopt;
        values.at(i) = static_cast<int>(value);
    }
    if (values[2] <= 0 || values[3] <= 0)
        return std::nullopt;
    return QRect(values[0], values[1], values[2], values[3]);
}

} // namespace tickwise
