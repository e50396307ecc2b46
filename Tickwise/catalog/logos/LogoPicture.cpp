#include "catalog/logos/LogoPicture.h"

#include "catalog/logos/ByteFields.h"

namespace tickwise {

namespace {

// A frame of the screen takes 16 ms. The estimates are measured in bench/LogoBench.cpp on the pictures that take
// longest; what is left of the frame is for slower machines.
constexpr std::chrono::milliseconds longestDecoding{14};

constexpr double nanosecondsPerBmpPixel = 1.5;
constexpr double nanosecondsPerBmpByte = 10;
constexpr double nanosecondsPerWebPPixel = 2.6;
constexpr double nanosecondsPerWebPByte = 26;

std::chrono::nanoseconds estimate(QSize size, double perPixel, qsizetype bytes, double perByte)
{
    const double pixels = double(size.width()) * double(size.height());
    return std::chrono::nanoseconds(qint64(pixels * perPixel + double(bytes) * perByte));
}

std::optional<LogoPicture> affordable(LogoPicture picture)
{
    return isAffordable(picture) ? std::optional(std::move(picture)) : std::nullopt;
}

/// The size in the header of a WebP file's first chunk: lossy, lossless or extended.
QSize webPSize(QByteArrayView bytes)
{
    const QByteArrayView chunk = bytes.sliced(std::min(qsizetype(12), bytes.size()));
    if (chunk.startsWith("VP8 "))
        return {littleEndian<quint16>(chunk, 14) & 0x3fff, littleEndian<quint16>(chunk, 16) & 0x3fff};
    const quint32 packed = littleEndian<quint32>(chunk, 9);
    if (chunk.startsWith("VP8L"))
        return {int(packed & 0x3fff) + 1, int((packed >> 14) & 0x3fff) + 1};
    if (chunk.startsWith("VP8X"))
        return {int(littleEndian<quint32>(chunk, 11) >> 8) + 1, int(littleEndian<quint32>(chunk, 14) >> 8) + 1};
    return {};
}

} // namespace

bool isAffordable(const LogoPicture &picture)
{
    return !picture.size.isEmpty() && picture.size.width() <= mostPixels && picture.size.height() <= mostPixels &&
           picture.cost <= longestDecoding;
}

std::optional<LogoPicture> inspectBmp(const QByteArray &bytes)
{
    constexpr quint32 oldHeaderLength = 12;
    constexpr quint32 runLength8 = 1;
    constexpr quint32 runLength4 = 2;
    const bool old = littleEndian<quint32>(bytes, 14) == oldHeaderLength;
    const qint64 width = old ? littleEndian<quint16>(bytes, 18) : littleEndian<qint32>(bytes, 18);
    const qint64 height = std::abs(qint64(old ? littleEndian<quint16>(bytes, 20) : littleEndian<qint32>(bytes, 22)));
    if (width <= 0 || height <= 0 || width > mostPixels || height > mostPixels)
        return std::nullopt;
    const qint64 bitsPerPixel = littleEndian<quint16>(bytes, old ? 24 : 28);
    const quint32 compression = old ? 0 : littleEndian<quint32>(bytes, 30);
    const bool runLength = compression == runLength8 || compression == runLength4;
    const qint64 rowBytes = (width * bitsPerPixel + 31) / 32 * 4;
    if (!runLength && bytes.size() < littleEndian<quint32>(bytes, 10) + rowBytes * height)
        return std::nullopt;
    const QSize size{int(width), int(height)};
    return affordable(
        {"bmp", size, estimate(size, nanosecondsPerBmpPixel, bytes.size(), nanosecondsPerBmpByte), bytes});
}

std::optional<LogoPicture> inspectWebP(const QByteArray &bytes)
{
    constexpr qsizetype fileOverhead = 8;
    if (bytes.size() < fileOverhead + qsizetype(littleEndian<quint32>(bytes, 4)))
        return std::nullopt;
    const QSize size = webPSize(bytes);
    return affordable(
        {"webp", size, estimate(size, nanosecondsPerWebPPixel, bytes.size(), nanosecondsPerWebPByte), bytes});
}

std::optional<LogoPicture> inspectLogo(const QByteArray &bytes)
{
    using namespace std::string_view_literals;
    const auto startsWith = [&](std::string_view magic) {
        return bytes.startsWith(QByteArrayView(magic.data(), qsizetype(magic.size())));
    };
    if (startsWith("\x89PNG\r\n\x1a\n"sv))
        return inspectPng(bytes);
    if (startsWith("\xff\xd8\xff"sv))
        return inspectJpeg(bytes);
    if (startsWith("GIF87a"sv) || startsWith("GIF89a"sv))
        return inspectGif(bytes);
    if (startsWith("RIFF"sv) && bytes.size() > 12 && QByteArrayView(bytes).sliced(8, 4) == QByteArrayView("WEBP"))
        return inspectWebP(bytes);
    if (startsWith("BM"sv))
        return inspectBmp(bytes);
    if (startsWith("\0\0\1\0"sv))
        return inspectIcon(bytes);
    return std::nullopt;
}

} // namespace tickwise
