#pragma once

#include "market/HttpClient.h"

namespace tickwise {

/// What the status of an exchange's answer means: the body for 200-299; 418 and 429 ask for a back-off; so does 403,
/// for 600 seconds unless it says otherwise; 400 refuses the request; every other status is `badServerResponse`.
Result<QByteArray> classifyTickerResponse(const HttpResponse &response);

} // namespace tickwise
