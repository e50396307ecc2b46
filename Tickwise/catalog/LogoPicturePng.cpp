#include "catalog/LogoPicture.h"

#include "catalog/ByteFields.h"

#include <array>
#include <set>

#include <zlib.h>

namespace tickwise {

namespace {

constexpr qsizetype signatureLength = 8;
constexpr qsizetype chunkOverhead = 12; // length, type and checksum
constexpr quint32 headerLength = 13;
constexpr quint32 widest = 1 << 16; // keeps the arithmetic below in range; far more than any logo has
constexpr double nanosecondsPerByte = 3.2;
constexpr double nanosecondsPerInterlacedByte = 8;

struct Header
{
    quint32 width = 0;
    quint32 height = 0;
    int bitsPerPixel = 0;
    bool interlaced = false;
};

/// The steps of an interlaced picture: first column and row, distance of columns and rows.
struct Pass
{
    quint32 x, y, dx, dy;
};
constexpr std::array<Pass, 7> passes{
    {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}};

int channels(quint8 colorType)
{
    switch (colorType) {
    case 0: // gray
    case 3: // palette
        return 1;
    case 2: // red, green, blue
        return 3;
    case 4: // gray and alpha
        return 2;
    case 6: // red, green, blue and alpha
        return 4;
    default:
        return 0;
    }
}

std::optional<Header> readHeader(QByteArrayView chunk)
{
    const Header header{bigEndian<quint32>(chunk, 8), bigEndian<quint32>(chunk, 12),
                        byteAt(chunk, 16) * channels(byteAt(chunk, 17)), byteAt(chunk, 20) != 0};
    if (header.width == 0 || header.height == 0 || header.width > widest || header.height > widest)
        return std::nullopt;
    return header.bitsPerPixel == 0 ? std::nullopt : std::optional(header);
}

qint64 rawBytes(quint32 width, quint32 height, int bitsPerPixel)
{
    return width == 0 ? 0 : qint64(height) * ((qint64(width) * bitsPerPixel + 7) / 8 + 1);
}

/// The bytes of the rows with their filter types, before compression.
qint64 rawBytes(const Header &header)
{
    if (!header.interlaced)
        return rawBytes(header.width, header.height, header.bitsPerPixel);
    qint64 sum = 0;
    for (const Pass &pass : passes) {
        const quint32 columns = header.width > pass.x ? (header.width - pass.x + pass.dx - 1) / pass.dx : 0;
        const quint32 rows = header.height > pass.y ? (header.height - pass.y + pass.dy - 1) / pass.dy : 0;
        sum += rawBytes(columns, rows, header.bitsPerPixel);
    }
    return sum;
}

std::chrono::nanoseconds decodingCost(const Header &header)
{
    const double each = header.interlaced ? nanosecondsPerInterlacedByte : nanosecondsPerByte;
    return std::chrono::nanoseconds(qint64(double(rawBytes(header)) * each));
}

/// True when the zlib stream ends after exactly that many bytes: the decoder would inflate whatever follows the rows.
bool inflatesTo(qint64 expected, const QByteArray &compressed)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(compressed.data()));
    stream.avail_in = uInt(compressed.size());
    std::array<Bytef, 65536> buffer;
    int state = Z_OK;
    while (state == Z_OK && qint64(stream.total_out) <= expected) {
        stream.next_out = buffer.data();
        stream.avail_out = uInt(buffer.size());
        state = inflate(&stream, Z_NO_FLUSH);
    }
    const bool matches = state == Z_STREAM_END && qint64(stream.total_out) == expected;
    inflateEnd(&stream);
    return matches;
}

struct Chunks
{
    QByteArray file;       ///< what the decoder needs, in order
    QByteArray compressed; ///< the rows
};

/// The chunks up to the last one; none when that is missing.
std::optional<Chunks> readChunks(const QByteArray &bytes)
{
    static const std::set<QByteArrayView> needed{"IHDR", "PLTE", "tRNS", "IDAT", "IEND"};
    Chunks chunks{bytes.first(signatureLength), {}};
    for (qsizetype at = signatureLength; at + chunkOverhead <= bytes.size();) {
        const qsizetype length = bigEndian<quint32>(bytes, at);
        if (length > bytes.size() - at - chunkOverhead)
            return std::nullopt;
        const QByteArrayView type = QByteArrayView(bytes).sliced(at + 4, 4);
        if (needed.contains(type))
            chunks.file.append(QByteArrayView(bytes).sliced(at, length + chunkOverhead));
        if (type == QByteArrayView("IDAT"))
            chunks.compressed.append(QByteArrayView(bytes).sliced(at + 8, length));
        if (type == QByteArrayView("IEND"))
            return chunks;
        at += length + chunkOverhead;
    }
    return std::nullopt;
}

} // namespace

std::optional<LogoPicture> inspectPng(const QByteArray &bytes)
{
    const QByteArrayView first = QByteArrayView(bytes).sliced(std::min(signatureLength, bytes.size()));
    if (bigEndian<quint32>(first, 0) != headerLength || !first.sliced(4).startsWith("IHDR"))
        return std::nullopt;
    const std::optional<Header> header = readHeader(first);
    if (!header)
        return std::nullopt;
    LogoPicture picture{"png", QSize(int(header->width), int(header->height)), decodingCost(*header), {}};
    if (!isAffordable(picture))
        return std::nullopt;
    std::optional<Chunks> chunks = readChunks(bytes);
    if (!chunks || !inflatesTo(rawBytes(*header), chunks->compressed))
        return std::nullopt;
    picture.bytes = chunks->file;
    return picture;
}

} // namespace tickwise
