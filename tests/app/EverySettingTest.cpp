#include "SurfacesWorld.h"
#include "doubles/Languages.h"
#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"
#include "pipeline/StatusItemContent.h"
#include "settings/AppSettingsCoding.h"
#include "ui/settings/ColorPickerRow.h"
#include "ui/watchlist/WatchlistAlertNumberField.h"
#include "ui/watchlist/WatchlistRows.h"
#include "ui/watchlist/WatchlistView.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A change of one field through its control, and what follows from it.
struct Walk
{
    QString key;       ///< of the field in the stored document
    QJsonValue stored; ///< its value afterwards
    std::function<void(SurfacesWorld &)> change;
    std::function<bool(const SurfacesWorld &)> isSeen; ///< beyond what holds for every field
    std::function<void(AppSettings &)> prepare = [](AppSettings &) {};
    SettingsTab tab = SettingsTab::general;
};

std::function<void(SurfacesWorld &)> click(const char *name)
{
    return [name](SurfacesWorld &world) {
        auto *const toggle = world.control<QCheckBox>(QLatin1StringView(name));
        QTest::mouseClick(toggle, Qt::LeftButton, {}, QPoint(8, toggle->height() / 2));
    };
}

void chooseIn(QComboBox &picker, int index)
{
    picker.setFocus();
    QTest::keyClick(&picker, Qt::Key_Home);
    for (int i = 0; i < index; ++i)
        QTest::keyClick(&picker, Qt::Key_Down);
}

std::function<void(SurfacesWorld &)> choose(const char *name, int index)
{
    return [name, index](SurfacesWorld &world) { chooseIn(*world.control<QComboBox>(QLatin1StringView(name)), index); };
}

std::function<void(SurfacesWorld &)> write(const char *name, const QString &text)
{
    return [name, text](SurfacesWorld &world) {
        auto *const field = world.control<ColorPickerRow>(QLatin1StringView(name))->findChild<QLineEdit *>();
        field->selectAll();
        QTest::keyClicks(field, text);
    };
}

void useCustomColors(AppSettings &settings)
{
    settings.colorScheme = PriceColorScheme::custom;
}

/// The control of that type in the first window's row of the watchlist.
template<class Widget>
Widget *inRow(const SurfacesWorld &world, int row, const char *name = "")
{
    WatchlistRows &rows = world.windows->window()->findChild<WatchlistView *>()->rows();
    return rows.rowAt(row)->findChild<Widget *>(QLatin1StringView(name));
}

QJsonValue entry(const char *id, const char *kind, double threshold)
{
    return QJsonObject{{QStringLiteral("coinId"), QLatin1StringView(id)},
                       {QStringLiteral("alertKind"), QLatin1StringView(kind)},
                       {QStringLiteral("notificationThreshold"), threshold}};
}

QString spokenRow(const CoinRowModel &rows, int row)
{
    return rows.data(rows.index(row), Qt::AccessibleTextRole).toString();
}

bool rowsContain(const SurfacesWorld &world, const QString &text)
{
    const CoinRowModel &rows = world.popoverRows();
    for (int i = 0; i < rows.rowCount(); ++i) {
        if (spokenRow(rows, i).contains(text))
            return true;
    }
    return false;
}

WidgetSnapshot snapshotOf(const SurfacesWorld &world)
{
    return world.snapshot().value_or(WidgetSnapshot());
}

std::vector<Walk> generalWalks()
{
    return {
        {QStringLiteral("launchAtLogin"), true, click("general.launch.atLogin"),
         [](const SurfacesWorld &world) { return world.loginItem.requests.back(); }},
        {QStringLiteral("language"), QStringLiteral("zh-Hans"), choose("general.language.label", 2),
         [](const SurfacesWorld &world) {
             return world.windows->window()->windowTitle() == QStringLiteral("设置") &&
                    world.otherWindows->window()->windowTitle() == QStringLiteral("设置") &&
                    rowsContain(world, QStringLiteral("上涨")) &&
                    world.item->menu().back().text == QStringLiteral("退出 Tickwise") &&
                    snapshotOf(world).language == AppLanguage::zhHans;
         }},
        {QStringLiteral("baseCurrency"), QStringLiteral("CNY"), choose("general.display.currency", 1),
         [](const SurfacesWorld &world) {
             return world.itemContent().text == QStringLiteral("BTC 472,027") &&
                    rowsContain(world, QStringLiteral("CNY")) && snapshotOf(world).currency == BaseCurrency::cny;
         }},
        {QStringLiteral("priceColorEnabled"), false, click("general.display.textColor"),
         [](const SurfacesWorld &world) {
             return !world.itemContent().textColor && !world.popoverRows().content(0).priceColor &&
                    !snapshotOf(world).colorByChange;
         }},
        {QStringLiteral("colorScheme"), QStringLiteral("redUpGreenDown"), choose("general.display.colorScheme", 1),
         [](const SurfacesWorld &world) {
             return world.itemContent().textColor == QColor(redPriceHex) &&
                    world.popoverRows().content(1).priceColor == QColor(greenPriceHex) &&
                    snapshotOf(world).upColorHex == redPriceHex;
         }},
        {QStringLiteral("customUpColorHex"), QStringLiteral("#0A1B2C"),
         write("general.priceColor.upColor", QStringLiteral("#0a1b2c")),
         [](const SurfacesWorld &world) {
             return world.itemContent().textColor == QColor(0x0A, 0x1B, 0x2C) &&
                    snapshotOf(world).upColorHex == QStringLiteral("#0A1B2C");
         },
         useCustomColors},
        {QStringLiteral("customDownColorHex"), QStringLiteral("#0A1B2C"),
         write("general.priceColor.downColor", QStringLiteral("#0a1b2c")),
         [](const SurfacesWorld &world) {
             return world.popoverRows().content(1).priceColor == QColor(0x0A, 0x1B, 0x2C) &&
                    snapshotOf(world).downColorHex == QStringLiteral("#0A1B2C");
         },
         useCustomColors},
        {QStringLiteral("priceChangeNotificationEnabled"), false, click("general.notification.priceAlert"),
         [](const SurfacesWorld &world) { return world.polls() == 2; }},
        // No control edits it.
        {QStringLiteral("pollingInterval"), 1800.0,
         [](SurfacesWorld &world) { world.change([](AppSettings &settings) { settings.pollingInterval = 1800; }); },
         [](const SurfacesWorld &world) { return world.polls() == 2; }},
        {QStringLiteral("showMenuBarBackground"), true, click("general.display.textBackground"),
         [](const SurfacesWorld &world) { return world.itemContent().pillColor == QColor(greenPriceHex); }},
        {QStringLiteral("menuBarContent"), QStringLiteral("icon"), choose("general.display.menubarContent", 1),
         [](const SurfacesWorld &world) { return world.itemContent().logo; }},
        {QStringLiteral("displayedCoinId"), QStringLiteral("ethereum"), choose("general.display.menubarCoin", 1),
         [](const SurfacesWorld &world) {
             return world.itemContent().text == QStringLiteral("ETH 2,500") &&
                    world.item->menu().front().children.at(1).checked &&
                    snapshotOf(world).displayedCoinId == QStringLiteral("ethereum");
         }},
    };
}

/// That it shows them is for `overlayAgrees` to say.
std::vector<Walk> overlayWalks()
{
    const auto isShown = [](const SurfacesWorld &world) { return world.delegate->desktopOverlay().window(); };
    return {
        {QStringLiteral("desktopOverlayEnabled"), true, click("general.desktop.overlay"), isShown},
        {QStringLiteral("desktopOverlayBackgroundOpacity"), 0.9,
         [](SurfacesWorld &world) {
             QTest::keyClick(world.control<QSlider>(QStringLiteral("desktop.opacity")), Qt::Key_PageDown);
         },
         isShown},
        {QStringLiteral("desktopOverlayTextSize"), QStringLiteral("large"), choose("desktop.textSize", 1), isShown},
        {QStringLiteral("desktopOverlayTopLeft"),
         QJsonObject{{QStringLiteral("x"), 12.0}, {QStringLiteral("y"), 734.0}},
         [](SurfacesWorld &world) {
             world.change([](AppSettings &settings) { settings.desktopOverlayTopLeft = {12, 734}; });
         },
         [](const SurfacesWorld &world) {
             return world.delegate->desktopOverlay().window()->geometry().topLeft() == QPoint(12, 800 - 734);
         }},
    };
}

std::vector<Walk> watchlistWalks()
{
    const QString key = QStringLiteral("addedCoins");
    const QJsonValue bitcoin = entry("bitcoin", "change", 2);
    const QJsonValue ethereum = entry("ethereum", "change", 2);
    std::vector<Walk> walks{
        {key, QJsonArray{bitcoin},
         [](SurfacesWorld &world) {
             QTest::mouseClick(inRow<QAbstractButton>(world, 1, "watchlist.delete"), Qt::LeftButton);
         },
         [](const SurfacesWorld &world) {
             return world.popoverRows().rowCount() == 1 && world.item->menu().front().children.size() == 1 &&
                    snapshotOf(world).watchlist == std::vector{QStringLiteral("bitcoin")} &&
                    world.control<QComboBox>(QStringLiteral("general.display.menubarCoin"))->count() == 1;
         }},
        {key, QJsonArray{bitcoin, entry("ethereum", "below", 2)},
         [](SurfacesWorld &world) { chooseIn(*inRow<QComboBox>(world, 1), 1); },
         [](const SurfacesWorld &) { return true; }},
        {key, QJsonArray{entry("bitcoin", "change", 7.5), ethereum},
         [](SurfacesWorld &world) {
             auto *const field = inRow<WatchlistAlertNumberField>(world, 0);
             field->selectAll();
             QTest::keyClicks(field, QStringLiteral("7.5"));
         },
         [](const SurfacesWorld &) { return true; }},
        {key, QJsonArray{ethereum, bitcoin},
         [](SurfacesWorld &world) {
             QTest::keyClick(inRow<QAbstractButton>(world, 0, "watchlist.reorder"), Qt::Key_Down, Qt::AltModifier);
         },
         [](const SurfacesWorld &world) {
             return world.popoverRows().coin(0).symbol == QStringLiteral("ETH") &&
                    snapshotOf(world).watchlist.front() == QStringLiteral("ethereum");
         }},
    };
    for (Walk &walk : walks)
        walk.tab = SettingsTab::watchlist;
    return walks;
}

std::vector<Walk> allWalks()
{
    std::vector<Walk> walks = generalWalks();
    for (const auto &more : {overlayWalks(), watchlistWalks()})
        walks.insert(walks.end(), more.begin(), more.end());
    return walks;
}

QJsonObject document(const AppSettings &settings)
{
    return QJsonDocument::fromJson(encodeSettings(settings).value_or(QByteArray())).object();
}

QJsonObject storedDocument(const SurfacesWorld &world)
{
    return QJsonDocument::fromJson(world.storage.entries.at(QStringLiteral("appSettings"))).object();
}

// What each surface has to show whatever was changed.

bool documentAgrees(const SurfacesWorld &world)
{
    return storedDocument(world) == document(world.settings());
}

bool statusItemAgrees(const SurfacesWorld &world)
{
    const CoinListViewModel &coinList = world.delegate->coinListViewModel();
    return world.itemContent() ==
           statusItemContent({coinList.coins(), world.settings(), world.item->appearance(), world.clock.now(),
                              coinList.lastFetchFailure(), coinList.priceDataCurrency()});
}

bool popoverAgrees(const SurfacesWorld &world)
{
    const CoinRowModel &rows = world.popoverRows();
    const std::vector<WatchlistCoin> &watched = world.settings().watchlistCoins;
    if (rows.rowCount() != static_cast<int>(watched.size()))
        return false;
    for (int i = 0; i < rows.rowCount(); ++i) {
        const QString spoken = spokenRow(rows, i);
        if (rows.coin(i).id != watched[size_t(i)].coinId || !spoken.contains(rows.content(i).price))
            return false;
        if (!spoken.contains(rawValue(world.settings().baseCurrency)))
            return false;
    }
    return true;
}

bool widgetAgrees(const SurfacesWorld &world)
{
    const Result<WidgetSnapshot> written = world.snapshot();
    return written && *written == makeWidgetSnapshot(world.delegate->coinListViewModel().coins(), world.settings(),
                                                     world.clock.now());
}

bool overlayAgrees(const SurfacesWorld &world)
{
    DesktopOverlayController &overlay = world.delegate->desktopOverlay();
    const AppSettings &settings = world.settings();
    const bool isShown = overlay.window() && overlay.window()->isVisible();
    if (!settings.desktopOverlayEnabled)
        return !isShown;
    return isShown && overlay.model().backgroundOpacity() == settings.desktopOverlayBackgroundOpacity &&
           overlay.model().textSize() == settings.desktopOverlayTextSize &&
           overlay.model().content() == widgetEntryContent(world.delegate->coinListViewModel().coins(), settings,
                                                           settings.baseCurrency, world.delegate->catalog().byID());
}

bool statusMenuAgrees(const SurfacesWorld &world)
{
    const std::vector<MenuEntry> coins = world.item->menu().front().children;
    const std::vector<WatchlistCoin> &watched = world.settings().watchlistCoins;
    for (size_t i = 0; i < coins.size(); ++i) {
        if (coins[i].checked != (watched.at(i).coinId == world.settings().displayedCoinId))
            return false;
    }
    return coins.size() == watched.size();
}

/// What the controls of a window show, by name.
QVariantMap shownBy(const SettingsWindow &window)
{
    QVariantMap shown;
    for (const QCheckBox *const toggle : window.findChildren<QCheckBox *>())
        shown[toggle->objectName()] = toggle->isChecked();
    for (const QComboBox *const picker : window.findChildren<QComboBox *>()) {
        if (!picker->objectName().isEmpty())
            shown[picker->objectName()] = picker->currentText();
    }
    for (const ColorPickerRow *const row : window.findChildren<ColorPickerRow *>())
        shown[row->objectName()] = row->hexColor();
    shown[QStringLiteral("opacity")] = window.findChild<QLabel *>(QStringLiteral("opacityLabel"))->text();
    QStringList rows;
    for (const WatchlistRowContent &row : window.findChild<WatchlistView *>()->rows().rows())
        rows << row.entry.coinId << rawValue(row.entry.alertKind) << QString::number(row.entry.notificationThreshold);
    shown[QStringLiteral("watchlist")] = rows;
    return shown;
}

/// A window that stood open shows what a new one does.
bool settingsWindowsAgree(const SurfacesWorld &world)
{
    SettingsWindowController fresh(world.windowContext());
    fresh.open(world.delegate->settingsViewModel().settingsWindowTab());
    const QVariantMap expected = shownBy(*fresh.window());
    return shownBy(*world.windows->window()) == expected && shownBy(*world.otherWindows->window()) == expected;
}

/// A surface, and whether it shows the current settings.
struct Surface
{
    const char *name;
    bool (*agrees)(const SurfacesWorld &);
};

constexpr Surface surfaces[] = {
    {"stored document", documentAgrees},        {"status item", statusItemAgrees}, {"popover", popoverAgrees},
    {"widget snapshot", widgetAgrees},          {"overlay", overlayAgrees},        {"status menu", statusMenuAgrees},
    {"settings windows", settingsWindowsAgree},
};

QByteArray surfaceThatDisagrees(const SurfacesWorld &world)
{
    for (const Surface &surface : surfaces) {
        if (!surface.agrees(world))
            return surface.name;
    }
    return {};
}

AppSettings startSettings(const Walk &walk)
{
    AppSettings settings;
    settings.language = AppLanguage::en;
    settings.pollingInterval = 3600;
    settings.desktopOverlayEnabled = walk.key != QStringLiteral("desktopOverlayEnabled");
    walk.prepare(settings);
    return settings;
}

} // namespace

/// Changes every setting through its control while everything is open, and looks at every surface.
class EverySettingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useLanguage(AppLanguage::en); }
    void everyFieldIsWalked();
    void walk_data();
    void walk();
    void aFullDiskChangesNothingThatIsShown();
};

void EverySettingTest::everyFieldIsWalked()
{
    AppSettings filled;
    filled.desktopOverlayTopLeft = {1, 2};
    // Does not compile for a record with another number of fields: a new one is to be walked, too.
    [[maybe_unused]] const auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q] = filled;
    constexpr int fields = 17;
    QStringList walked;
    for (const Walk &walk : allWalks())
        walked.append(walk.key);
    walked.removeDuplicates();
    walked.sort();
    QCOMPARE(walked, document(filled).keys());
    QCOMPARE(walked.size(), fields);
}

void EverySettingTest::walk_data()
{
    QTest::addColumn<int>("index");
    const std::vector<Walk> walks = allWalks();
    for (int index = 0; index < int(walks.size()); ++index)
        QTest::addRow("%d %s", index, qPrintable(walks[size_t(index)].key)) << index;
}

void EverySettingTest::walk()
{
    QFETCH(int, index);
    const Walk walk = allWalks()[size_t(index)];
    SurfacesWorld world(startSettings(walk));
    QTRY_VERIFY(!world.itemContent().logo);
    world.openEverything(walk.tab);
    QTRY_COMPARE(surfaceThatDisagrees(world), QByteArray());
    const QJsonObject before = document(world.settings());
    QVERIFY(before.value(walk.key) != walk.stored);

    walk.change(world);

    QJsonObject expected = before;
    expected[walk.key] = walk.stored;
    QCOMPARE(storedDocument(world), expected);
    QTRY_VERIFY(walk.isSeen(world));
    QTRY_COMPARE(surfaceThatDisagrees(world), QByteArray());
    QCOMPARE(storedDocument(world), expected);
}

void EverySettingTest::aFullDiskChangesNothingThatIsShown()
{
    SurfacesWorld world(startSettings({}));
    QTRY_VERIFY(!world.itemContent().logo);
    world.openEverything(SettingsTab::general);
    const QJsonObject before = storedDocument(world);
    world.storage.fails = true;
    const LogCapture log;
    for (const Walk &walk : generalWalks()) {
        if (walk.key == QStringLiteral("showMenuBarBackground") || walk.key == QStringLiteral("displayedCoinId"))
            walk.change(world);
    }
    QVERIFY(world.settings().showMenuBarBackground);
    QCOMPARE(world.itemContent().text, QStringLiteral(" ETH 2,500 "));
    QVERIFY(settingsWindowsAgree(world));
    QCOMPARE(storedDocument(world), before);
    QVERIFY(!log.texts(QStringLiteral("com.pelmo.tickwise.Settings")).isEmpty());
    QVERIFY(!QApplication::activeModalWidget());
}

TICKWISE_WIDGET_TEST(EverySettingTest)
#include "EverySettingTest.moc"
