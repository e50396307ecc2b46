#include "app/SettingsWindowController.h"

#include "SurfacesWorld.h"
#include "doubles/Languages.h"
#include "doubles/TestProgram.h"
#include "ui/watchlist/WatchlistAddCoinPanel.h"
#include "ui/watchlist/WatchlistRows.h"
#include "ui/watchlist/WatchlistView.h"

#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>

using namespace tickwise;
using namespace tickwise::test;

namespace {

AppSettings english()
{
    AppSettings settings;
    settings.language = AppLanguage::en;
    settings.pollingInterval = 3600;
    return settings;
}

} // namespace

class SettingsWindowControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useLanguage(AppLanguage::en); }
    void opensOnTheTab();
    void eachOpeningMakesANewWindow();
    void opensWithTheSavedFrameInItsLimits();
    void theStatusItemHintComesAndGoes();
    void withoutACatalogItIsStillUsable();
    void aLanguageSwitchReachesEveryText();
};

void SettingsWindowControllerTest::opensOnTheTab()
{
    SurfacesWorld world(english());
    world.windows->open(SettingsTab::about);
    QCOMPARE(world.control<QTabWidget>({})->currentIndex(), 2);
    QPointer<SettingsWindow> window = world.windows->window();
    world.windows->open(SettingsTab::watchlist);
    QCOMPARE(world.windows->window(), window.data());
    QCOMPARE(world.control<QTabWidget>({})->currentIndex(), 1);
}

void SettingsWindowControllerTest::eachOpeningMakesANewWindow()
{
    SurfacesWorld world(english());
    world.windows->open(SettingsTab::general);
    QPointer<SettingsWindow> window = world.windows->window();
    QTest::keyClick(window, Qt::Key_Escape);
    QVERIFY(!world.windows->window());
    QTRY_VERIFY(window.isNull());
    world.windows->open(SettingsTab::general);
    QVERIFY(world.windows->window());
}

void SettingsWindowControllerTest::opensWithTheSavedFrameInItsLimits()
{
    SurfacesWorld world(english());
    world.storage.entries[QStringLiteral("SettingsWindow")] = "[90000,90000,5000,10]";
    world.windows->open(SettingsTab::general);
    const QRect frame(world.windows->window()->pos(), world.windows->window()->size());
    QCOMPARE(frame.size(), QSize(800, 420));
    QVERIFY(world.windows->window()->screen()->availableGeometry().contains(frame.topLeft()));
}

void SettingsWindowControllerTest::theStatusItemHintComesAndGoes()
{
    SurfacesWorld world(english());
    world.windows->setStatusItemAvailability(StatusItemAvailability::needsTrayBar);
    world.windows->open(SettingsTab::general);
    const auto *const hint = world.control<QLabel>(QStringLiteral("statusItemHint"));
    QVERIFY(hint->isVisible());
    world.windows->setStatusItemAvailability(StatusItemAvailability::shown);
    QVERIFY(!hint->isVisible());
    world.windows->setStatusItemAvailability(StatusItemAvailability::needsExtension);
    QVERIFY(hint->text().contains(QStringLiteral("AppIndicator")));
    world.windows->window()->close();
    world.windows->setStatusItemAvailability(StatusItemAvailability::shown);
}

void SettingsWindowControllerTest::withoutACatalogItIsStillUsable()
{
    SurfacesWorld world(english(), QStringLiteral("/missing/coins.json"));
    world.openEverything(SettingsTab::watchlist);
    const auto *const view = world.control<WatchlistView>({});
    QCOMPARE(world.popoverRows().rowCount(), 0);
    QCOMPARE(view->findChild<QLabel *>(QStringLiteral("watchlist.search.noResults")), nullptr);
    world.control<QPushButton>(QStringLiteral("watchlist.addCoin"))->click();
    auto *const field = world.control<QLineEdit>(QStringLiteral("searchField"));
    QTest::keyClicks(field, QStringLiteral("btc"));
    QVERIFY(world.control<QLabel>(QStringLiteral("watchlist.search.noResults"))->isVisible());
    QTest::keyClick(field, Qt::Key_Escape);
    // The coins that it does not know can be taken out.
    QCOMPARE(world.settings().watchlistCoins.size(), size_t(2));
    world.control<QAbstractButton>(QStringLiteral("watchlist.delete"))->click();
    QCOMPARE(world.settings().watchlistCoins.size(), size_t(1));
    world.control<QCheckBox>(QStringLiteral("general.display.textBackground"))->click();
    QVERIFY(world.settings().showMenuBarBackground);
}

/// Every text that a control shows is one of the new language's: switching live leaves what a new window has.
void SettingsWindowControllerTest::aLanguageSwitchReachesEveryText()
{
    SurfacesWorld world(english());
    world.windows->open(SettingsTab::watchlist);
    world.control<QPushButton>(QStringLiteral("watchlist.addCoin"))->click();
    world.change([](AppSettings &settings) { settings.language = AppLanguage::zhHant; });
    world.otherWindows->open(SettingsTab::watchlist);
    world.otherWindows->window()->findChild<QPushButton *>(QStringLiteral("watchlist.addCoin"))->click();
    const auto texts = [](const SettingsWindow &window) {
        QStringList found{window.windowTitle()};
        for (const QWidget *const widget : window.findChildren<QWidget *>()) {
            if (qobject_cast<const QTabBar *>(widget->parentWidget()))
                continue; // the names of Qt's scroll buttons stay
            for (const char *const property : {"text", "title", "toolTip", "placeholderText", "currentText",
                                               "accessibleName", "accessibleDescription"})
                found.append(widget->property(property).toString());
        }
        found.sort();
        return found;
    };
    QCOMPARE(texts(*world.windows->window()), texts(*world.otherWindows->window()));
}

TICKWISE_WIDGET_TEST(SettingsWindowControllerTest)
#include "SettingsWindowControllerTest.moc"
