#pragma once

#include "catalog/CoinCatalog.h"
#include "pipeline/CoinSearch.h"
#include "settings/SettingsViewModel.h"

#include <QObject>
#include <QProperty>

namespace tickwise {

class WatchlistReorderSession;

/// What the search panel and the recommended rows show, and what a click on one of their rows does. Main thread only.
class WatchlistViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(
        QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged BINDABLE bindableSearchText)

public:
    /// The catalog and the settings outlive this object. `recommendedPath` is a JSON array of symbols; one that cannot
    /// be read recommends nothing.
    WatchlistViewModel(CoinCatalog &catalog, SettingsViewModel &settings,
                       const QString &recommendedPath = QStringLiteral(":/recommendedCoins.json"),
                       QObject *parent = nullptr);

    /// The text of the search field exactly as it was typed.
    QString searchText() const { return m_searchText; }
    void setSearchText(const QString &text) { m_searchText = text; }
    QBindable<QString> bindableSearchText() { return &m_searchText; }

    /// The upper-case symbols that are recommended, known to the catalog or not.
    const QStringList &recommendedSymbols() const { return m_recommendedSymbols; }

    /// The panel's rows for the current search text.
    std::vector<CoinMetadata> visibleCoins() const { return m_search.visibleCoins(searchText()); }
    /// The coins that match the query, by `CoinSearch::matches`.
    std::vector<CoinMetadata> searchResults(const QString &query) const { return m_search.matches(query); }
    /// The recommended coins of the catalog, those in the watchlist included.
    std::vector<CoinMetadata> recommendedCoins() const { return m_search.withSymbols(m_recommendedSymbols); }

    /// Whether the coin is in the watchlist.
    bool isAdded(const QString &id) const;

    /// Ends a drag of the watchlist without its new order; then removes the coin from the watchlist, or adds it.
    void toggle(const QString &id, WatchlistReorderSession *session);

Q_SIGNALS:
    void searchTextChanged();
    /// Other coins are offered, searched and recommended.
    void coinsChanged();

private:
    CoinCatalog &m_catalog;
    SettingsViewModel &m_settings;
    QStringList m_recommendedSymbols;
    CoinSearch m_search;
    Q_OBJECT_BINDABLE_PROPERTY(WatchlistViewModel, QString, m_searchText, &WatchlistViewModel::searchTextChanged)
};

} // namespace tickwise
