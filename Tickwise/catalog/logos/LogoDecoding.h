#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace tickwise {

/// The largest width and height of a decoded logo, in pixels: the largest logo on a screen of triple density.
inline constexpr int logoPixels = 96;

/// The picture in the bytes, scaled down to at most `logoPixels`, premultiplied; of an animation its first frame.
///
/// Reads PNG, JPEG, WebP, GIF, BMP and ICO, told apart by their content, never drawings. None for anything else, for
/// what is damaged, and for what would hold the thread for longer than a frame of the screen, such as every picture
/// with a side of more than `mostPixels`.
std::optional<QImage> decodeLogo(const QByteArray &bytes);

} // namespace tickwise
