#include "market/rates/ExchangeRateResponse.h"

#include "market/RetryAfter.h"

namespace tickwise {

namespace {

constexpr double rateLimitCooldown = 1200; // seconds

} // namespace

Result<QByteArray> classifyExchangeRateResponse(const HttpResponse &response)
{
    if (response.isSuccess())
        return response.body;
    if (response.status == tooManyRequests) {
        return failure(ExchangeRateProviderError{retryAfter(response).value_or(rateLimitCooldown), response.status});
    }
    return failure(UrlLoadingError{UrlErrorCode::badServerResponse, {}, response.status});
}

} // namespace tickwise
