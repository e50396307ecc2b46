#include "catalog/LogoAddress.h"

#include <QUrl>

namespace tickwise {

bool isLogoAddress(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    const QString host = url.host();
    return url.isValid() && url.scheme() == QStringLiteral("https") &&
           (host == QStringLiteral("coin-images.coingecko.com") || host == QStringLiteral("assets.coingecko.com"));
}

} // namespace tickwise
