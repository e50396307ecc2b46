#pragma once

#include "pipeline/CoinListViewModel.h"
#include "pipeline/StatusItem.h"

#include <QColor>
#include <QPointer>
#include <QProperty>

#include <optional>
#include <vector>

namespace tickwise {

/// Draws the status item whenever the coins, the settings or the panel's appearance change. Main thread only.
class MenuBarViewModel : public QObject
{
    Q_OBJECT

public:
    explicit MenuBarViewModel(Clock clock = systemClock, QObject *parent = nullptr);

    /// Kept for observers; the drawing does not update it.
    QBindable<QString> bindableStatusTitle() { return &m_statusTitle; }
    /// Kept for observers; none is the panel's own text color.
    QBindable<std::optional<QColor>> bindableStatusColor() { return &m_statusColor; }

    /// Follows both models from now on and draws at once. The item is not owned and may go at any time.
    void bind(StatusItem *statusItem, CoinListViewModel &coinList, SettingsViewModel &settings);

    /// Draws the item for these coins and settings.
    void refresh(const std::vector<Coin> &coins, const AppSettings &settings);

    /// Draws the item for the bound models' values, in the current language.
    void refresh();

    /// What was drawn last.
    const StatusItemContent &content() const { return m_content; }

Q_SIGNALS:
    void statusTitleChanged();
    void statusColorChanged();
    void contentChanged();

private:
    Clock m_clock;
    StatusItemContent m_content;
    QPointer<StatusItem> m_statusItem;
    QPointer<CoinListViewModel> m_coinList;
    QPointer<SettingsViewModel> m_settings;
    std::vector<QPropertyNotifier> m_notifiers;
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(MenuBarViewModel, QString, m_statusTitle, QStringLiteral("BTC --"),
                                         &MenuBarViewModel::statusTitleChanged)
    Q_OBJECT_BINDABLE_PROPERTY(MenuBarViewModel, std::optional<QColor>, m_statusColor,
                               &MenuBarViewModel::statusColorChanged)
};

} // namespace tickwise
