#include "platform/network/GzipReader.h"

#include <array>
#include <new>

namespace tickwise {

namespace {

constexpr int gzipOnly = 16 + MAX_WBITS;
constexpr std::size_t pieceBytes = std::size_t{32} * 1024;

} // namespace

GzipReader::GzipReader()
{
    if (inflateInit2(&m_stream, gzipOnly) != Z_OK)
        throw std::bad_alloc();
}

GzipReader::~GzipReader()
{
    inflateEnd(&m_stream);
}

GzipReader::Status GzipReader::feed(const char *bytes, qint64 count, const Receiver &receiver)
{
    std::array<char, pieceBytes> piece; // NOLINT: filled by inflate
    // zlib does not write to its input.
    m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes)); // NOLINT
    m_stream.avail_in = static_cast<uInt>(count);
    bool isFull = false;
    while (m_stream.avail_in > 0 || isFull) {
        if (m_complete && m_stream.total_in > 0 && inflateReset(&m_stream) != Z_OK)
            return Status::damaged;
        m_complete = false;
        m_stream.next_out = reinterpret_cast<Bytef *>(piece.data());
        m_stream.avail_out = pieceBytes;
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
            return Status::damaged;
        m_complete = result == Z_STREAM_END;
        isFull = m_stream.avail_out == 0 && !m_complete;
        const auto made = static_cast<qint64>(pieceBytes - m_stream.avail_out);
        if (made > 0 && !receiver(piece.data(), made))
            return Status::stopped;
    }
    return Status::more;
}

} // namespace tickwise
