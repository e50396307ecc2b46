<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name></name>
    <message id="a11y.alertKind">
        <source></source>
        <translation>%1 的提醒</translation>
    </message>
    <message id="a11y.alertThreshold">
        <source></source>
        <translation>%1 的提醒数值</translation>
    </message>
    <message id="a11y.change.down">
        <source></source>
        <translation>下跌百分之 %1</translation>
    </message>
    <message id="a11y.change.up">
        <source></source>
        <translation>上涨百分之 %1</translation>
    </message>
    <message id="a11y.coinAdded">
        <source></source>
        <translation>%1，%2，已在自选中</translation>
    </message>
    <message id="a11y.coinNotAdded">
        <source></source>
        <translation>%1，%2，未在自选中</translation>
    </message>
    <message id="a11y.delete">
        <source></source>
        <translation>从自选中移除 %1</translation>
    </message>
    <message id="a11y.list">
        <source></source>
        <translation>%1，%2</translation>
    </message>
    <message id="a11y.reorder">
        <source></source>
        <translation>移动 %1，使用 Alt 和方向键</translation>
    </message>
    <message id="a11y.statusItem">
        <source></source>
        <translation>Tickwise，加密货币价格</translation>
    </message>
    <message id="about.contact.email">
        <source></source>
        <translation>发送电子邮件</translation>
    </message>
    <message id="about.dataSource.coinInfo">
        <source></source>
        <translation>币种信息与图标：CoinGecko</translation>
    </message>
    <message id="about.dataSource.exchangeRate">
        <source></source>
        <translation>汇率：ExchangeRate-API 与开放数据集 currency-api</translation>
    </message>
    <message id="about.dataSource.price">
        <source></source>
        <translation>价格：Binance、OKX 与 Bybit 现货市场</translation>
    </message>
    <message id="about.opensource.view">
        <source></source>
        <translation>查看项目主页</translation>
    </message>
    <message id="about.section.contact">
        <source></source>
        <translation>联系方式</translation>
    </message>
    <message id="about.section.dataSources">
        <source></source>
        <translation>数据来源</translation>
    </message>
    <message id="about.section.opensource">
        <source></source>
        <translation>开源项目</translation>
    </message>
    <message id="about.section.updates">
        <source></source>
        <translation>软件更新</translation>
    </message>
    <message id="about.updates.automatic">
        <source></source>
        <translation>自动检查更新</translation>
    </message>
    <message id="about.updates.check">
        <source></source>
        <translation>立即检查</translation>
    </message>
    <message id="about.version">
        <source></source>
        <translation>版本 %1</translation>
    </message>
    <message id="alertKind.above">
        <source></source>
        <translation>涨至</translation>
    </message>
    <message id="alertKind.below">
        <source></source>
        <translation>跌至</translation>
    </message>
    <message id="alertKind.change">
        <source></source>
        <translation>涨跌幅</translation>
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
        <translation>自定义颜色</translation>
    </message>
    <message id="colorScheme.greenUpRedDown">
        <source></source>
        <translation>绿涨红跌</translation>
    </message>
    <message id="colorScheme.redUpGreenDown">
        <source></source>
        <translation>红涨绿跌</translation>
    </message>
    <message id="desktop.adjust.done">
        <source></source>
        <translation>完成</translation>
    </message>
    <message id="desktop.adjust.hint">
        <source></source>
        <translation>将列表拖到想要的位置</translation>
    </message>
    <message id="desktop.adjust.start">
        <source></source>
        <translation>调整位置…</translation>
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
        <translation>标准</translation>
    </message>
    <message id="desktop.unavailable">
        <source></source>
        <translation>当前桌面环境不支持在桌面上显示自选列表。</translation>
    </message>
    <message id="failure.badAnswer">
        <source></source>
        <translation>价格服务返回的数据无法使用。</translation>
    </message>
    <message id="failure.cancelled">
        <source></source>
        <translation>请求已取消。</translation>
    </message>
    <message id="failure.clockWrong">
        <source></source>
        <translation>无法建立安全连接，请检查本机的日期和时间。</translation>
    </message>
    <message id="failure.hostNotFound">
        <source></source>
        <translation>无法解析价格服务的地址，请检查 DNS 设置。</translation>
    </message>
    <message id="failure.offline">
        <source></source>
        <translation>本机未连接网络。</translation>
    </message>
    <message id="failure.rateLimited">
        <source></source>
        <translation>价格服务要求暂缓请求，Tickwise 稍后会重试。</translation>
    </message>
    <message id="failure.rateLimitedUntil">
        <source></source>
        <translation>价格服务要求暂缓请求，%1 后重试。</translation>
    </message>
    <message id="failure.regionBlocked">
        <source></source>
        <translation>交易所拒绝来自您所在地区的请求。</translation>
    </message>
    <message id="failure.secureConnectionFailed">
        <source></source>
        <translation>无法建立安全连接。</translation>
    </message>
    <message id="failure.timedOut">
        <source></source>
        <translation>价格服务响应超时。</translation>
    </message>
    <message id="failure.unreachable">
        <source></source>
        <translation>无法连接到价格服务。</translation>
    </message>
    <message id="general.desktop.overlay">
        <source></source>
        <translation>在桌面上显示自选列表</translation>
    </message>
    <message id="general.display.colorScheme">
        <source></source>
        <translation>涨跌配色</translation>
    </message>
    <message id="general.display.currency">
        <source></source>
        <translation>计价货币</translation>
    </message>
    <message id="general.display.menubarCoin">
        <source></source>
        <translation>面板中的币种</translation>
    </message>
    <message id="general.display.menubarCoin.hint">
        <source></source>
        <translation>只能选择自选列表中的币种。</translation>
    </message>
    <message id="general.display.menubarContent">
        <source></source>
        <translation>面板显示内容</translation>
    </message>
    <message id="general.display.textBackground">
        <source></source>
        <translation>为文字添加背景</translation>
    </message>
    <message id="general.display.textColor">
        <source></source>
        <translation>按涨跌为价格着色</translation>
    </message>
    <message id="general.language.label">
        <source></source>
        <translation>语言</translation>
    </message>
    <message id="general.launch.atLogin">
        <source></source>
        <translation>登录时启动</translation>
    </message>
    <message id="general.notification.priceAlert">
        <source></source>
        <translation>价格提醒</translation>
    </message>
    <message id="general.notification.service">
        <source></source>
        <translation>通知由 %1 显示。</translation>
    </message>
    <message id="general.notification.test">
        <source></source>
        <translation>发送测试通知</translation>
    </message>
    <message id="general.notification.unavailable">
        <source></source>
        <translation>没有正在运行的通知服务，无法显示提醒。</translation>
    </message>
    <message id="general.priceColor.downColor">
        <source></source>
        <translation>下跌颜色</translation>
    </message>
    <message id="general.priceColor.upColor">
        <source></source>
        <translation>上涨颜色</translation>
    </message>
    <message id="general.section.desktop">
        <source></source>
        <translation>桌面</translation>
    </message>
    <message id="general.section.language">
        <source></source>
        <translation>语言</translation>
    </message>
    <message id="general.section.launch">
        <source></source>
        <translation>启动</translation>
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
        <translation>价格</translation>
    </message>
    <message id="general.statusItem.needsExtension">
        <source></source>
        <translation>GNOME 本身不显示状态图标。请安装扩展“AppIndicator and KStatusNotifierItem Support”（在 Debian 和 Ubuntu 上是软件包 gnome-shell-extension-appindicator），并在“扩展”中启用。</translation>
    </message>
    <message id="general.statusItem.needsTrayBar">
        <source></source>
        <translation>此处没有能显示状态图标的面板。请安装 waybar，并在其配置中加入模块“tray”。</translation>
    </message>
    <message id="general.statusItem.needsPanel">
        <source></source>
        <translation>此处没有能显示状态图标的面板。请添加带有系统托盘的面板，Tickwise 会立即显示在其中。</translation>
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
        <translation>跟随系统</translation>
    </message>
    <message id="loginItem.portalReason">
        <source></source>
        <translation>Tickwise 会在您登录时启动，以便在面板中随时显示价格。</translation>
    </message>
    <message id="menu.about">
        <source></source>
        <translation>关于 Tickwise</translation>
    </message>
    <message id="menu.change">
        <source></source>
        <translation>切换币种</translation>
    </message>
    <message id="menu.checkForUpdates">
        <source></source>
        <translation>检查更新…</translation>
    </message>
    <message id="menu.open">
        <source></source>
        <translation>打开 Tickwise</translation>
    </message>
    <message id="menu.quit">
        <source></source>
        <translation>退出 Tickwise</translation>
    </message>
    <message id="menu.setting">
        <source></source>
        <translation>设置…</translation>
    </message>
    <message id="menubarContent.icon">
        <source></source>
        <translation>图标</translation>
    </message>
    <message id="menubarContent.price">
        <source></source>
        <translation>价格</translation>
    </message>
    <message id="notification.direction.down">
        <source></source>
        <translation>下跌</translation>
    </message>
    <message id="notification.direction.up">
        <source></source>
        <translation>上涨</translation>
    </message>
    <message id="notification.priceAlert.above">
        <source></source>
        <translation>%1 已涨至 %2 以上，现价 %3</translation>
    </message>
    <message id="notification.priceAlert.below">
        <source></source>
        <translation>%1 已跌至 %2 以下，现价 %3</translation>
    </message>
    <message id="notification.priceAlert.change">
        <source></source>
        <translation>%1 %2 %3，现价 %4</translation>
    </message>
    <message id="notification.priceAlert.notSet">
        <source></source>
        <translation>%1 现价 %2</translation>
    </message>
    <message id="notification.priceAlert.title">
        <source></source>
        <translation>%1 价格提醒</translation>
    </message>
    <message id="popover.addCoins">
        <source></source>
        <translation>添加币种</translation>
    </message>
    <message id="popover.empty">
        <source></source>
        <translation>自选列表为空</translation>
    </message>
    <message id="popover.loading">
        <source></source>
        <translation>正在加载价格…</translation>
    </message>
    <message id="popover.quit.help">
        <source></source>
        <translation>退出 Tickwise</translation>
    </message>
    <message id="popover.settings.help">
        <source></source>
        <translation>打开设置</translation>
    </message>
    <message id="popover.updateAvailable">
        <source></source>
        <translation>更新</translation>
    </message>
    <message id="popover.updateAvailable.help">
        <source></source>
        <translation>Tickwise 有新版本可用</translation>
    </message>
    <message id="popover.watchlist">
        <source></source>
        <translation>自选</translation>
    </message>
    <message id="popover.watchlist.help">
        <source></source>
        <translation>编辑自选列表</translation>
    </message>
    <message id="settings.tab.about">
        <source></source>
        <translation>关于</translation>
    </message>
    <message id="settings.tab.general">
        <source></source>
        <translation>通用</translation>
    </message>
    <message id="settings.tab.watchlist">
        <source></source>
        <translation>自选</translation>
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
        <translation>%1 小时</translation>
    </message>
    <message id="tooltip.age.minutes">
        <source></source>
        <translation>%1 分钟</translation>
    </message>
    <message id="tooltip.age.now">
        <source></source>
        <translation>刚刚更新</translation>
    </message>
    <message id="tooltip.age.seconds">
        <source></source>
        <translation>%1 秒</translation>
    </message>
    <message id="tooltip.change24h">
        <source></source>
        <translation>24 小时涨跌：%1</translation>
    </message>
    <message id="tooltip.exactPrice">
        <source></source>
        <translation>%1 %2</translation>
    </message>
    <message id="tooltip.failure.title">
        <source></source>
        <translation>上次更新失败</translation>
    </message>
    <message id="tooltip.fetchedAt">
        <source></source>
        <translation>获取时间：%1</translation>
    </message>
    <message id="tooltip.noPrice">
        <source></source>
        <translation>暂无价格</translation>
    </message>
    <message id="update.available">
        <source></source>
        <translation>Tickwise %1 现已推出，您当前使用的版本是 %2。</translation>
    </message>
    <message id="update.cancel">
        <source></source>
        <translation>取消</translation>
    </message>
    <message id="update.checking">
        <source></source>
        <translation>正在检查更新…</translation>
    </message>
    <message id="update.close">
        <source></source>
        <translation>关闭</translation>
    </message>
    <message id="update.downloading">
        <source></source>
        <translation>正在下载更新… %1%</translation>
    </message>
    <message id="update.downloadingUnknownSize">
        <source></source>
        <translation>正在下载更新…</translation>
    </message>
    <message id="update.error.disk">
        <source></source>
        <translation>无法保存更新，请检查磁盘剩余空间。</translation>
    </message>
    <message id="update.error.feed">
        <source></source>
        <translation>无法读取更新列表。</translation>
    </message>
    <message id="update.error.feedMissing">
        <source></source>
        <translation>更新服务器上找不到更新列表。</translation>
    </message>
    <message id="update.error.network">
        <source></source>
        <translation>无法连接到更新服务器。</translation>
    </message>
    <message id="update.error.noSignature">
        <source></source>
        <translation>更新没有签名，因此未安装。</translation>
    </message>
    <message id="update.error.noUpdateForSystem">
        <source></source>
        <translation>新版本不支持当前系统。</translation>
    </message>
    <message id="update.error.packageMissing">
        <source></source>
        <translation>更新服务器上找不到此更新。</translation>
    </message>
    <message id="update.error.signature">
        <source></source>
        <translation>更新的签名无效，因此未安装。</translation>
    </message>
    <message id="update.error.tooLarge">
        <source></source>
        <translation>更新文件过大，因此未下载。</translation>
    </message>
    <message id="update.failed">
        <source></source>
        <translation>更新失败：%1</translation>
    </message>
    <message id="update.install">
        <source></source>
        <translation>安装更新</translation>
    </message>
    <message id="update.installManually">
        <source></source>
        <translation>更新已下载并通过验证，但无法自动安装。文件位于：
%1</translation>
    </message>
    <message id="update.installed">
        <source></source>
        <translation>Tickwise %1 已安装，重新启动后生效。</translation>
    </message>
    <message id="update.installing">
        <source></source>
        <translation>正在安装更新…</translation>
    </message>
    <message id="update.later">
        <source></source>
        <translation>稍后提醒</translation>
    </message>
    <message id="update.ready">
        <source></source>
        <translation>更新已下载并通过验证。请安装后重新启动 Tickwise。</translation>
    </message>
    <message id="update.releaseNotes">
        <source></source>
        <translation>更新说明</translation>
    </message>
    <message id="update.restart">
        <source></source>
        <translation>重新启动 Tickwise</translation>
    </message>
    <message id="update.skip">
        <source></source>
        <translation>跳过此版本</translation>
    </message>
    <message id="update.upToDate">
        <source></source>
        <translation>Tickwise %1 已是最新版本。</translation>
    </message>
    <message id="update.window.title">
        <source></source>
        <translation>软件更新</translation>
    </message>
    <message id="watchlist.addCoin">
        <source></source>
        <translation>添加币种…</translation>
    </message>
    <message id="watchlist.delete">
        <source></source>
        <translation>从自选列表移除</translation>
    </message>
    <message id="watchlist.recommended">
        <source></source>
        <translation>推荐币种</translation>
    </message>
    <message id="watchlist.reorder">
        <source></source>
        <translation>拖动以排序</translation>
    </message>
    <message id="watchlist.search.clear">
        <source></source>
        <translation>清除搜索</translation>
    </message>
    <message id="watchlist.search.noResults">
        <source></source>
        <translation>未找到币种</translation>
    </message>
    <message id="watchlist.search.placeholder">
        <source></source>
        <translation>按代码或名称搜索</translation>
    </message>
    <message id="widget.empty">
        <source></source>
        <translation>自选列表为空</translation>
    </message>
    <message id="widget.list.title">
        <source></source>
        <translation>自选</translation>
    </message>
    <message id="widget.menu.close">
        <source></source>
        <translation>关闭小组件</translation>
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
        <translation>设置</translation>
    </message>
</context>
</TS>
