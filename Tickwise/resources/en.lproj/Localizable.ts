<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="a11y.alertKind">
        <source></source>
        <translation>Alert of %1</translation>
    </message>
    <message id="a11y.alertThreshold">
        <source></source>
        <translation>Level of the alert of %1</translation>
    </message>
    <message id="a11y.change.down">
        <source></source>
        <translation>down %1 percent</translation>
    </message>
    <message id="a11y.change.up">
        <source></source>
        <translation>up %1 percent</translation>
    </message>
    <message id="a11y.coinAdded">
        <source></source>
        <translation>%1, %2, in the watchlist</translation>
    </message>
    <message id="a11y.coinNotAdded">
        <source></source>
        <translation>%1, %2, not in the watchlist</translation>
    </message>
    <message id="a11y.delete">
        <source></source>
        <translation>Remove %1 from the watchlist</translation>
    </message>
    <message id="a11y.list">
        <source></source>
        <translation>%1, %2</translation>
    </message>
    <message id="a11y.reorder">
        <source></source>
        <translation>Move %1, with Alt and the arrow keys</translation>
    </message>
    <message id="a11y.statusItem">
        <source></source>
        <translation>Tickwise, crypto prices</translation>
    </message>
    <message id="about.contact.email">
        <source></source>
        <translation>Send an email</translation>
    </message>
    <message id="about.dataSource.coinInfo">
        <source></source>
        <translation>Coin information and logos: CoinGecko</translation>
    </message>
    <message id="about.dataSource.exchangeRate">
        <source></source>
        <translation>Exchange rates: ExchangeRate-API and the open currency-api data set</translation>
    </message>
    <message id="about.dataSource.price">
        <source></source>
        <translation>Prices: spot markets of Binance, OKX and Bybit</translation>
    </message>
    <message id="about.opensource.view">
        <source></source>
        <translation>View the project page</translation>
    </message>
    <message id="about.section.contact">
        <source></source>
        <translation>Contact</translation>
    </message>
    <message id="about.section.dataSources">
        <source></source>
        <translation>Data sources</translation>
    </message>
    <message id="about.section.opensource">
        <source></source>
        <translation>Open source</translation>
    </message>
    <message id="about.section.updates">
        <source></source>
        <translation>Updates</translation>
    </message>
    <message id="about.updates.automatic">
        <source></source>
        <translation>Check for updates automatically</translation>
    </message>
    <message id="about.updates.check">
        <source></source>
        <translation>Check now</translation>
    </message>
    <message id="about.version">
        <source></source>
        <translation>Version %1</translation>
    </message>
    <message id="alertKind.above">
        <source></source>
        <translation>Rises to</translation>
    </message>
    <message id="alertKind.below">
        <source></source>
        <translation>Falls to</translation>
    </message>
    <message id="alertKind.change">
        <source></source>
        <translation>Moves by</translation>
    </message>
    <message id="alertKind.notSet">
        <source></source>
        <translation>No alert</translation>
    </message>
    <message id="coin.status.delisted">
        <source></source>
        <translation>Delisted</translation>
    </message>
    <message id="colorScheme.custom">
        <source></source>
        <translation>Custom colors</translation>
    </message>
    <message id="colorScheme.greenUpRedDown">
        <source></source>
        <translation>Green up, red down</translation>
    </message>
    <message id="colorScheme.redUpGreenDown">
        <source></source>
        <translation>Red up, green down</translation>
    </message>
    <message id="desktop.adjust.done">
        <source></source>
        <translation>Done</translation>
    </message>
    <message id="desktop.adjust.hint">
        <source></source>
        <translation>Drag the list to where you want it</translation>
    </message>
    <message id="desktop.adjust.start">
        <source></source>
        <translation>Adjust position…</translation>
    </message>
    <message id="desktop.opacity">
        <source></source>
        <translation>Background opacity</translation>
    </message>
    <message id="desktop.textSize">
        <source></source>
        <translation>Text size</translation>
    </message>
    <message id="desktop.textSize.large">
        <source></source>
        <translation>Large</translation>
    </message>
    <message id="desktop.textSize.normal">
        <source></source>
        <translation>Normal</translation>
    </message>
    <message id="desktop.unavailable">
        <source></source>
        <translation>This desktop cannot show the watchlist on its background.</translation>
    </message>
    <message id="failure.badAnswer">
        <source></source>
        <translation>The price services sent an answer that Tickwise could not use.</translation>
    </message>
    <message id="failure.cancelled">
        <source></source>
        <translation>The request was canceled.</translation>
    </message>
    <message id="failure.clockWrong">
        <source></source>
        <translation>No secure connection is possible. Check this computer’s date and time.</translation>
    </message>
    <message id="failure.hostNotFound">
        <source></source>
        <translation>The price services could not be found. Check your DNS settings.</translation>
    </message>
    <message id="failure.offline">
        <source></source>
        <translation>This computer is offline.</translation>
    </message>
    <message id="failure.rateLimited">
        <source></source>
        <translation>The price services ask for a pause. Tickwise will try again later.</translation>
    </message>
    <message id="failure.rateLimitedUntil">
        <source></source>
        <translation>The price services ask for a pause until %1.</translation>
    </message>
    <message id="failure.regionBlocked">
        <source></source>
        <translation>The exchanges refuse requests from your region.</translation>
    </message>
    <message id="failure.secureConnectionFailed">
        <source></source>
        <translation>No secure connection could be made.</translation>
    </message>
    <message id="failure.timedOut">
        <source></source>
        <translation>The price services took too long to answer.</translation>
    </message>
    <message id="failure.unreachable">
        <source></source>
        <translation>The price services could not be reached.</translation>
    </message>
    <message id="general.desktop.overlay">
        <source></source>
        <translation>Show the watchlist on the desktop</translation>
    </message>
    <message id="general.display.colorScheme">
        <source></source>
        <translation>Color scheme</translation>
    </message>
    <message id="general.display.currency">
        <source></source>
        <translation>Display currency</translation>
    </message>
    <message id="general.display.menubarCoin">
        <source></source>
        <translation>Coin in the panel</translation>
    </message>
    <message id="general.display.menubarCoin.hint">
        <source></source>
        <translation>Only coins on your watchlist can be chosen.</translation>
    </message>
    <message id="general.display.menubarContent">
        <source></source>
        <translation>Show in the panel</translation>
    </message>
    <message id="general.display.textBackground">
        <source></source>
        <translation>Background behind the text</translation>
    </message>
    <message id="general.display.textColor">
        <source></source>
        <translation>Color prices by their change</translation>
    </message>
    <message id="general.language.label">
        <source></source>
        <translation>Language</translation>
    </message>
    <message id="general.launch.atLogin">
        <source></source>
        <translation>Launch at login</translation>
    </message>
    <message id="general.notification.priceAlert">
        <source></source>
        <translation>Price alerts</translation>
    </message>
    <message id="general.notification.service">
        <source></source>
        <translation>Notifications are shown by %1.</translation>
    </message>
    <message id="general.notification.test">
        <source></source>
        <translation>Send a test notification</translation>
    </message>
    <message id="general.notification.unavailable">
        <source></source>
        <translation>No notification service is running, so alerts cannot be shown.</translation>
    </message>
    <message id="general.priceColor.downColor">
        <source></source>
        <translation>Falling</translation>
    </message>
    <message id="general.priceColor.upColor">
        <source></source>
        <translation>Rising</translation>
    </message>
    <message id="general.section.desktop">
        <source></source>
        <translation>Desktop</translation>
    </message>
    <message id="general.section.language">
        <source></source>
        <translation>Language</translation>
    </message>
    <message id="general.section.launch">
        <source></source>
        <translation>Startup</translation>
    </message>
    <message id="general.section.menubar">
        <source></source>
        <translation>Panel</translation>
    </message>
    <message id="general.section.notification">
        <source></source>
        <translation>Notifications</translation>
    </message>
    <message id="general.section.prices">
        <source></source>
        <translation>Prices</translation>
    </message>
    <message id="general.statusItem.needsExtension">
        <source></source>
        <translation>GNOME shows no status items by itself. Install the extension “AppIndicator and KStatusNotifierItem Support” (on Debian and Ubuntu the package gnome-shell-extension-appindicator) and enable it in Extensions.</translation>
    </message>
    <message id="general.statusItem.needsTrayBar">
        <source></source>
        <translation>No bar here shows status items. Install waybar and add the module “tray” to its configuration.</translation>
    </message>
    <message id="general.statusItem.needsPanel">
        <source></source>
        <translation>No panel here shows status items. Add a panel with a tray for status items; Tickwise appears in it at once.</translation>
    </message>
    <message id="lang.endonym.en">
        <source></source>
        <translation>English</translation>
    </message>
    <message id="lang.endonym.zh-Hans">
        <source></source>
        <translation>简体中文</translation>
    </message>
    <message id="lang.endonym.zh-Hant">
        <source></source>
        <translation>繁體中文</translation>
    </message>
    <message id="lang.system">
        <source></source>
        <translation>System language</translation>
    </message>
    <message id="loginItem.portalReason">
        <source></source>
        <translation>Tickwise starts when you log in, so that prices are always in the panel.</translation>
    </message>
    <message id="menu.about">
        <source></source>
        <translation>About Tickwise</translation>
    </message>
    <message id="menu.change">
        <source></source>
        <translation>Change coin</translation>
    </message>
    <message id="menu.checkForUpdates">
        <source></source>
        <translation>Check for updates…</translation>
    </message>
    <message id="menu.open">
        <source></source>
        <translation>Open Tickwise</translation>
    </message>
    <message id="menu.quit">
        <source></source>
        <translation>Quit Tickwise</translation>
    </message>
    <message id="menu.setting">
        <source></source>
        <translation>Settings…</translation>
    </message>
    <message id="menubarContent.icon">
        <source></source>
        <translation>Logo</translation>
    </message>
    <message id="menubarContent.price">
        <source></source>
        <translation>Price</translation>
    </message>
    <message id="notification.direction.down">
        <source></source>
        <translation>down</translation>
    </message>
    <message id="notification.direction.up">
        <source></source>
        <translation>up</translation>
    </message>
    <message id="notification.priceAlert.above">
        <source></source>
        <translation>%1 has risen to %2 or above, now at %3</translation>
    </message>
    <message id="notification.priceAlert.below">
        <source></source>
        <translation>%1 has fallen to %2 or below, now at %3</translation>
    </message>
    <message id="notification.priceAlert.change">
        <source></source>
        <translation>%1 is %2 %3, now at %4</translation>
    </message>
    <message id="notification.priceAlert.notSet">
        <source></source>
        <translation>%1 is now at %2</translation>
    </message>
    <message id="notification.priceAlert.title">
        <source></source>
        <translation>%1 price alert</translation>
    </message>
    <message id="popover.addCoins">
        <source></source>
        <translation>Add coins</translation>
    </message>
    <message id="popover.empty">
        <source></source>
        <translation>Your watchlist is empty</translation>
    </message>
    <message id="popover.loading">
        <source></source>
        <translation>Loading prices…</translation>
    </message>
    <message id="popover.quit.help">
        <source></source>
        <translation>Quit Tickwise</translation>
    </message>
    <message id="popover.settings.help">
        <source></source>
        <translation>Open the settings</translation>
    </message>
    <message id="popover.updateAvailable">
        <source></source>
        <translation>Update</translation>
    </message>
    <message id="popover.updateAvailable.help">
        <source></source>
        <translation>A new version of Tickwise is available</translation>
    </message>
    <message id="popover.watchlist">
        <source></source>
        <translation>Watchlist</translation>
    </message>
    <message id="popover.watchlist.help">
        <source></source>
        <translation>Edit the watchlist</translation>
    </message>
    <message id="settings.tab.about">
        <source></source>
        <translation>About</translation>
    </message>
    <message id="settings.tab.general">
        <source></source>
        <translation>General</translation>
    </message>
    <message id="settings.tab.watchlist">
        <source></source>
        <translation>Watchlist</translation>
    </message>
    <message id="tooltip.age">
        <source></source>
        <translation>Updated %1 ago</translation>
    </message>
    <message id="tooltip.age.days">
        <source></source>
        <translation>%1 d</translation>
    </message>
    <message id="tooltip.age.hours">
        <source></source>
        <translation>%1 h</translation>
    </message>
    <message id="tooltip.age.minutes">
        <source></source>
        <translation>%1 min</translation>
    </message>
    <message id="tooltip.age.now">
        <source></source>
        <translation>Updated just now</translation>
    </message>
    <message id="tooltip.age.seconds">
        <source></source>
        <translation>%1 s</translation>
    </message>
    <message id="tooltip.change24h">
        <source></source>
        <translation>24 hours: %1</translation>
    </message>
    <message id="tooltip.exactPrice">
        <source></source>
        <translation>%1 %2</translation>
    </message>
    <message id="tooltip.failure.title">
        <source></source>
        <translation>The last update failed</translation>
    </message>
    <message id="tooltip.fetchedAt">
        <source></source>
        <translation>Fetched at %1</translation>
    </message>
    <message id="tooltip.noPrice">
        <source></source>
        <translation>No price yet</translation>
    </message>
    <message id="update.available">
        <source></source>
        <translation>Tickwise %1 is available. You have version %2.</translation>
    </message>
    <message id="update.cancel">
        <source></source>
        <translation>Cancel</translation>
    </message>
    <message id="update.checking">
        <source></source>
        <translation>Checking for updates…</translation>
    </message>
    <message id="update.close">
        <source></source>
        <translation>Close</translation>
    </message>
    <message id="update.downloading">
        <source></source>
        <translation>Downloading the update… %1%</translation>
    </message>
    <message id="update.downloadingUnknownSize">
        <source></source>
        <translation>Downloading the update…</translation>
    </message>
    <message id="update.error.disk">
        <source></source>
        <translation>The update could not be saved. Check the free disk space.</translation>
    </message>
    <message id="update.error.feed">
        <source></source>
        <translation>The list of updates could not be read.</translation>
    </message>
    <message id="update.error.feedMissing">
        <source></source>
        <translation>The list of updates was not found on the update server.</translation>
    </message>
    <message id="update.error.network">
        <source></source>
        <translation>The update server could not be reached.</translation>
    </message>
    <message id="update.error.noSignature">
        <source></source>
        <translation>The update carries no signature, so it was not installed.</translation>
    </message>
    <message id="update.error.noUpdateForSystem">
        <source></source>
        <translation>The new version does not run on this system.</translation>
    </message>
    <message id="update.error.packageMissing">
        <source></source>
        <translation>The update was not found on the update server.</translation>
    </message>
    <message id="update.error.signature">
        <source></source>
        <translation>The update’s signature is not valid, so it was not installed.</translation>
    </message>
    <message id="update.error.tooLarge">
        <source></source>
        <translation>The update is larger than expected, so it was not downloaded.</translation>
    </message>
    <message id="update.failed">
        <source></source>
        <translation>The update failed: %1</translation>
    </message>
    <message id="update.install">
        <source></source>
        <translation>Install update</translation>
    </message>
    <message id="update.installManually">
        <source></source>
        <translation>The update was downloaded and verified, but it could not be installed automatically. You find it here:
%1</translation>
    </message>
    <message id="update.installed">
        <source></source>
        <translation>Tickwise %1 is installed. Restart Tickwise to use it.</translation>
    </message>
    <message id="update.installing">
        <source></source>
        <translation>Installing the update…</translation>
    </message>
    <message id="update.later">
        <source></source>
        <translation>Remind me later</translation>
    </message>
    <message id="update.ready">
        <source></source>
        <translation>The update was downloaded and verified. Install it, then restart Tickwise.</translation>
    </message>
    <message id="update.releaseNotes">
        <source></source>
        <translation>Release notes</translation>
    </message>
    <message id="update.restart">
        <source></source>
        <translation>Restart Tickwise</translation>
    </message>
    <message id="update.skip">
        <source></source>
        <translation>Skip this version</translation>
    </message>
    <message id="update.upToDate">
        <source></source>
        <translation>Tickwise %1 is the newest version.</translation>
    </message>
    <message id="update.window.title">
        <source></source>
        <translation>Software update</translation>
    </message>
    <message id="watchlist.addCoin">
        <source></source>
        <translation>Add coin…</translation>
    </message>
    <message id="watchlist.delete">
        <source></source>
        <translation>Remove from the watchlist</translation>
    </message>
    <message id="watchlist.recommended">
        <source></source>
        <translation>Recommended</translation>
    </message>
    <message id="watchlist.reorder">
        <source></source>
        <translation>Drag to reorder</translation>
    </message>
    <message id="watchlist.search.clear">
        <source></source>
        <translation>Clear the search</translation>
    </message>
    <message id="watchlist.search.noResults">
        <source></source>
        <translation>No coins found</translation>
    </message>
    <message id="watchlist.search.placeholder">
        <source></source>
        <translation>Search by symbol or name</translation>
    </message>
    <message id="widget.empty">
        <source></source>
        <translation>Your watchlist is empty</translation>
    </message>
    <message id="widget.list.title">
        <source></source>
        <translation>Watchlist</translation>
    </message>
    <message id="widget.menu.close">
        <source></source>
        <translation>Close Widget</translation>
    </message>
    <message id="widget.size.large">
        <source></source>
        <translation>Large</translation>
    </message>
    <message id="widget.size.medium">
        <source></source>
        <translation>Medium</translation>
    </message>
    <message id="widget.size.small">
        <source></source>
        <translation>Small</translation>
    </message>
    <message id="window.settings.title">
        <source></source>
        <translation>Settings</translation>
    </message>
</context>
</TS>
