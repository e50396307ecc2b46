#include "ui/watchlist/CoinToggleModel.h"

#include "support/Localization.h"

#include <algorithm>

namespace tickwise {

CoinToggleSymbol coinToggleSymbol(bool isAdded, bool isHovered)
{
    using enum CoinToggleSymbol::Color;
    if (isAdded && isHovered)
        return {QStringLiteral("minus.circle.fill"), remove, 1};
    if (isAdded)
        return {QStringLiteral("checkmark.circle.fill"), added, 1};
    return {QStringLiteral("plus.circle"), accent, isHovered ? 1 : 0.55};
}

CoinToggleModel::CoinToggleModel(IsAdded isAdded, QObject *parent)
    : QAbstractListModel(parent)
    , m_isAdded(std::move(isAdded))
{
}

void CoinToggleModel::setCoins(std::vector<CoinMetadata> coins)
{
    if (std::ranges::equal(coins, m_coins, {}, &CoinMetadata::id, &CoinMetadata::id))
        return refresh();
    beginResetModel();
    m_coins = std::move(coins);
    endResetModel();
}

void CoinToggleModel::refresh()
{
    if (!m_coins.empty())
        Q_EMIT dataChanged(index(0), index(static_cast<int>(m_coins.size()) - 1));
}

int CoinToggleModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_coins.size());
}

QVariant CoinToggleModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const CoinMetadata &row = coin(index);
    switch (role) {
    case Qt::DisplayRole:
        return row.symbol;
    case Qt::ToolTipRole:
        return row.name;
    case isAddedRole:
        return m_isAdded(row.id);
    case Qt::AccessibleTextRole:
        return localized(m_isAdded(row.id) ? QStringLiteral("a11y.coinAdded") : QStringLiteral("a11y.coinNotAdded"))
            .arg(row.name, row.symbol);
    default:
        return {};
    }
}

} // namespace tickwise
