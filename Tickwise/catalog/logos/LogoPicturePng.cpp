#include "catalog/logos/LogoPicture.h"

#include "catalog/logos/ByteFields.h"

#include <array>

#include <zlib.h>

namespace tickwise {

namespace {

constexpr qsizetype signatureLength = 8;
constexpr qsizetype chunkOverhead = 12; // length, type and checksum
constexpr qsizetype pieceLength = 512;  // inflates to half a mebibyte at most
constexpr quint32 headerLength = 13;
constexpr quint32 widest = 1 << 16; // keeps the arithmetic below in range; far more than any logo has

struct Costs
{
    double perRawByte, perPixel; // nanoseconds
};
constexpr Costs plainCosts{2.5, 0.6};
constexpr Costs interlacedCosts{4.5, 2.4};
constexpr double nanosecondsPerByte = 3;

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

std::chrono::nanoseconds decodingCost(const Header &header, qsizetype bytes)
{
    const Costs costs = header.interlaced ? interlacedCosts : plainCosts;
    const double pixels = double(header.width) * double(header.height);
    return std::chrono::nanoseconds(qint64(double(rawBytes(header)) * costs.perRawByte + pixels * costs.perPixel +
                                           double(bytes) * nanosecondsPerByte));
}

quint32 checksum(QByteArrayView bytes)
{
    return quint32(crc32(0, reinterpret_cast<const Bytef *>(bytes.data()), uInt(bytes.size())));
}

template<class T>
void append(QByteArray &bytes, T number)
{
    const T stored = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&stored), sizeof stored);
}

/// Adds the compressed rows in pieces so short that the decoder asks for the next one often.
void appendPieces(QByteArray &file, QByteArrayView rows)
{
    for (qsizetype at = 0; at < rows.size(); at += pieceLength) {
        const QByteArrayView piece = rows.sliced(at, std::min(pieceLength, rows.size() - at));
        append(file, quint32(piece.size()));
        const qsizetype checked = file.size();
        file.append("IDAT").append(piece);
        append(file, checksum(QByteArrayView(file).sliced(checked)));
    }
}

/// The chunks that a decoder needs, up to the last one; none when that is missing or the rows are damaged.
std::optional<QByteArray> neededChunks(const QByteArray &bytes)
{
    QByteArray file = bytes.first(signatureLength);
    for (qsizetype at = signatureLength; at + chunkOverhead <= bytes.size();) {
        const qsizetype length = bigEndian<quint32>(bytes, at);
        if (length > bytes.size() - at - chunkOverhead)
            return std::nullopt;
        const QByteArrayView chunk = QByteArrayView(bytes).sliced(at, length + chunkOverhead);
        const QByteArrayView type = chunk.sliced(4, 4);
        if (type == QByteArrayView("IDAT")) {
            if (checksum(chunk.sliced(4, length + 4)) != bigEndian<quint32>(chunk, length + 8))
                return std::nullopt;
            appendPieces(file, chunk.sliced(8, length));
        } else if (type == QByteArrayView("IHDR") || type == QByteArrayView("PLTE") || type == QByteArrayView("tRNS")) {
            file.append(chunk);
        } else if (type == QByteArrayView("IEND")) {
            return file.append(chunk);
        }
        at += chunk.size();
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
    LogoPicture picture{"png", QSize(int(header->width), int(header->height)), decodingCost(*header, bytes.size()), {}};
    if (!isAffordable(picture))
        return std::nullopt;
    std::optional<QByteArray> file = neededChunks(bytes);
    if (!file)
        return std::nullopt;
    picture.bytes = *file;
    return picture;
}

} // namespace tickwise
