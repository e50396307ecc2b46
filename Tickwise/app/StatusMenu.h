#pragma once

#include "catalog/CoinCatalog.h"
#include "pipeline/Menu.h"
#include "settings/AppSettings.h"

#include <functional>

namespace tickwise {

/// What the entries of the status menu do.
struct StatusMenuActions
{
    std::function<void(const QString &coinId)> changeCoin;
    std::function<void()> openSettings;
    std::function<void()> openAbout;
    std::function<void()> checkForUpdates;
    std::function<void()> quit;
};

/// The status menu for these settings, in the current language.
Menu statusMenu(const AppSettings &settings, const CoinCatalog &catalog, bool canCheckForUpdates,
                const StatusMenuActions &actions);

} // namespace tickwise
