#pragma once

#include <QByteArray>
#include <QSize>

#include <chrono>
#include <optional>

namespace tickwise {

/// A raster picture by its header, before any pixel is decoded.
struct LogoPicture
{
    QByteArray format;                ///< the decoder's name: "png", "jpeg", "webp", "gif", "bmp" or "ico"
    QSize size;                       ///< pixels
    std::chrono::nanoseconds cost{0}; ///< about what decoding takes at worst
    QByteArray bytes; ///< the picture alone: no texts, profiles or further pictures, which only take a decoder's time
};

/// The largest width and height of a picture, in pixels.
inline constexpr int mostPixels = 2048;

/// True when the picture's size is within `mostPixels` and decoding it does not hold the thread for longer than a
/// frame.
bool isAffordable(const LogoPicture &picture);

/// Finds out by the content what picture the bytes hold; none for anything else, for one that is not affordable, and
/// for one that is cut short or holds more than its header says.
std::optional<LogoPicture> inspectLogo(const QByteArray &bytes);

/// The parts of `inspectLogo`, each for bytes that start like its format.
std::optional<LogoPicture> inspectPng(const QByteArray &bytes);
std::optional<LogoPicture> inspectJpeg(const QByteArray &bytes);
std::optional<LogoPicture> inspectGif(const QByteArray &bytes);
std::optional<LogoPicture> inspectBmp(const QByteArray &bytes);
std::optional<LogoPicture> inspectWebP(const QByteArray &bytes);
/// The largest picture of the icon: as an icon of its own, or what `inspectPng` makes of it.
std::optional<LogoPicture> inspectIcon(const QByteArray &bytes);

} // namespace tickwise
