#pragma once

#include "catalog/Coin.h"
#include "catalog/logos/CoinLogoCache.h"
#include "catalog/logos/LogoAddress.h"
#include "market/HttpClient.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QProperty>

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace tickwise {

/// Tells whether a logo may be loaded from that address.
using LogoAddressRule = std::function<bool(const QString &address)>;

/// The request for a logo's bytes: at most `largestLogo` of them, redirected only to where the rule allows.
HttpRequest logoRequest(const QString &address, const LogoAddressRule &isAllowed);

/// Whether the answer to such a request carries a logo's bytes.
bool carriesLogo(const HttpResponse &response);

/// Downloads missing logos once, keeps them on disk and serves them from memory. Main thread only.
///
/// A download that fails is tried again by the next `ensureLogo` of that coin. Errors of transport and of writing are
/// one log line each; an answer that is no logo is dropped silently. A file that cannot be decoded is deleted, and
/// downloaded anew for a coin of the last `sync`.
class CoinLogoStore : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QSet<QString> cachedIDs READ cachedIDs NOTIFY cachedIDsChanged BINDABLE bindableCachedIDs)

public:
    /// `client` outlives the store. Only loopback tests pass another rule than the default one.
    CoinLogoStore(CoinLogoCache cache, HttpClient &client, LogoAddressRule isAllowed = isLogoAddress,
                  QObject *parent = nullptr);

    /// The ids that have a file in the cache.
    const QSet<QString> &cachedIDs() const { return m_cachedIDs.value(); }
    QBindable<QSet<QString>> bindableCachedIDs() { return &m_cachedIDs; }

    /// The coin's cached logo, at most `logoPixels` wide and high; none when there is none that can be decoded.
    std::optional<QImage> image(const QString &id);
    /// Starts a download unless the coin has a shipped image, a cached one, a download under way or no usable address.
    void ensureLogo(const CoinMetadata &coin);
    /// As `ensureLogo`, for each painting of a coin: one whose download failed waits for `forgetFailures`.
    void ensureSeenLogo(const CoinMetadata &coin);
    /// Ensures the logos of the last `sync` again, and lets `ensureSeenLogo` try every coin again.
    void forgetFailures();
    /// Forgets the logos of all other coins and of those with a shipped image, and deletes every other file of the
    /// cache, whatever its name; then ensures each coin's logo.
    void sync(const std::vector<CoinMetadata> &coins);

Q_SIGNALS:
    void cachedIDsChanged();

private:
    void finish(const QString &id, const Result<HttpResponse> &result);
    bool keep(const QString &id, const QByteArray &body);
    void discardDamaged(const QString &id);
    void prune(const QSet<QString> &needed);

    CoinLogoCache m_cache;
    HttpClient &m_client;
    LogoAddressRule m_isAllowed;
    QHash<QString, QImage> m_images;
    std::map<QString, Subscription> m_inFlight;
    QSet<QString> m_failed;             ///< coins whose last download failed
    std::vector<CoinMetadata> m_needed; ///< the coins of the last `sync`
    Q_OBJECT_BINDABLE_PROPERTY(CoinLogoStore, QSet<QString>, m_cachedIDs, &CoinLogoStore::cachedIDsChanged)
};

} // namespace tickwise
