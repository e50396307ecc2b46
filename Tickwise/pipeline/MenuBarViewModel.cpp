#include "pipeline/MenuBarViewModel.h"

#include "pipeline/StatusItemContent.h"

namespace tickwise {

MenuBarViewModel::MenuBarViewModel(Clock clock, QObject *parent)
    : QObject(parent)
    , m_clock(std::move(clock))
{
}

void MenuBarViewModel::bind(StatusItem *statusItem, CoinListViewModel &coinList, SettingsViewModel &settings)
{
    m_statusItem = statusItem;
    m_coinList = &coinList;
    m_settings = &settings;
    const auto redraw = [this] { refresh(); };
    m_notifiers.clear();
    m_notifiers.push_back(coinList.bindableCoins().addNotifier(redraw));
    m_notifiers.push_back(settings.bindableSettings().addNotifier(redraw));
    // The end of each fetch refreshes the failure that the tooltip tells.
    m_notifiers.push_back(coinList.bindableIsLoading().addNotifier([this] {
        if (m_coinList && !m_coinList->isLoading())
            refresh();
    }));
    connect(statusItem, &StatusItem::appearanceChanged, this, redraw);
    refresh();
}

void MenuBarViewModel::refresh()
{
    if (m_coinList && m_settings)
        refresh(m_coinList->coins(), m_settings->settings());
}

void MenuBarViewModel::refresh(const std::vector<Coin> &coins, const AppSettings &settings)
{
    if (!m_statusItem)
        return;
    const std::optional<ProviderFailure> failure = m_coinList ? m_coinList->lastFetchFailure() : std::nullopt;
    const std::optional<BaseCurrency> currency = m_coinList ? m_coinList->priceDataCurrency() : std::nullopt;
    StatusItemContent content =
        statusItemContent({coins, settings, m_statusItem->appearance(), m_clock(), failure, currency});
    m_statusItem->setContent(content);
    if (content == m_content)
        return;
    m_content = std::move(content);
    Q_EMIT contentChanged();
}

} // namespace tickwise
