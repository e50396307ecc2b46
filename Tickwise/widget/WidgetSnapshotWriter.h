#pragma once

#include "pipeline/CoinListViewModel.h"
#include "settings/SettingsViewModel.h"
#include "widget/ReloadDecision.h"
#include "widget/WidgetSnapshotStore.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <vector>

namespace tickwise {

/// Keeps the widget's snapshot file current: 1 s after the last change of coins or settings it writes the file and,
/// where the picture changed visibly, has the widgets redrawn. Main thread only.
class WidgetSnapshotWriter : public QObject
{
    Q_OBJECT

public:
    WidgetSnapshotWriter(WidgetSnapshotStore store, CoinListViewModel &coinList, SettingsViewModel &settings,
                         std::function<void()> reloadWidgets, Clock clock = systemClock, QObject *parent = nullptr);

private:
    void write();

    WidgetSnapshotStore m_store;
    CoinListViewModel &m_coinList;
    SettingsViewModel &m_settings;
    std::function<void()> m_reloadWidgets;
    Clock m_clock;
    QTimer m_debounce{this};
    std::optional<WidgetReload> m_lastReload;
    QPropertyNotifier m_coinsNotifier;
    QPropertyNotifier m_settingsNotifier;
};

} // namespace tickwise
