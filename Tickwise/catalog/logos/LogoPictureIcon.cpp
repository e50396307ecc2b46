#include "catalog/logos/LogoPicture.h"

#include "catalog/logos/ByteFields.h"

namespace tickwise {

namespace {

constexpr qsizetype headLength = 6;
constexpr qsizetype entryLength = 16;
constexpr qsizetype bitmapHeaderLength = 40;
constexpr int widestIcon = 256;

/// One picture of the icon's directory.
struct Entry
{
    qsizetype at = 0; ///< of the entry itself
    int width = 0;
    int height = 0;
    qsizetype length = 0;
    qsizetype offset = 0;
};

int sideOf(quint8 stored)
{
    return stored == 0 ? widestIcon : stored;
}

Entry entryAt(QByteArrayView bytes, qsizetype at)
{
    return {at, sideOf(byteAt(bytes, at)), sideOf(byteAt(bytes, at + 1)), littleEndian<quint32>(bytes, at + 8),
            littleEndian<quint32>(bytes, at + 12)};
}

std::optional<Entry> largestEntry(QByteArrayView bytes)
{
    std::optional<Entry> largest;
    const int count = littleEndian<quint16>(bytes, 4);
    for (int i = 0; i < count; ++i) {
        const Entry entry = entryAt(bytes, headLength + i * entryLength);
        if (entry.offset + entry.length > bytes.size() || entry.length <= bitmapHeaderLength)
            return std::nullopt;
        if (!largest || entry.width * entry.height > largest->width * largest->height)
            largest = entry;
    }
    return largest;
}

/// An icon with that picture only.
QByteArray singleIcon(QByteArrayView bytes, const Entry &entry)
{
    QByteArray icon("\0\0\1\0\1\0", headLength);
    icon.append(bytes.sliced(entry.at, entryLength - qsizetype(sizeof(quint32))));
    const quint32 offset = qToLittleEndian(quint32(headLength + entryLength));
    icon.append(reinterpret_cast<const char *>(&offset), sizeof offset);
    icon.append(bytes.sliced(entry.offset, entry.length));
    return icon;
}

/// True when the bitmap is whole and as large as the directory says. Its height counts the mask below the picture.
bool isWhole(QByteArrayView bitmap, const Entry &entry)
{
    const qint64 bits = littleEndian<quint16>(bitmap, 14);
    const qint64 row = (entry.width * bits + 31) / 32 * 4;
    return littleEndian<quint32>(bitmap, 0) == bitmapHeaderLength && littleEndian<qint32>(bitmap, 4) == entry.width &&
           littleEndian<qint32>(bitmap, 8) == 2 * entry.height && bits != 0 &&
           bitmap.size() >= bitmapHeaderLength + row * entry.height;
}

} // namespace

std::optional<LogoPicture> inspectIcon(const QByteArray &bytes)
{
    const std::optional<Entry> entry = largestEntry(bytes);
    if (!entry)
        return std::nullopt;
    const QByteArray content = bytes.mid(entry->offset, entry->length);
    if (content.startsWith("\x89PNG\r\n\x1a\n"))
        return inspectPng(content);
    if (!isWhole(content, *entry))
        return std::nullopt;
    return LogoPicture{"ico", QSize(entry->width, entry->height), std::chrono::milliseconds(1),
                       singleIcon(bytes, *entry)};
}

} // namespace tickwise
