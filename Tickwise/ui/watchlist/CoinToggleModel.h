#pragma once

#include "catalog/Coin.h"

#include <QAbstractListModel>

#include <functional>

namespace tickwise {

/// How a row shows whether its coin is in the watchlist, and what a click would do.
struct CoinToggleSymbol
{
    enum class Color
    {
        added,  ///< green
        remove, ///< red
        accent
    };

    QString name; ///< of the interface symbol
    Color color = Color::accent;
    double opacity = 1;
    bool operator==(const CoinToggleSymbol &) const = default;
};

CoinToggleSymbol coinToggleSymbol(bool isAdded, bool isHovered);

/// Coins that can be put into the watchlist and taken out of it, as rows. What a row tells is asked for when it is
/// looked at.
class CoinToggleModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role
    {
        isAddedRole = Qt::UserRole
    };

    using IsAdded = std::function<bool(const QString &id)>;

    explicit CoinToggleModel(IsAdded isAdded, QObject *parent = nullptr);

    void setCoins(std::vector<CoinMetadata> coins);
    const CoinMetadata &coin(const QModelIndex &index) const { return m_coins[static_cast<size_t>(index.row())]; }
    /// The watchlist, a logo or the language changed.
    void refresh();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    IsAdded m_isAdded;
    std::vector<CoinMetadata> m_coins;
};

} // namespace tickwise
