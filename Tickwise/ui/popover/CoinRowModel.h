#pragma once

#include "catalog/Coin.h"
#include "pipeline/CoinRowContent.h"
#include "support/Clock.h"

#include <QAbstractListModel>

namespace tickwise {

class CoinListViewModel;
class SettingsViewModel;

/// The coins of the watchlist as rows. What a row shows is computed when the row is looked at, so that a long list
/// costs no more than a short one.
class CoinRowModel : public QAbstractListModel
{
    Q_OBJECT

public:
    CoinRowModel(CoinListViewModel &coinList, SettingsViewModel &settings, Clock clock, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    const Coin &coin(int row) const { return m_coins[std::size_t(row)]; }
    CoinRowContent content(int row) const;

    /// Every row is to be shown anew: the settings or the language changed.
    void refresh();

private:
    CoinRowInputs inputs(int row) const;
    void takeCoins();

    CoinListViewModel &m_coinList;
    SettingsViewModel &m_settings;
    Clock m_clock;
    std::vector<Coin> m_coins;
};

} // namespace tickwise
