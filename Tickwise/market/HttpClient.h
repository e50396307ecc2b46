#pragma once

#include "support/Subscription.h"

#include <QByteArray>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QIODevice;

namespace tickwise {

/// A GET request without extra headers or body that never reads a local cache.
struct HttpRequest
{
    QUrl url;
    std::chrono::milliseconds timeout{5000};         ///< longest wait without a byte
    std::chrono::milliseconds deadline{30000};       ///< longest time for the whole exchange
    qint64 maximumBytes = 16LL * 1024 * 1024;        ///< a longer body ends in `dataLengthExceedsMaximum`, unread
    std::function<bool(const QUrl &)> mayRedirectTo; ///< none: only to the same scheme, host and port
    bool acceptsCompression = true;                  ///< false: asks for the body as it is, and never inflates it
    QIODevice *sink = nullptr; ///< the body of a 2xx answer goes there as it comes, instead of into the response;
                               ///< outlives the operation
    std::function<void(qint64 received, qint64 total)> progress; ///< `total` is -1 while unknown
};

/// An HTTP answer with any status.
struct HttpResponse
{
    int status = 0;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body; ///< decompressed

    /// The first header of that name, compared without case.
    std::optional<QByteArray> header(QByteArrayView name) const;
};

/// Fetches over HTTP(S).
///
/// Every operation ends in exactly one response (of whatever status) or one error, delivered later on the main thread;
/// dropping the handle aborts the request and delivers nothing more.
class HttpClient
{
public:
    virtual ~HttpClient() = default;
    [[nodiscard]] virtual Subscription send(const HttpRequest &request, Completion<HttpResponse> done) = 0;
};

} // namespace tickwise
