#include "settings/SettingsViewModel.h"

#include "settings/PriceColors.h"

namespace tickwise {

SettingsViewModel::SettingsViewModel(UserDefaultsSettingsStore store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    m_settings = m_store.load().value_or(AppSettings());
}

void SettingsViewModel::update(const AppSettings &settings)
{
    m_settings = settings;
    // Not the argument: a subscriber may have published a further change just now.
    m_store.save(m_settings);
}

std::optional<QColor> SettingsViewModel::priceColor(std::optional<double> change) const
{
    return tickwise::priceColor(m_settings, change);
}

} // namespace tickwise
