#include "market/RetryAfter.h"

#include "support/DecimalText.h"

#include <algorithm>

namespace tickwise {

std::optional<double> retryAfter(const HttpResponse &response)
{
    const auto isRetryAfter = [](const auto &header) {
        return header.first.compare("Retry-After", Qt::CaseInsensitive) == 0;
    };
    const auto &headers = response.headers;
    const auto found = std::find_if(headers.begin(), headers.end(), isRetryAfter);
    if (found == headers.end() || std::any_of(found + 1, headers.end(), isRetryAfter))
        return std::nullopt;
    const QByteArray &text = found->second;
    const std::optional<double> seconds = parseDecimal({text.constData(), static_cast<std::size_t>(text.size())});
    return seconds && *seconds > 0 ? seconds : std::nullopt;
}

} // namespace tickwise
