#pragma once

#include "settings/AppSettings.h"
#include "settings/SettingsTab.h"
#include "settings/UserDefaultsSettingsStore.h"

#include <QColor>
#include <QObject>
#include <QProperty>

#include <optional>

namespace tickwise {

/// The one observable owner of the current settings and of the tab that the settings window shows. Main thread only.
class SettingsViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(tickwise::AppSettings settings READ settings NOTIFY settingsChanged BINDABLE bindableSettings)

public:
    /// Loads the stored record; writes nothing.
    explicit SettingsViewModel(UserDefaultsSettingsStore store, QObject *parent = nullptr);

    const AppSettings &settings() const { return m_settings.value(); }
    QBindable<AppSettings> bindableSettings() const { return &m_settings; }

    SettingsTab settingsWindowTab() const { return m_settingsWindowTab; }
    void setSettingsWindowTab(SettingsTab tab) { m_settingsWindowTab = tab; }
    QBindable<SettingsTab> bindableSettingsWindowTab() { return &m_settingsWindowTab; }

    /// Publishes the record, then saves it at once. The only way to change settings.
    void update(const AppSettings &settings);

    /// The color of a price with that 24-hour change in percent; none means the neutral primary text color.
    std::optional<QColor> priceColor(std::optional<double> change) const;

Q_SIGNALS:
    void settingsChanged();
    void settingsWindowTabChanged();

private:
    Q_OBJECT_BINDABLE_PROPERTY(SettingsViewModel, AppSettings, m_settings, &SettingsViewModel::settingsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(SettingsViewModel, SettingsTab, m_settingsWindowTab, SettingsTab::general,
                                         &SettingsViewModel::settingsWindowTabChanged)
    UserDefaultsSettingsStore m_store;
};

} // namespace tickwise
