#include "catalog/logos/DeclaredLengths.h"

#include <QtEndian>

namespace tickwise {

namespace {

constexpr QByteArrayView pngSignature("\x89PNG\r\n\x1a\n");
constexpr qsizetype chunkHead = 8; // length and type
constexpr qsizetype chunkSum = 4;  // checksum behind the content
constexpr qsizetype iconHead = 6;
constexpr qsizetype iconEntry = 16;
constexpr qsizetype mostPictures = 256;

bool entryFits(QByteArrayView bytes, QByteArrayView entry)
{
    const qint64 length = qFromLittleEndian<quint32>(entry.data() + 8);
    const qint64 offset = qFromLittleEndian<quint32>(entry.data() + 12);
    if (offset + length > bytes.size())
        return false;
    const QByteArrayView picture = bytes.sliced(offset, length);
    return !picture.startsWith(pngSignature) || pngPartsFit(picture);
}

} // namespace

bool pngPartsFit(QByteArrayView bytes)
{
    qint64 at = pngSignature.size();
    while (at + chunkHead + chunkSum <= bytes.size()) {
        const QByteArrayView head = bytes.sliced(at, chunkHead);
        at += chunkHead + qFromBigEndian<quint32>(head.data()) + chunkSum;
        if (head.endsWith("IEND"))
            break;
    }
    return at <= bytes.size();
}

bool iconPartsFit(QByteArrayView bytes)
{
    if (bytes.size() < iconHead)
        return false;
    const qsizetype count = qFromLittleEndian<quint16>(bytes.data() + 4);
    if (count > mostPictures || iconHead + count * iconEntry > bytes.size())
        return false;
    for (qsizetype i = 0; i < count; ++i) {
        if (!entryFits(bytes, bytes.sliced(iconHead + i * iconEntry, iconEntry)))
            return false;
    }
    return true;
}

} // namespace tickwise
