#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace tickwise {

/// The largest width and height of a decoded logo, in pixels: the largest logo on a screen of triple density.
inline constexpr int logoPixels = 96;

/// The picture in the bytes, scaled down to at most `logoPixels`, premultiplied; of an animation its first frame, of an
/// icon file its largest picture.
///
/// Reads PNG, JPEG, WebP, GIF, BMP and ICO, told apart by their content, never drawings. None for anything else, for a
/// damaged or truncated file, and for a side of more than 2048 pixels. A file on which the decoder computes for 250 ms
/// is given up and logged.
std::optional<QImage> decodeLogo(const QByteArray &bytes);

} // namespace tickwise
