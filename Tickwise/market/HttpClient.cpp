#include "market/HttpClient.h"

namespace tickwise {

std::optional<QByteArray> HttpResponse::header(QByteArrayView name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return std::nullopt;
}

} // namespace tickwise
