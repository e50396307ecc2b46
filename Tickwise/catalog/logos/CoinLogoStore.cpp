#include "catalog/logos/CoinLogoStore.h"

#include "catalog/CoinId.h"
#include "catalog/logos/LogoDecoding.h"
#include "support/LogCategories.h"

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcLogos, "com.pelmo.tickwise.CoinLogos")

constexpr std::chrono::seconds logoTimeout{15};
constexpr int statusOk = 200;

bool isOversize(const Error &error)
{
    const auto *loading = std::get_if<UrlLoadingError>(&error);
    return loading && loading->code == UrlErrorCode::dataLengthExceedsMaximum;
}

} // namespace

HttpRequest logoRequest(const QString &address, const LogoAddressRule &isAllowed)
{
    HttpRequest request;
    request.url = QUrl(address, QUrl::StrictMode);
    request.timeout = logoTimeout;
    request.maximumBytes = largestLogo;
    request.mayRedirectTo = [isAllowed](const QUrl &url) { return isAllowed(url.toString(QUrl::FullyEncoded)); };
    return request;
}

bool carriesLogo(const HttpResponse &response)
{
    return response.status == statusOk && !response.body.isEmpty() && response.body.size() <= largestLogo;
}

CoinLogoStore::CoinLogoStore(CoinLogoCache cache, HttpClient &client, LogoAddressRule isAllowed, QObject *parent)
    : QObject(parent)
    , m_cache(std::move(cache))
    , m_client(client)
    , m_isAllowed(std::move(isAllowed))
    , m_cachedIDs(m_cache.cachedIDs())
{
}

std::optional<QImage> CoinLogoStore::image(const QString &id)
{
    if (!cachedIDs().contains(id))
        return std::nullopt;
    if (const auto known = m_images.constFind(id); known != m_images.constEnd())
        return *known;
    const std::optional<QByteArray> bytes = m_cache.read(id);
    std::optional<QImage> decoded = bytes ? decodeLogo(*bytes) : std::nullopt;
    if (decoded)
        m_images.insert(id, *decoded);
    else // later: the caller may be painting
        QMetaObject::invokeMethod(
            this, [this, id] { discardDamaged(id); }, Qt::QueuedConnection);
    return decoded;
}

void CoinLogoStore::discardDamaged(const QString &id)
{
    if (!cachedIDs().contains(id) || m_images.contains(id))
        return; // discarded or downloaded anew meanwhile
    m_cache.remove(id);
    m_cachedIDs = cachedIDs() - QSet<QString>{id};
    for (const CoinMetadata &coin : m_needed) {
        if (coin.id == id)
            ensureSeenLogo(coin);
    }
}

void CoinLogoStore::ensureLogo(const CoinMetadata &coin)
{
    if (coin.logoAssetName || cachedIDs().contains(coin.id) || m_inFlight.contains(coin.id))
        return;
    if (!isCoinId(coin.id) || !coin.logoURL || !m_isAllowed(*coin.logoURL))
        return;
    m_failed.remove(coin.id);
    m_inFlight[coin.id] =
        m_client.send(logoRequest(*coin.logoURL, m_isAllowed),
                      [this, id = coin.id](const Result<HttpResponse> &result) { finish(QString(id), result); });
}

void CoinLogoStore::ensureSeenLogo(const CoinMetadata &coin)
{
    if (!m_failed.contains(coin.id))
        ensureLogo(coin);
}

void CoinLogoStore::forgetFailures()
{
    m_failed.clear();
    for (const CoinMetadata &coin : m_needed)
        ensureLogo(coin);
}

void CoinLogoStore::finish(const QString &id, const Result<HttpResponse> &result)
{
    m_inFlight.erase(id);
    if (!result && !isOversize(result.error()))
        qCWarning(lcLogos).noquote() << "Logo download failed:" << description(result.error());
    if (!result || !carriesLogo(*result) || !keep(id, result->body))
        m_failed.insert(id);
}

bool CoinLogoStore::keep(const QString &id, const QByteArray &body)
{
    const std::optional<QImage> decoded = decodeLogo(body);
    if (!decoded)
        return false;
    if (const Result<void> written = m_cache.write(id, body); !written) {
        qCWarning(lcLogos).noquote() << "Logo cache write failed:" << description(written.error());
        return false;
    }
    m_images.insert(id, *decoded);
    QSet<QString> ids = cachedIDs();
    ids.insert(id);
    m_cachedIDs = ids;
    return true;
}

void CoinLogoStore::sync(const std::vector<CoinMetadata> &coins)
{
    QSet<QString> needed;
    for (const CoinMetadata &coin : coins) {
        if (!coin.logoAssetName)
            needed.insert(coin.id);
    }
    prune(needed);
    m_needed = coins;
    for (const CoinMetadata &coin : coins)
        ensureLogo(coin);
}

void CoinLogoStore::prune(const QSet<QString> &needed)
{
    const QSet<QString> unneeded = (cachedIDs() | m_cache.cachedIDs()) - needed;
    for (const QString &id : unneeded) {
        m_cache.remove(id);
        m_images.remove(id);
    }
    m_cachedIDs = cachedIDs() & needed;
}

} // namespace tickwise
