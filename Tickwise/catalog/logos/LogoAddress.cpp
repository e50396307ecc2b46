#include "catalog/logos/LogoAddress.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace tickwise {

namespace {

constexpr std::array logoHosts{QLatin1String("coin-images.coingecko.com"), QLatin1String("assets.coingecko.com")};

} // namespace

bool isLogoAddress(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && url.scheme() == QLatin1String("https") && url.userInfo().isEmpty() &&
           std::find(logoHosts.begin(), logoHosts.end(), url.host()) != logoHosts.end();
}

} // namespace tickwise
