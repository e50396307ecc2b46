#include "ui/popover/CoinRowModel.h"

#include "pipeline/CoinListViewModel.h"
#include "settings/SettingsViewModel.h"

namespace tickwise {

namespace {

bool haveSameCoins(const std::vector<Coin> &some, const std::vector<Coin> &others)
{
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const Coin &one, const Coin &other) { return one.id == other.id; });
}

} // namespace

CoinRowModel::CoinRowModel(CoinListViewModel &coinList, SettingsViewModel &settings, Clock clock, QObject *parent)
    : QAbstractListModel(parent)
    , m_coinList(coinList)
    , m_settings(settings)
    , m_clock(std::move(clock))
    , m_coins(coinList.coins())
{
    connect(&coinList, &CoinListViewModel::coinsChanged, this, &CoinRowModel::takeCoins);
    connect(&settings, &SettingsViewModel::settingsChanged, this, &CoinRowModel::refresh);
}

void CoinRowModel::takeCoins()
{
    const std::vector<Coin> &coins = m_coinList.coins();
    if (haveSameCoins(m_coins, coins)) {
        m_coins = coins;
        refresh();
        return;
    }
    beginResetModel();
    m_coins = coins;
    endResetModel();
}

void CoinRowModel::refresh()
{
    if (!m_coins.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

int CoinRowModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_coins.size());
}

CoinRowInputs CoinRowModel::inputs(int row) const
{
    const AppSettings &settings = m_settings.settings();
    return {coin(row), settings, m_coinList.priceDataCurrency().value_or(settings.baseCurrency), m_clock()};
}

CoinRowContent CoinRowModel::content(int row) const
{
    return coinRowContent(inputs(row));
}

QVariant CoinRowModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return coin(index.row()).symbol;
    case Qt::ToolTipRole:
        return coinRowToolTip(inputs(index.row()));
    case Qt::AccessibleTextRole:
        return coinRowSpokenText(inputs(index.row()));
    default:
        return {};
    }
}

} // namespace tickwise
