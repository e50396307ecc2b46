#pragma once

#include "app/DelegateDoubles.h"
#include "app/PopoverController.h"
#include "app/SettingsWindowController.h"
#include "doubles/FakeMotion.h"
#include "doubles/RecordingDesktopSurface.h"
#include "ui/popover/CoinPopoverView.h"
#include "ui/popover/CoinRowModel.h"
#include "ui/popover/PopoverWindow.h"

#include <QListView>

namespace tickwise::test {

/// A surface that shows the popover as a window.
class PlainPopoverSurface : public PopoverSurface
{
public:
    bool show(QWidget &window, QSize popover, int, const PopoverAnchor &) override
    {
        m_window = &window;
        window.resize(popover);
        window.show();
        onPlaced({QRect(QPoint(), popover), false, true});
        return true;
    }
    void resize(QSize popover) override { m_window->resize(popover); }
    void hide() override { m_window->hide(); }

private:
    QWidget *m_window = nullptr;
};

/// The application among doubles, with its popover and two settings windows that can be opened. Bitcoin costs 67,432.4
/// dollars and rises by 1.5 percent, Ethereum costs 2,500 and falls by 2; a dollar costs 7 yuan.
class SurfacesWorld : public DelegateDoubles
{
public:
    explicit SurfacesWorld(const AppSettings &stored, const QString &catalogPath = QStringLiteral(":/coins.json"))
        : m_catalogPath(catalogPath)
    {
        UserDefaultsSettingsStore(storage).save(stored);
        http.answer(Endpoints().exchangeRateApi, 200,
                    R"({"result":"success","time_last_update_unix":1769817600,"rates":{"USD":1,"CNY":7,"KRW":1400,)"
                    R"("HKD":7.8,"JPY":150,"TWD":32,"SGD":1.3,"MYR":4,"AUD":1.5,"CAD":1.4,"EUR":0.9,"GBP":0.8}})");
        setPrices(67432.4, 2500);
        delegate = std::make_unique<AppDelegate>(environment());
        windows = std::make_unique<SettingsWindowController>(windowContext());
        otherWindows = std::make_unique<SettingsWindowController>(windowContext());
        for (SettingsWindowController *const controller : {windows.get(), otherWindows.get()})
            QObject::connect(delegate.get(), &AppDelegate::languageApplied, controller,
                             &SettingsWindowController::retranslate);
        delegate->applicationDidFinishLaunching();
    }

    /// Both settings windows on that tab, and the popover.
    void openEverything(SettingsTab tab)
    {
        otherWindows->open(tab);
        windows->open(tab);
        delegate->activate();
    }

    void setPrices(double bitcoin, double ethereum)
    {
        const auto record = [this](const char *symbol, double price, double change) {
            const auto closeTime =
                std::chrono::duration_cast<std::chrono::milliseconds>(clock.now().time_since_epoch()).count();
            return QStringLiteral(R"({"symbol":"%1USDT","lastPrice":"%2","priceChangePercent":"%3","closeTime":%4})")
                .arg(QLatin1StringView(symbol))
                .arg(price, 0, 'f', 2)
                .arg(change)
                .arg(closeTime);
        };
        http.clear(Endpoints().binanceMain);
        http.answer(Endpoints().binanceMain, 200,
                    QStringLiteral("[%1,%2]").arg(record("BTC", bitcoin, 1.5), record("ETH", ethereum, -2)).toUtf8());
    }

    const AppSettings &settings() const { return delegate->settingsViewModel().settings(); }
    void change(const std::function<void(AppSettings &)> &edit) { changeSettings(*delegate, edit); }

    const StatusItemContent &itemContent() const { return item->contents.back(); }
    const CoinRowModel &popoverRows() const
    {
        return static_cast<const CoinRowModel &>(
            *delegate->popover()->window()->findChild<QListView *>(QStringLiteral("coins"))->model());
    }
    Result<WidgetSnapshot> snapshot() const { return WidgetSnapshotStore{container.path()}.read(); }
    /// The control of that name in the first settings window; the test fails where there is none.
    template<class Widget>
    Widget *control(const QString &name) const
    {
        auto *const found = windows->window()->findChild<Widget *>(name);
        if (!found)
            qFatal("no control %s", qUtf8Printable(name));
        return found;
    }

    SettingsWindowContext windowContext() const
    {
        return {.settings = delegate->settingsViewModel(),
                .storage = storage,
                .catalog = delegate->catalog(),
                .updates = delegate->updateController(),
                .watchlist = [this]() -> WatchlistViewModel & { return delegate->watchlistViewModel(); },
                .logos = [this]() -> CoinLogoStore & { return delegate->logoStore(); },
                .motion = [this]() -> const MotionPreference & { return motion; },
                .about = {QStringLiteral("Tickwise"), QStringLiteral("1"), QStringLiteral("a@example.org"),
                          QStringLiteral("https://example.org")},
                .hasOverlay = [] { return true; },
                .adjustOverlay = [] {}};
    }

    FakeMotion motion;
    QStringList overlayCalls;
    std::unique_ptr<AppDelegate> delegate;
    std::unique_ptr<SettingsWindowController> windows;
    std::unique_ptr<SettingsWindowController> otherWindows;

private:
    AppEnvironment environment()
    {
        AppEnvironment all = doubles();
        all.makePopoverSurface = [] { return std::make_unique<PlainPopoverSurface>(); };
        all.makeDesktopSurface = [this] { return std::make_unique<RecordingDesktopSurface>(overlayCalls); };
        all.catalogPath = m_catalogPath;
        all.suspendedTime = [] { return std::chrono::nanoseconds(0); };
        return all;
    }

    QString m_catalogPath;
};

} // namespace tickwise::test
