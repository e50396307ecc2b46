#pragma once

#include <QByteArrayView>
#include <QtEndian>

namespace tickwise {

/// The unsigned number at that offset, most significant byte first; 0 where the bytes end before it does.
template<class T>
T bigEndian(QByteArrayView bytes, qsizetype at)
{
    return at < 0 || at > bytes.size() - qsizetype(sizeof(T)) ? T(0) : qFromBigEndian<T>(bytes.data() + at);
}

/// The same, least significant byte first.
template<class T>
T littleEndian(QByteArrayView bytes, qsizetype at)
{
    return at < 0 || at > bytes.size() - qsizetype(sizeof(T)) ? T(0) : qFromLittleEndian<T>(bytes.data() + at);
}

/// The byte at that offset; 0 past the end.
inline quint8 byteAt(QByteArrayView bytes, qsizetype at)
{
    return bigEndian<quint8>(bytes, at);
}

} // namespace tickwise
