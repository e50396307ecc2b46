#pragma once

#include "doubles/TestData.h"
#include "market/HttpClient.h"

#include <optional>

namespace tickwise::test {

inline const QStringList bitcoinOnly{QStringLiteral("BTC")};

inline QByteArray recordedAnswer(const char *name)
{
    return readData(QStringLiteral("exchange/") + QLatin1String(name));
}

inline QString addressOf(const std::optional<HttpRequest> &request)
{
    return request ? request->url.toString(QUrl::FullyEncoded) : QStringLiteral("none");
}

} // namespace tickwise::test
