#pragma once

#include "market/HttpClient.h"

#include <optional>

namespace tickwise {

/// The status by which every kind of provider asks for a back-off.
inline constexpr int tooManyRequests = 429;

/// The "Retry-After" header as seconds: a decimal number greater than 0. Dates, zero, a header that is there twice and
/// everything else are none.
std::optional<double> retryAfter(const HttpResponse &response);

} // namespace tickwise
