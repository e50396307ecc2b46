#include "ui/watchlist/WatchlistViewModel.h"

#include "pipeline/WatchlistEditing.h"
#include "ui/watchlist/WatchlistReorderSession.h"

#include <QFile>

namespace tickwise {

namespace {

QStringList loadSymbols(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return decodeRecommendedSymbols(file.readAll());
}

} // namespace

WatchlistViewModel::WatchlistViewModel(CoinCatalog &catalog, SettingsViewModel &settings,
                                       const QString &recommendedPath, QObject *parent)
    : QObject(parent)
    , m_catalog(catalog)
    , m_settings(settings)
    , m_recommendedSymbols(loadSymbols(recommendedPath))
    , m_search(catalog.coins())
{
    connect(&m_catalog, &CoinCatalog::coinsChanged, this, [this] {
        m_search = CoinSearch(m_catalog.coins());
        Q_EMIT coinsChanged();
    });
}

bool WatchlistViewModel::isAdded(const QString &id) const
{
    return isInWatchlist(m_settings.settings(), id);
}

void WatchlistViewModel::toggle(const QString &id, WatchlistReorderSession *session)
{
    if (session)
        session->cancel();
    m_settings.update(withCoinToggled(m_settings.settings(), id));
}

} // namespace tickwise
