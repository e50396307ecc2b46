#pragma once

#include <QByteArray>

#include <functional>

#include <zlib.h>

namespace tickwise {

/// Inflates a gzip stream as it arrives, in pieces of a fixed size, so that the receiver can stop a stream that grows
/// too large. Streams of several members are read as one.
class GzipReader
{
public:
    /// Takes inflated bytes; false stops.
    using Receiver = std::function<bool(const char *bytes, qint64 count)>;
    enum class Status
    {
        more,    ///< the stream goes on
        stopped, ///< the receiver stopped it
        damaged, ///< these bytes are no gzip stream
    };

    GzipReader();
    ~GzipReader();
    GzipReader(const GzipReader &) = delete;
    GzipReader &operator=(const GzipReader &) = delete;

    Status feed(const char *bytes, qint64 count, const Receiver &receiver);
    /// Whether the stream may end here: a member is complete, or nothing came at all.
    bool isComplete() const { return m_complete; }

private:
    z_stream m_stream{};
    bool m_complete = true;
};

} // namespace tickwise
