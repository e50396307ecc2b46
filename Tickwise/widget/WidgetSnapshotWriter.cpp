#include "widget/WidgetSnapshotWriter.h"

#include <QLoggingCategory>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcWidget, "com.pelmo.tickwise.Widget")

constexpr std::chrono::seconds debounceInterval{1};

} // namespace

WidgetSnapshotWriter::WidgetSnapshotWriter(WidgetSnapshotStore store, CoinListViewModel &coinList,
                                           SettingsViewModel &settings, std::function<void()> reloadWidgets,
                                           Clock clock, QObject *parent)
    : QObject(parent)
    , m_store(std::move(store))
    , m_coinList(coinList)
    , m_settings(settings)
    , m_reloadWidgets(std::move(reloadWidgets))
    , m_clock(std::move(clock))
{
    m_debounce.setSingleShot(true);
    m_debounce.setTimerType(Qt::PreciseTimer);
    m_debounce.setInterval(debounceInterval);
    connect(&m_debounce, &QTimer::timeout, this, &WidgetSnapshotWriter::write);
    m_coinsNotifier = m_coinList.bindableCoins().addNotifier([this] { m_debounce.start(); });
    m_settingsNotifier = m_settings.bindableSettings().addNotifier([this] { m_debounce.start(); });
    m_debounce.start();
}

void WidgetSnapshotWriter::write()
{
    if (!m_store.directory)
        return;
    const WidgetSnapshot snapshot = makeWidgetSnapshot(m_coinList.coins(), m_settings.settings(), m_clock());
    if (const Result<void> written = m_store.write(snapshot); !written) {
        qCWarning(lcWidget, "Widget snapshot not written: %s", qUtf8Printable(description(written.error())));
        return;
    }
    if (!needsWidgetReload(m_lastReload, snapshot))
        return;
    m_reloadWidgets();
    m_lastReload = {snapshot, snapshot.writtenAt};
}

} // namespace tickwise
