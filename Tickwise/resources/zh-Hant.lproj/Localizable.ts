<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW">
<context>
    <name></name>
    <message id="a11y.alertKind">
        <source></source>
        <translation>%1 的提醒</translation>
    </message>
    <message id="a11y.alertThreshold">
        <source></source>
        <translation>%1 的提醒數值</translation>
    </message>
    <message id="a11y.change.down">
        <source></source>
        <translation>下跌百分之 %1</translation>
    </message>
    <message id="a11y.change.up">
        <source></source>
        <translation>上漲百分之 %1</translation>
    </message>
    <message id="a11y.coinAdded">
        <source></source>
        <translation>%1，%2，已在自選中</translation>
    </message>
    <message id="a11y.coinNotAdded">
        <source></source>
        <translation>%1，%2，未在自選中</translation>
    </message>
    <message id="a11y.delete">
        <source></source>
        <translation>從自選中移除 %1</translation>
    </message>
    <message id="a11y.list">
        <source></source>
        <translation>%1，%2</translation>
    </message>
    <message id="a11y.reorder">
        <source></source>
        <translation>移動 %1，使用 Alt 和方向鍵</translation>
    </message>
    <message id="a11y.statusItem">
        <source></source>
        <translation>Tickwise，加密貨幣價格</translation>
    </message>
    <message id="about.contact.email">
        <source></source>
        <translation>傳送電子郵件</translation>
    </message>
    <message id="about.dataSource.coinInfo">
        <source></source>
        <translation>幣種資訊與圖示：CoinGecko</translation>
    </message>
    <message id="about.dataSource.exchangeRate">
        <source></source>
        <translation>匯率：ExchangeRate-API 與開放資料集 currency-api</translation>
    </message>
    <message id="about.dataSource.price">
        <source></source>
        <translation>價格：Binance、OKX 與 Bybit 現貨市場</translation>
    </message>
    <message id="about.opensource.view">
        <source></source>
        <translation>檢視專案頁面</translation>
    </message>
    <message id="about.section.contact">
        <source></source>
        <translation>聯絡方式</translation>
    </message>
    <message id="about.section.dataSources">
        <source></source>
        <translation>資料來源</translation>
    </message>
    <message id="about.section.opensource">
        <source></source>
        <translation>開放原始碼</translation>
    </message>
    <message id="about.section.updates">
        <source></source>
        <translation>軟體更新</translation>
    </message>
    <message id="about.updates.automatic">
        <source></source>
        <translation>自動檢查更新</translation>
    </message>
    <message id="about.updates.check">
        <source></source>
        <translation>立即檢查</translation>
    </message>
    <message id="about.version">
        <source></source>
        <translation>版本 %1</translation>
    </message>
    <message id="alertKind.above">
        <source></source>
        <translation>漲至</translation>
    </message>
    <message id="alertKind.below">
        <source></source>
        <translation>跌至</translation>
    </message>
    <message id="alertKind.change">
        <source></source>
        <translation>漲跌幅</translation>
    </message>
    <message id="alertKind.notSet">
        <source></source>
        <translation>不提醒</translation>
    </message>
    <message id="coin.status.delisted">
        <source></source>
        <translation>已下架</translation>
    </message>
    <message id="colorScheme.custom">
        <source></source>
        <translation>自訂顏色</translation>
    </message>
    <message id="colorScheme.greenUpRedDown">
        <source></source>
        <translation>綠漲紅跌</translation>
    </message>
    <message id="colorScheme.redUpGreenDown">
        <source></source>
        <translation>紅漲綠跌</translation>
    </message>
    <message id="desktop.adjust.done">
        <source></source>
        <translation>完成</translation>
    </message>
    <message id="desktop.adjust.hint">
        <source></source>
        <translation>將清單拖曳到想要的位置</translation>
    </message>
    <message id="desktop.adjust.start">
        <source></source>
        <translation>調整位置…</translation>
    </message>
    <message id="desktop.opacity">
        <source></source>
        <translation>背景不透明度</translation>
    </message>
    <message id="desktop.textSize">
        <source></source>
        <translation>文字大小</translation>
    </message>
    <message id="desktop.textSize.large">
        <source></source>
        <translation>大</translation>
    </message>
    <message id="desktop.textSize.normal">
        <source></source>
        <translation>標準</translation>
    </message>
    <message id="desktop.unavailable">
        <source></source>
        <translation>目前的桌面環境不支援在桌面上顯示自選清單。</translation>
    </message>
    <message id="failure.badAnswer">
        <source></source>
        <translation>價格服務傳回的資料無法使用。</translation>
    </message>
    <message id="failure.cancelled">
        <source></source>
        <translation>請求已取消。</translation>
    </message>
    <message id="failure.clockWrong">
        <source></source>
        <translation>無法建立安全連線，請檢查這部電腦的日期與時間。</translation>
    </message>
    <message id="failure.hostNotFound">
        <source></source>
        <translation>無法解析價格服務的位址，請檢查 DNS 設定。</translation>
    </message>
    <message id="failure.offline">
        <source></source>
        <translation>這部電腦未連上網路。</translation>
    </message>
    <message id="failure.rateLimited">
        <source></source>
        <translation>價格服務要求暫緩請求，Tickwise 稍後會重試。</translation>
    </message>
    <message id="failure.rateLimitedUntil">
        <source></source>
        <translation>價格服務要求暫緩請求，%1 後重試。</translation>
    </message>
    <message id="failure.regionBlocked">
        <source></source>
        <translation>交易所拒絕來自您所在地區的請求。</translation>
    </message>
    <message id="failure.secureConnectionFailed">
        <source></source>
        <translation>無法建立安全連線。</translation>
    </message>
    <message id="failure.timedOut">
        <source></source>
        <translation>價格服務回應逾時。</translation>
    </message>
    <message id="failure.unreachable">
        <source></source>
        <translation>無法連線至價格服務。</translation>
    </message>
    <message id="general.desktop.overlay">
        <source></source>
        <translation>在桌面上顯示自選清單</translation>
    </message>
    <message id="general.display.colorScheme">
        <source></source>
        <translation>漲跌配色</translation>
    </message>
    <message id="general.display.currency">
        <source></source>
        <translation>計價貨幣</translation>
    </message>
    <message id="general.display.menubarCoin">
        <source></source>
        <translation>面板中的幣種</translation>
    </message>
    <message id="general.display.menubarCoin.hint">
        <source></source>
        <translation>只能選擇自選清單中的幣種。</translation>
    </message>
    <message id="general.display.menubarContent">
        <source></source>
        <translation>面板顯示內容</translation>
    </message>
    <message id="general.display.textBackground">
        <source></source>
        <translation>為文字加上背景</translation>
    </message>
    <message id="general.display.textColor">
        <source></source>
        <translation>依漲跌為價格著色</translation>
    </message>
    <message id="general.language.label">
        <source></source>
        <translation>語言</translation>
    </message>
    <message id="general.launch.atLogin">
        <source></source>
        <translation>登入時啟動</translation>
    </message>
    <message id="general.notification.priceAlert">
        <source></source>
        <translation>價格提醒</translation>
    </message>
    <message id="general.notification.service">
        <source></source>
        <translation>通知由 %1 顯示。</translation>
    </message>
    <message id="general.notification.test">
        <source></source>
        <translation>傳送測試通知</translation>
    </message>
    <message id="general.notification.unavailable">
        <source></source>
        <translation>沒有執行中的通知服務，無法顯示提醒。</translation>
    </message>
    <message id="general.priceColor.downColor">
        <source></source>
        <translation>下跌顏色</translation>
    </message>
    <message id="general.priceColor.upColor">
        <source></source>
        <translation>上漲顏色</translation>
    </message>
    <message id="general.section.desktop">
        <source></source>
        <translation>桌面</translation>
    </message>
    <message id="general.section.language">
        <source></source>
        <translation>語言</translation>
    </message>
    <message id="general.section.launch">
        <source></source>
        <translation>啟動</translation>
    </message>
    <message id="general.section.menubar">
        <source></source>
        <translation>面板</translation>
    </message>
    <message id="general.section.notification">
        <source></source>
        <translation>通知</translation>
    </message>
    <message id="general.section.prices">
        <source></source>
        <translation>價格</translation>
    </message>
    <message id="general.statusItem.needsExtension">
        <source></source>
        <translation>GNOME 本身不顯示狀態圖示。請安裝擴充套件「AppIndicator and KStatusNotifierItem Support」（在 Debian 和 Ubuntu 上是套件 gnome-shell-extension-appindicator），並在「擴充套件」中啟用。</translation>
    </message>
    <message id="general.statusItem.needsTrayBar">
        <source></source>
        <translation>這裡沒有能顯示狀態圖示的面板。請安裝 waybar，並在其設定中加入模組「tray」。</translation>
    </message>
    <message id="general.statusItem.needsPanel">
        <source></source>
        <translation>這裡沒有能顯示狀態圖示的面板。請加入帶有系統匣的面板，Tickwise 會立即顯示在其中。</translation>
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
        <translation>跟隨系統</translation>
    </message>
    <message id="loginItem.portalReason">
        <source></source>
        <translation>Tickwise 會在您登入時啟動，以便在面板中隨時顯示價格。</translation>
    </message>
    <message id="menu.about">
        <source></source>
        <translation>關於 Tickwise</translation>
    </message>
    <message id="menu.change">
        <source></source>
        <translation>切換幣種</translation>
    </message>
    <message id="menu.checkForUpdates">
        <source></source>
        <translation>檢查更新…</translation>
    </message>
    <message id="menu.open">
        <source></source>
        <translation>開啟 Tickwise</translation>
    </message>
    <message id="menu.quit">
        <source></source>
        <translation>結束 Tickwise</translation>
    </message>
    <message id="menu.setting">
        <source></source>
        <translation>設定…</translation>
    </message>
    <message id="menubarContent.icon">
        <source></source>
        <translation>圖示</translation>
    </message>
    <message id="menubarContent.price">
        <source></source>
        <translation>價格</translation>
    </message>
    <message id="notification.direction.down">
        <source></source>
        <translation>下跌</translation>
    </message>
    <message id="notification.direction.up">
        <source></source>
        <translation>上漲</translation>
    </message>
    <message id="notification.priceAlert.above">
        <source></source>
        <translation>%1 已漲至 %2 以上，現價 %3</translation>
    </message>
    <message id="notification.priceAlert.below">
        <source></source>
        <translation>%1 已跌至 %2 以下，現價 %3</translation>
    </message>
    <message id="notification.priceAlert.change">
        <source></source>
        <translation>%1 %2 %3，現價 %4</translation>
    </message>
    <message id="notification.priceAlert.notSet">
        <source></source>
        <translation>%1 現價 %2</translation>
    </message>
    <message id="notification.priceAlert.title">
        <source></source>
        <translation>%1 價格提醒</translation>
    </message>
    <message id="popover.addCoins">
        <source></source>
        <translation>新增幣種</translation>
    </message>
    <message id="popover.empty">
        <source></source>
        <translation>自選清單是空的</translation>
    </message>
    <message id="popover.loading">
        <source></source>
        <translation>正在載入價格…</translation>
    </message>
    <message id="popover.quit.help">
        <source></source>
        <translation>結束 Tickwise</translation>
    </message>
    <message id="popover.settings.help">
        <source></source>
        <translation>開啟設定</translation>
    </message>
    <message id="popover.updateAvailable">
        <source></source>
        <translation>更新</translation>
    </message>
    <message id="popover.updateAvailable.help">
        <source></source>
        <translation>Tickwise 有新版本可供更新</translation>
    </message>
    <message id="popover.watchlist">
        <source></source>
        <translation>自選</translation>
    </message>
    <message id="popover.watchlist.help">
        <source></source>
        <translation>編輯自選清單</translation>
    </message>
    <message id="settings.tab.about">
        <source></source>
        <translation>關於</translation>
    </message>
    <message id="settings.tab.general">
        <source></source>
        <translation>一般</translation>
    </message>
    <message id="settings.tab.watchlist">
        <source></source>
        <translation>自選</translation>
    </message>
    <message id="tooltip.age">
        <source></source>
        <translation>%1前更新</translation>
    </message>
    <message id="tooltip.age.days">
        <source></source>
        <translation>%1 天</translation>
    </message>
    <message id="tooltip.age.hours">
        <source></source>
        <translation>%1 小時</translation>
    </message>
    <message id="tooltip.age.minutes">
        <source></source>
        <translation>%1 分鐘</translation>
    </message>
    <message id="tooltip.age.now">
        <source></source>
        <translation>剛剛更新</translation>
    </message>
    <message id="tooltip.age.seconds">
        <source></source>
        <translation>%1 秒</translation>
    </message>
    <message id="tooltip.change24h">
        <source></source>
        <translation>24 小時漲跌：%1</translation>
    </message>
    <message id="tooltip.exactPrice">
        <source></source>
        <translation>%1 %2</translation>
    </message>
    <message id="tooltip.failure.title">
        <source></source>
        <translation>上次更新失敗</translation>
    </message>
    <message id="tooltip.fetchedAt">
        <source></source>
        <translation>取得時間：%1</translation>
    </message>
    <message id="tooltip.noPrice">
        <source></source>
        <translation>尚無價格</translation>
    </message>
    <message id="update.available">
        <source></source>
        <translation>Tickwise %1 現已推出，您目前使用的版本是 %2。</translation>
    </message>
    <message id="update.cancel">
        <source></source>
        <translation>取消</translation>
    </message>
    <message id="update.checking">
        <source></source>
        <translation>正在檢查更新…</translation>
    </message>
    <message id="update.close">
        <source></source>
        <translation>關閉</translation>
    </message>
    <message id="update.downloading">
        <source></source>
        <translation>正在下載更新… %1%</translation>
    </message>
    <message id="update.downloadingUnknownSize">
        <source></source>
        <translation>正在下載更新…</translation>
    </message>
    <message id="update.error.disk">
        <source></source>
        <translation>無法儲存更新，請檢查磁碟剩餘空間。</translation>
    </message>
    <message id="update.error.feed">
        <source></source>
        <translation>無法讀取更新清單。</translation>
    </message>
    <message id="update.error.feedMissing">
        <source></source>
        <translation>更新伺服器上找不到更新清單。</translation>
    </message>
    <message id="update.error.network">
        <source></source>
        <translation>無法連線至更新伺服器。</translation>
    </message>
    <message id="update.error.noSignature">
        <source></source>
        <translation>更新沒有簽章，因此未安裝。</translation>
    </message>
    <message id="update.error.noUpdateForSystem">
        <source></source>
        <translation>新版本不支援目前的系統。</translation>
    </message>
    <message id="update.error.packageMissing">
        <source></source>
        <translation>更新伺服器上找不到此更新。</translation>
    </message>
    <message id="update.error.signature">
        <source></source>
        <translation>更新的簽章無效，因此未安裝。</translation>
    </message>
    <message id="update.error.tooLarge">
        <source></source>
        <translation>更新檔案過大，因此未下載。</translation>
    </message>
    <message id="update.failed">
        <source></source>
        <translation>更新失敗：%1</translation>
    </message>
    <message id="update.install">
        <source></source>
        <translation>安裝更新</translation>
    </message>
    <message id="update.installManually">
        <source></source>
        <translation>更新已下載並通過驗證，但無法自動安裝。檔案位於：
%1</translation>
    </message>
    <message id="update.installed">
        <source></source>
        <translation>Tickwise %1 已安裝，重新啟動後生效。</translation>
    </message>
    <message id="update.installing">
        <source></source>
        <translation>正在安裝更新…</translation>
    </message>
    <message id="update.later">
        <source></source>
        <translation>稍後提醒</translation>
    </message>
    <message id="update.ready">
        <source></source>
        <translation>更新已下載並通過驗證。請安裝後重新啟動 Tickwise。</translation>
    </message>
    <message id="update.releaseNotes">
        <source></source>
        <translation>版本資訊</translation>
    </message>
    <message id="update.restart">
        <source></source>
        <translation>重新啟動 Tickwise</translation>
    </message>
    <message id="update.skip">
        <source></source>
        <translation>略過此版本</translation>
    </message>
    <message id="update.upToDate">
        <source></source>
        <translation>Tickwise %1 已是最新版本。</translation>
    </message>
    <message id="update.window.title">
        <source></source>
        <translation>軟體更新</translation>
    </message>
    <message id="watchlist.addCoin">
        <source></source>
        <translation>新增幣種…</translation>
    </message>
    <message id="watchlist.delete">
        <source></source>
        <translation>從自選清單移除</translation>
    </message>
    <message id="watchlist.recommended">
        <source></source>
        <translation>推薦幣種</translation>
    </message>
    <message id="watchlist.reorder">
        <source></source>
        <translation>拖曳以排序</translation>
    </message>
    <message id="watchlist.search.clear">
        <source></source>
        <translation>清除搜尋</translation>
    </message>
    <message id="watchlist.search.noResults">
        <source></source>
        <translation>找不到幣種</translation>
    </message>
    <message id="watchlist.search.placeholder">
        <source></source>
        <translation>以代號或名稱搜尋</translation>
    </message>
    <message id="widget.empty">
        <source></source>
        <translation>自選清單是空的</translation>
    </message>
    <message id="widget.list.title">
        <source></source>
        <translation>自選</translation>
    </message>
    <message id="widget.menu.close">
        <source></source>
        <translation>關閉小工具</translation>
    </message>
    <message id="widget.size.large">
        <source></source>
        <translation>大</translation>
    </message>
    <message id="widget.size.medium">
        <source></source>
        <translation>中</translation>
    </message>
    <message id="widget.size.small">
        <source></source>
        <translation>小</translation>
    </message>
    <message id="window.settings.title">
        <source></source>
        <translation>設定</translation>
    </message>
</context>
</TS>
