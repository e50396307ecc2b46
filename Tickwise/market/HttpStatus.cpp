#include "market/HttpStatus.h"

#include "support/DecimalText.h"

namespace tickwise {

namespace {

constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int teapot = 418; // Binance's sign of a ban
constexpr int tooManyRequests = 429;
constexpr double forbiddenPause = 600; // seconds

/// Region blocks come as a page, or as a notice of the delivery network; a ban is the exchange's own JSON.
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
        error.retryAfter = error.retryAfter.value_or(forbiddenPause);
        error.blockPage = isBlockPage(response.body);
    }
    return error;
}

} // namespace

std::optional<double> retryAfter(const HttpResponse &response)
{
    const std::optional<QByteArray> header = response.header("Retry-After");
    if (!header)
        return std::nullopt;
    const std::optional<double> seconds = parseDecimal({header->constData(), static_cast<std::size_t>(header->size())});
    return seconds && *seconds > 0 ? seconds : std::nullopt;
}

Result<QByteArray> classifyTickerResponse(const HttpResponse &response)
{
    if (response.status >= 200 && response.status <= 299)
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
