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

/// Whether the text is a scheme, a logo host and a path of letters, digits, hyphens, underscores, dots and slashes:
/// every URL parser reads it the same way, and a catalog has hundreds of them.
bool isPlainAddress(QStringView text)
{
    if (!text.startsWith(scheme))
        return false;
    const QStringView rest = text.sliced(scheme.size());
    const auto host = std::ranges::find_if(logoHosts, [rest](QLatin1String one) { return rest.startsWith(one); });
    if (host == logoHosts.end())
        return false;
    const QStringView path = rest.sliced(host->size());
    const auto isPlain = [](QChar c) {
        const char16_t unit = c.unicode();
        return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'-' && unit <= u'9') ||
               unit == u'_';
    };
    return path.startsWith(u'/') && std::all_of(path.begin(), path.end(), isPlain);
}

} // namespace

bool isLogoAddress(const QString &text)
{
    if (isPlainAddress(text))
        return true;
    // QUrl writes scheme and host in lower case and maps other letters; the rule compares what the text says.
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || !text.startsWith(scheme) || url.host() != spelledHost(text))
        return false;
    return std::find(logoHosts.begin(), logoHosts.end(), url.host()) != logoHosts.end();
}

} // namespace tickwise
