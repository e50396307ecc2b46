#pragma once

#include "market/HttpClient.h"

namespace tickwise {

/// What the status of a rate service's answer means: the body for 200-299; 429 asks for a back-off, for 1200 seconds
/// unless it says otherwise; every other status is `badServerResponse`.
Result<QByteArray> classifyExchangeRateResponse(const HttpResponse &response);

} // namespace tickwise
