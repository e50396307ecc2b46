#include "catalog/logos/LogoAddress.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace tickwise {

namespace {

constexpr std::array logoHosts{QLatin1String("coin-images.coingecko.com"), QLatin1String("assets.coingecko.com")};
constexpr QLatin1String scheme("https://");

/// The host as the text spells it, behind the scheme and the user information.
QStringView spelledHost(QStringView text)
{
    QStringView authority = text.sliced(scheme.size());
    const auto end =
        std::find_if(authority.begin(), authority.end(), [](QChar c) { return c == u'/' || c == u'?' || c == u'#'; });
    authority = authority.first(end - authority.begin());
    authority = authority.sliced(authority.lastIndexOf(u'@') + 1);
    const qsizetype port = authority.indexOf(u':');
    return port < 0 ? authority : authority.first(port);
}

} // namespace

bool isLogoAddress(const QString &text)
{
    // QUrl writes scheme and host in lower case and maps other letters; the rule compares what the text says.
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || !text.startsWith(scheme) || url.host() != spelledHost(text))
        return false;
    return std::find(logoHosts.begin(), logoHosts.end(), url.host()) != logoHosts.end();
}

} // namespace tickwise
