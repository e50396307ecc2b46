#include "app/StatusMenu.h"

#include "support/Localization.h"

namespace tickwise {

namespace {

MenuEntry separator()
{
    MenuEntry entry;
    entry.kind = MenuEntry::Kind::separator;
    return entry;
}

MenuEntry action(const QString &key, const QString &iconName, std::function<void()> activate)
{
    MenuEntry entry;
    entry.text = localized(key);
    entry.iconName = iconName;
    entry.activate = std::move(activate);
    return entry;
}

MenuEntry coinChoice(const AppSettings &settings, const CoinCatalog &catalog, const StatusMenuActions &actions)
{
    MenuEntry choice;
    choice.kind = MenuEntry::Kind::submenu;
    choice.text = localized(QStringLiteral("menu.change"));
    for (const WatchlistCoin &watched : settings.watchlistCoins) {
        const CoinMetadata *const coin = catalog.byID().value(watched.coinId);
        if (!coin)
            continue;
        MenuEntry entry;
        entry.text = coin->symbol + QStringLiteral(" - ") + coin->name;
        entry.checked = coin->id == settings.displayedCoinId;
        entry.activate = [change = actions.changeCoin, id = coin->id] { change(id); };
        choice.children.push_back(std::move(entry));
    }
    return choice;
}

} // namespace

Menu statusMenu(const AppSettings &settings, const CoinCatalog &catalog, bool canCheckForUpdates,
                const StatusMenuActions &actions)
{
    MenuEntry updates = action(QStringLiteral("menu.checkForUpdates"), QStringLiteral("arrow.down.circle.fill"),
                               actions.checkForUpdates);
    updates.enabled = canCheckForUpdates;
    return {coinChoice(settings, catalog, actions),
            separator(),
            action(QStringLiteral("menu.setting"), QStringLiteral("gearshape"), actions.openSettings),
            action(QStringLiteral("menu.about"), QStringLiteral("info.circle"), actions.openAbout),
            std::move(updates),
            separator(),
            action(QStringLiteral("menu.quit"), QStringLiteral("power"), actions.quit)};
}

} // namespace tickwise
