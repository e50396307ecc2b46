#include "doubles/LogoPictures.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QRandomGenerator>
#include <QtEndian>

#include <zlib.h>

namespace tickwise::test {

namespace {

template<class T>
void appendBig(QByteArray &bytes, T value)
{
    const T stored = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
}

template<class T>
void appendLittle(QByteArray &bytes, T value)
{
    const T stored = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
}

QByteArray written(const QImage &image, const char *format, int quality, bool progressive)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(progressive);
    if (!writer.write(image))
        qFatal("%s cannot be written: %s", format, qPrintable(writer.errorString()));
    return bytes;
}

/// Packs codes of growing width, the first bit lowest.
class CodeWriter
{
public:
    void add(int code, int width)
    {
        m_bits |= quint32(code) << m_count;
        for (m_count += width; m_count >= 8; m_count -= 8) {
            m_bytes.append(char(m_bits & 0xff));
            m_bits >>= 8;
        }
    }
    QByteArray take()
    {
        if (m_count > 0)
            m_bytes.append(char(m_bits & 0xff));
        return m_bytes;
    }

private:
    QByteArray m_bytes;
    quint32 m_bits = 0;
    int m_count = 0;
};

constexpr int clearCode = 256;
constexpr int endCode = 257;

int channels(quint8 colorType)
{
    return colorType == 6 ? 4 : colorType == 2 ? 3 : colorType == 4 ? 2 : 1;
}

qsizetype rowLength(const PngHeader &header, quint32 width)
{
    return (qsizetype(width) * header.bitDepth * channels(header.colorType) + 7) / 8;
}

QByteArray blankRows(const PngHeader &header, quint32 width, quint32 height, char filter)
{
    if (width == 0)
        return {};
    const QByteArray row = QByteArray(1, filter) + QByteArray(rowLength(header, width), '\0');
    return row.repeated(height);
}

} // namespace

QImage logoLikeImage(int side)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(214, 51, 58));
    painter.setPen(QPen(Qt::white, side / 16.0));
    painter.drawEllipse(QRectF(0, 0, side, side).marginsRemoved(QMarginsF(side, side, side, side) / 20));
    painter.drawLine(side / 3, side / 3, side * 2 / 3, side * 2 / 3);
    return image;
}

QImage noiseImage(int side)
{
    QImage image(side, side, QImage::Format_ARGB32);
    QRandomGenerator random(1);
    for (int y = 0; y < side; ++y)
        random.fillRange(reinterpret_cast<quint32 *>(image.scanLine(y)), side);
    return image;
}

QByteArray encoded(const QImage &image, const char *format, int quality)
{
    return written(image, format, quality, false);
}

QByteArray progressiveJpeg(const QImage &image, int quality)
{
    return written(image, "jpeg", quality, true);
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &content)
{
    QByteArray chunk;
    appendBig<quint32>(chunk, quint32(content.size()));
    const QByteArray checked = type + content;
    chunk += checked;
    appendBig<quint32>(chunk, quint32(crc32(0, reinterpret_cast<const Bytef *>(checked.data()), uInt(checked.size()))));
    return chunk;
}

QByteArray pngStart(const PngHeader &header)
{
    QByteArray content;
    appendBig(content, header.width);
    appendBig(content, header.height);
    for (const quint8 field : {header.bitDepth, header.colorType, quint8(0), quint8(0), header.interlace})
        content.append(char(field));
    return QByteArray("\x89PNG\r\n\x1a\n") + pngChunk("IHDR", content);
}

QByteArray png(const PngHeader &header, const QByteArray &rows)
{
    constexpr int lengthBytes = 4; // Qt's own, before the zlib stream
    return pngStart(header) + pngChunk("IDAT", qCompress(rows, 9).mid(lengthBytes)) + pngChunk("IEND", {});
}

QByteArray blankPng(const PngHeader &header, char filter)
{
    if (header.interlace == 0)
        return png(header, blankRows(header, header.width, header.height, filter));
    const quint32 w = header.width;
    const quint32 h = header.height;
    const std::pair<quint32, quint32> passes[] = {{(w + 7) / 8, (h + 7) / 8},
                                                  {(w + 3) / 8, (h + 7) / 8},
                                                  {(w + 3) / 4, (h + 3) / 8},
                                                  {(w + 1) / 4, (h + 3) / 4},
                                                  {(w + 1) / 2, (h + 1) / 4},
                                                  {w / 2, (h + 1) / 2},
                                                  {w, h / 2}};
    QByteArray rows;
    for (const auto &[columns, lines] : passes)
        rows += blankRows(header, columns, lines, filter);
    return png(header, rows);
}

QByteArray flatGifData(qint64 pixels)
{
    CodeWriter codes;
    while (pixels > 0) {
        codes.add(clearCode, 9);
        codes.add(0, 9);
        --pixels;
        int width = 9;
        qint64 run = 2;
        for (int code = endCode + 1; code < 4096 && pixels >= run; ++code, ++run) {
            codes.add(code, width);
            pixels -= run;
            if (code + 1 == 1 << width && width < 12)
                ++width;
        }
        if (pixels < run) {
            // What is left comes one by one, each after a clear, which keeps the width.
            codes.add(clearCode, width);
            for (; pixels > 0; --pixels) {
                codes.add(0, 9);
                codes.add(clearCode, 9);
            }
            codes.add(endCode, 9);
            return codes.take();
        }
        codes.add(clearCode, width);
    }
    codes.add(endCode, 9);
    return codes.take();
}

QByteArray gifOfData(int width, int height, const QByteArray &data)
{
    QByteArray bytes("GIF89a");
    appendLittle<quint16>(bytes, quint16(width));
    appendLittle<quint16>(bytes, quint16(height));
    bytes += QByteArray("\xf7\0\0", 3);
    for (int i = 0; i < 256; ++i)
        bytes += QByteArray(1, char(i)) + QByteArray(1, char(255 - i)) + QByteArray(1, char(i));
    bytes += QByteArray(",\0\0\0\0", 5);
    appendLittle<quint16>(bytes, quint16(width));
    appendLittle<quint16>(bytes, quint16(height));
    bytes += QByteArray("\0\x8", 2);
    for (qsizetype at = 0; at < data.size(); at += 255) {
        const QByteArray block = data.mid(at, 255);
        bytes += QByteArray(1, char(block.size())) + block;
    }
    return bytes + QByteArray("\0;", 2);
}

QByteArray gif(int width, int height, const std::vector<QRgb> &colors)
{
    QByteArray bytes("GIF89a");
    appendLittle<quint16>(bytes, quint16(width));
    appendLittle<quint16>(bytes, quint16(height));
    bytes += QByteArray("\0\0\0", 3);
    CodeWriter codes;
    for (int i = 0; i < width * height; ++i) {
        codes.add(clearCode, 9);
        codes.add(0, 9);
    }
    codes.add(endCode, 9);
    const QByteArray data = codes.take();
    for (const QRgb color : colors) {
        bytes += QByteArray("!\xf9\x4\0\xa\0\0\0", 8);
        bytes += QByteArray(",\0\0\0\0", 5);
        appendLittle<quint16>(bytes, quint16(width));
        appendLittle<quint16>(bytes, quint16(height));
        bytes.append(char(0x80)); // two colors of its own
        for (int i = 0; i < 2; ++i)
            bytes += QByteArray(1, char(qRed(color))) + QByteArray(1, char(qGreen(color))) +
                     QByteArray(1, char(qBlue(color)));
        bytes.append('\x8');
        for (qsizetype at = 0; at < data.size(); at += 255) {
            const QByteArray block = data.mid(at, 255);
            bytes += QByteArray(1, char(block.size())) + block;
        }
        bytes.append('\0');
    }
    return bytes + ';';
}

QByteArray runLengthBmp(int width, int height)
{
    QByteArray pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; x += 255)
            pixels += QByteArray(1, char(std::min(255, width - x))) + QByteArray(1, char(x & 1));
        pixels += QByteArray("\0\0", 2);
    }
    pixels += QByteArray("\0\1", 2);
    constexpr quint32 offset = 14 + 40 + 8;
    QByteArray bytes("BM");
    for (const quint32 field : {quint32(offset + pixels.size()), 0U, offset, 40U, quint32(width), quint32(height)})
        appendLittle(bytes, field);
    appendLittle<quint16>(bytes, 1);
    appendLittle<quint16>(bytes, 8);
    for (const quint32 field : {1U, quint32(pixels.size()), 0U, 0U, 2U, 0U, 0x00336699U, 0x00ffffffU})
        appendLittle(bytes, field);
    return bytes + pixels;
}

QByteArray icon(const std::vector<IconPicture> &pictures)
{
    QByteArray bytes("\0\0\1\0", 4);
    appendLittle<quint16>(bytes, quint16(pictures.size()));
    quint32 offset = quint32(6 + 16 * pictures.size());
    for (const IconPicture &picture : pictures) {
        bytes += QByteArray(2, char(picture.side)) + QByteArray(2, '\0');
        appendLittle<quint16>(bytes, 1);
        appendLittle<quint16>(bytes, 32);
        appendLittle(bytes, quint32(picture.content.size()));
        appendLittle(bytes, offset);
        offset += quint32(picture.content.size());
    }
    for (const IconPicture &picture : pictures)
        bytes += picture.content;
    return bytes;
}

QByteArray iconBitmap(int side, QRgb color)
{
    QByteArray bytes;
    for (const quint32 field : {40U, quint32(side), quint32(2 * side)})
        appendLittle(bytes, field);
    appendLittle<quint16>(bytes, 1);
    appendLittle<quint16>(bytes, 32);
    for (int i = 0; i < 6; ++i)
        appendLittle<quint32>(bytes, 0);
    for (int i = 0; i < side * side; ++i)
        appendLittle<quint32>(bytes, color);
    return bytes + QByteArray(qsizetype((side + 31) / 32 * 4) * side, '\0');
}

QByteArray paddedTo(qsizetype size, QByteArray bytes)
{
    return bytes + QByteArray(size - bytes.size(), '\0');
}

} // namespace tickwise::test
