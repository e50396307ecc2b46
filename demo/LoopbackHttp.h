#pragma once

#include "support/Clock.h"

#include <QByteArray>
#include <QUrl>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace tickwise {

using LoopbackHeaders = std::vector<std::pair<QByteArray, QByteArray>>;

/// A request that a loopback server received.
struct LoopbackRequest
{
    QByteArray method;
    QByteArray target; ///< path and query as sent
    LoopbackHeaders headers;
    int connection = 0; ///< numbered from 1 in the order of their arrival at that server
    TimePoint time;

    /// The first header of that name, compared without case.
    std::optional<QByteArray> header(QByteArrayView name) const;
};

/// What a loopback server sends back, down to how badly.
struct LoopbackAnswer
{
    enum class Framing
    {
        contentLength,
        chunked,
        untilClose
    };
    enum class Ending
    {
        whole, ///< as HTTP has it, then the next request of the connection
        reset, ///< the connection is reset
        close, ///< the connection is closed early
        stall, ///< nothing more comes, the connection stays open
    };

    int status = 200;
    QByteArray contentType = "application/json";
    LoopbackHeaders headers; ///< besides type and length
    QByteArray body;
    qint64 filler = 0; ///< that many blanks follow the body; made while sending, never stored
    Framing framing = Framing::contentLength;
    std::optional<qint64> announcedLength; ///< a Content-Length that is not true
    std::optional<QByteArray> raw;         ///< sent instead of an HTTP answer
    std::chrono::milliseconds delay{0};    ///< before the first byte
    Ending ending = Ending::whole;
    bool withHead = true; ///< false: the ending comes instead of the status line
    qint64 endAfter = 0;  ///< body bytes sent before an ending other than `whole`
    qint64 dripBytes = 0; ///< 0: as fast as it goes; else so many bytes at once
    std::chrono::milliseconds dripEvery{0};
};

/// Something that an answer suffers.
using Fault = std::function<void(LoopbackAnswer &)>;

/// The faults that networks and services have. They combine by `together`.
namespace faults {

Fault together(std::vector<Fault> parts);
Fault delay(std::chrono::milliseconds time);
/// The connection is reset instead of an answer, or after that many bytes of the body.
Fault reset();
Fault resetAfter(qint64 bytes);
/// The request is read and never answered.
Fault hang();
/// Status and headers come, then that many bytes, then nothing.
Fault stallAfter(qint64 bytes);
/// The connection is closed after that many bytes of a longer body.
Fault truncateAfter(qint64 bytes);
/// Another status with a body, instead of the answer.
Fault status(int status, const QByteArray &body = {}, const LoopbackHeaders &headers = {});
Fault headers(const LoopbackHeaders &headers);
Fault body(const QByteArray &body, const QByteArray &contentType = "application/json");
/// Bytes that are no JSON under status 200.
Fault garbage();
/// Bytes that are no HTTP.
Fault notHttp();
/// A page of a firewall or a content network, as it comes with status 403.
Fault blockPage(int status = 403);
/// A body of that many bytes, by default one more than 16 MiB.
Fault oversize(qint64 bytes = 16LL * 1024 * 1024 + 1);
/// A few hundred kilobytes that inflate to that many mebibytes.
Fault gzipBomb(int mebibytes = 256);
Fault chunked();
Fault gzip();
Fault redirect(const QUrl &target, int status = 302);
/// The body comes in pieces.
Fault drip(qint64 bytes, std::chrono::milliseconds every);

} // namespace faults

/// The bytes as a gzip stream.
QByteArray gzipped(const QByteArray &bytes);

} // namespace tickwise
