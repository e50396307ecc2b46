#include "settings/SettingsTab.h"

namespace tickwise {

QString rawValue(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::general:
        return QStringLiteral("general");
    case SettingsTab::watchlist:
        return QStringLiteral("watchlist");
    case SettingsTab::about:
        return QStringLiteral("about");
    }
    return {};
}

template<>
std::vector<SettingsTab> allCases<SettingsTab>()
{
    return {SettingsTab::general, SettingsTab::watchlist, SettingsTab::about};
}

} // namespace tickwise
