#include "market/exchanges/TickerResponse.h"

#include "market/RetryAfter.h"

namespace tickwise {

namespace {

constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int teapot = 418;               // Binance bans an address with it
constexpr double forbiddenCooldown = 600; // seconds

/// A region block is an HTML page or a notice of the content delivery network; a ban is the exchange's own JSON.
bool isBlockPage(const QByteArray &body)
{
    const QByteArray start = body.left(2048).trimmed().toLower();
    return start.startsWith('<') || start.contains("your country") || start.contains("cloudfront") ||
           start.contains("restricted location");
}

TickerProviderError rateLimited(const HttpResponse &response)
{
    TickerProviderError error{TickerProviderError::Kind::rateLimited, retryAfter(response), response.status};
    if (response.status == forbidden) {
        error.retryAfter = error.retryAfter.value_or(forbiddenCooldown);
        error.blockPage = isBlockPage(response.body);
    }
    return error;
}

} // namespace

Result<QByteArray> classifyTickerResponse(const HttpResponse &response)
{
    if (response.isSuccess())
        return response.body;
    switch (response.status) {
    case teapot:
    case tooManyRequests:
    case forbidden:
        return failure(rateLimited(response));
    case badRequest:
        return failure(TickerProviderError{TickerProviderError::Kind::requestRejected, std::nullopt, response.status});
    default:
        return failure(UrlLoadingError{UrlErrorCode::badServerResponse, {}, response.status});
    }
}

} // namespace tickwise
