#pragma once

#include <QByteArray>
#include <QImage>

namespace tickwise::test {

/// A circle on a transparent ground with a letter, as logos are.
QImage logoLikeImage(int side);

/// Every pixel another color, always the same ones for the same side.
QImage noiseImage(int side);

/// The image written by Qt's encoder of that format; `quality` from 0 to 100.
QByteArray encoded(const QImage &image, const char *format, int quality = -1);

/// The image as a JPEG file of several scans.
QByteArray progressiveJpeg(const QImage &image, int quality);

/// One chunk of a PNG file with its length and checksum.
QByteArray pngChunk(const QByteArray &type, const QByteArray &content);

struct PngHeader
{
    quint32 width = 1;
    quint32 height = 1;
    quint8 bitDepth = 8;
    quint8 colorType = 6; ///< red, green, blue and alpha
    quint8 interlace = 0;
};

/// The signature and the first chunk.
QByteArray pngStart(const PngHeader &header);

/// A PNG file whose rows, filter types included, are these bytes.
QByteArray png(const PngHeader &header, const QByteArray &rows);

/// A PNG file of transparent pixels: `filter` is the filter type of every row.
QByteArray blankPng(const PngHeader &header, char filter = 0);

/// A GIF file: a screen of that size and one frame with these codes' bits for each color of `colors`.
QByteArray gif(int width, int height, const std::vector<QRgb> &colors);

/// The codes of a one-colored picture, as short as the format allows.
QByteArray flatGifData(qint64 pixels);

/// A GIF file of one frame with the given compressed data.
QByteArray gifOfData(int width, int height, const QByteArray &data);

/// A BMP file with one run of a color after the other, 8 bits a pixel.
QByteArray runLengthBmp(int width, int height);

/// An icon file of these pictures: PNG files and bitmaps of an icon.
struct IconPicture
{
    int side = 0; ///< as the directory says
    QByteArray content;
};
QByteArray icon(const std::vector<IconPicture> &pictures);

/// A one-colored bitmap as it stands in an icon, 32 bits a pixel.
QByteArray iconBitmap(int side, QRgb color);

/// The bytes with as many zeros behind them as the size wants.
QByteArray paddedTo(qsizetype size, QByteArray bytes);

} // namespace tickwise::test
