#include "ui/popover/CoinPopoverView.h"

#include "doubles/CoinListWorld.h"
#include "doubles/Languages.h"
#include "doubles/TestProgram.h"
#include "ui/popover/CoinRowModel.h"
#include "ui/updates/UpdateController.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct CoinPopoverViewWorld
{
    explicit CoinPopoverViewWorld(int watched = 2)
        : CoinPopoverViewWorld(validCoins(std::max(watched, 200)), watched)
    {
    }

    CoinPopoverViewWorld(std::vector<CoinMetadata> records, int watched)
        : coins(std::move(records), watched)
    {
        const auto clock = [this] {
            ++clockReadings;
            return coins.clock.now();
        };
        view = std::make_unique<CoinPopoverView>(CoinPopoverContext{*coins.coinList, coins.settings, updates, nullptr,
                                                                    [this](SettingsTab tab) { tabs.push_back(tab); },
                                                                    [this] { ++quits; }, clock});
        view->resize(CoinPopoverView::sizeFor(coins.coinList->coins().size()));
        view->show();
    }

    QAbstractButton &button(const char *name) const
    {
        return *view->findChild<QAbstractButton *>(QString::fromLatin1(name));
    }
    QString status() const { return view->findChild<QLabel *>(QStringLiteral("status"))->text(); }
    QImage picture() const { return view->grab().toImage().convertToFormat(QImage::Format_ARGB32); }
    QRect row(int number) const
    {
        const QListView &list = view->list();
        const QRect box = list.visualRect(list.model()->index(number, 0));
        return {list.viewport()->mapTo(view.get(), box.topLeft()), box.size()};
    }

    CoinListWorld coins;
    UpdateController updates;
    std::vector<SettingsTab> tabs;
    int quits = 0;
    int clockReadings = 0;
    std::unique_ptr<CoinPopoverView> view;
};

/// The smallest box inside `area` that holds every pixel in which the pictures differ.
QRect difference(const QImage &one, const QImage &other, const QRect &area)
{
    QRect box;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

/// The first and last column of the area with a pixel of about that color; none: an invalid rectangle.
QRect columnsOf(const QImage &picture, const QRect &area, QColor color)
{
    QRect box;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor pixel = picture.pixelColor(x, y);
            const int distance = std::abs(pixel.red() - color.red()) + std::abs(pixel.green() - color.green()) +
                                 std::abs(pixel.blue() - color.blue());
            if (distance < 60)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

const QColor green(QStringLiteral("#2CBD84"));

std::vector<CoinMetadata> oneCoin(const QString &symbol)
{
    std::vector<CoinMetadata> coins = validCoins();
    coins.front().symbol = symbol;
    return coins;
}

} // namespace

class CoinPopoverViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void sizes_data();
    void sizes();
    void listsTheCoinsInTheirOrder();
    void emptyWatchlistHasItsOwnState();
    void buttonsLeadOn_data();
    void buttonsLeadOn();
    void quitAsksToQuit();
    void updateButtonOnlyWhileOneIsAvailable();
    void updateButtonStartsTheUpdate();
    void newPricesKeepRowsAndScroll();
    void digitsStayInTheirPlace();
    void pricesHaveTheirColor();
    void pricesFollowTheSettings();
    void longTextsDoNotOverlap_data();
    void longTextsDoNotOverlap();
    void oddSymbolsAreDrawn_data();
    void oddSymbolsAreDrawn();
    void longListPaintsOnlyWhatIsSeen();
    void statusTellsLoadingAgeAndTrouble();
    void agesOnlyWhileVisible();
    void tabGoesThroughEverything();
    void arrowsMoveThroughTheRows();
    void returnPressesAButton();
    void focusIsVisible();
    void screenReadersHearTheRows();
    void screenReadersHearTheButtons();
    void languageChangesWhileOpen();
    void followsADarkPalette();
    void rowsHaveToolTips();
};

void CoinPopoverViewTest::init()
{
    QGuiApplication::setPalette(
        QPalette(Qt::black, Qt::white, Qt::white, Qt::gray, Qt::lightGray, Qt::black, Qt::white));
}

void CoinPopoverViewTest::cleanup()
{
    useLanguage(AppLanguage::en);
}

void CoinPopoverViewTest::sizes_data()
{
    QTest::addColumn<int>("coins");
    QTest::addColumn<int>("height");
    QTest::newRow("none") << 0 << 298;
    QTest::newRow("four") << 4 << 298;
    QTest::newRow("five") << 5 << 350;
    QTest::newRow("eight") << 8 << 506;
    QTest::newRow("nine") << 9 << 506;
    QTest::newRow("very many") << 5000 << 506;
}

void CoinPopoverViewTest::sizes()
{
    QFETCH(int, coins);
    QFETCH(int, height);
    QCOMPARE(CoinPopoverView::sizeFor(std::size_t(coins)), QSize(320, height));
}

void CoinPopoverViewTest::listsTheCoinsInTheirOrder()
{
    CoinPopoverViewWorld world(8);
    const QAbstractItemModel &model = *world.view->list().model();
    QCOMPARE(model.rowCount(), 8);
    for (int row = 0; row < 8; ++row)
        QCOMPARE(model.index(row, 0).data().toString(), world.coins.coinList->coins()[std::size_t(row)].symbol);
    QVERIFY(!world.view->list().verticalScrollBar()->isVisible());
    QCOMPARE(world.row(7).bottom() - world.row(0).top() + 1, 8 * 52);
    world.coins.watch(9);
    QTRY_VERIFY(world.view->list().verticalScrollBar()->isVisible());
}

void CoinPopoverViewTest::emptyWatchlistHasItsOwnState()
{
    CoinPopoverViewWorld world(0);
    QVERIFY(!world.view->list().isVisible());
    QVERIFY(world.button("addCoins").isVisible());
    QTest::mouseClick(&world.button("addCoins"), Qt::LeftButton);
    QCOMPARE(world.tabs, std::vector{SettingsTab::watchlist});
    world.coins.watch(1);
    QVERIFY(world.view->list().isVisible());
    QVERIFY(!world.button("addCoins").isVisible());
}

void CoinPopoverViewTest::buttonsLeadOn_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("tab");
    QTest::newRow("watchlist") << QByteArray("watchlist") << int(SettingsTab::watchlist);
    QTest::newRow("settings") << QByteArray("settings") << int(SettingsTab::general);
}

void CoinPopoverViewTest::buttonsLeadOn()
{
    QFETCH(QByteArray, name);
    QFETCH(int, tab);
    CoinPopoverViewWorld world;
    QTest::mouseClick(&world.button(name.constData()), Qt::LeftButton);
    QCOMPARE(world.tabs, std::vector{SettingsTab(tab)});
}

void CoinPopoverViewTest::quitAsksToQuit()
{
    CoinPopoverViewWorld world;
    QTest::mouseClick(&world.button("quit"), Qt::LeftButton);
    QCOMPARE(world.quits, 1);
}

void CoinPopoverViewTest::updateButtonOnlyWhileOneIsAvailable()
{
    CoinPopoverViewWorld world;
    QVERIFY(!world.button("update").isVisible());
    world.updates.setUpdateAvailable(true);
    QVERIFY(world.button("update").isVisible());
    QCOMPARE(world.button("update").text(), QStringLiteral("Update"));
    world.updates.setUpdateAvailable(false);
    QVERIFY(!world.button("update").isVisible());
}

void CoinPopoverViewTest::updateButtonStartsTheUpdate()
{
    struct Backend : UpdaterBackend
    {
        explicit Backend(int &count)
            : checks(count)
        {
        }
        void checkForUpdates() override { ++checks; }
        void setAutomaticallyChecksForUpdates(bool) override {}
        QBindable<bool> bindableCanCheckForUpdates() override { return &can; }
        QBindable<bool> bindableAutomaticallyChecksForUpdates() override { return &automatic; }
        int &checks;
        QProperty<bool> can{true};
        QProperty<bool> automatic{false};
    };
    CoinPopoverViewWorld world;
    int checks = 0;
    world.updates.attach(std::make_unique<Backend>(checks));
    world.updates.setUpdateAvailable(true);
    QTest::mouseClick(&world.button("update"), Qt::LeftButton);
    QCOMPARE(checks, 1);
}

void CoinPopoverViewTest::newPricesKeepRowsAndScroll()
{
    CoinPopoverViewWorld world(50);
    world.coins.price(100);
    QScrollBar &bar = *world.view->list().verticalScrollBar();
    QTRY_VERIFY(bar.maximum() > 0);
    bar.setValue(137);
    QSignalSpy resets(world.view->list().model(), &QAbstractItemModel::modelReset);
    world.coins.price(200);
    world.picture();
    QCOMPARE(bar.value(), 137);
    QCOMPARE(resets.count(), 0);
}

void CoinPopoverViewTest::digitsStayInTheirPlace()
{
    CoinPopoverViewWorld world;
    world.coins.price(67431);
    const QImage before = world.picture();
    world.coins.price(67438);
    const QRect changed = difference(before, world.picture(), world.row(0));
    QVERIFY(changed.isValid());
    QVERIFY2(changed.width() <= 12, qPrintable(QString::number(changed.width())));
    world.coins.price(11111);
    const QRect narrow = columnsOf(world.picture(), world.row(0).adjusted(0, 0, 0, -26), green);
    world.coins.price(88888);
    const QRect wide = columnsOf(world.picture(), world.row(0).adjusted(0, 0, 0, -26), green);
    QVERIFY(std::abs(narrow.left() - wide.left()) <= 4);
}

void CoinPopoverViewTest::pricesHaveTheirColor()
{
    CoinPopoverViewWorld world;
    world.coins.price(67431, 2);
    QVERIFY(columnsOf(world.picture(), world.row(0), green).isValid());
    world.coins.price(67431, -2);
    QVERIFY(!columnsOf(world.picture(), world.row(0), green).isValid());
    QVERIFY(columnsOf(world.picture(), world.row(0), QColor(QStringLiteral("#F6465D"))).isValid());
}

void CoinPopoverViewTest::pricesFollowTheSettings()
{
    CoinPopoverViewWorld world;
    world.coins.price(67431, 2);
    world.coins.change([](AppSettings &settings) { settings.priceColorEnabled = false; });
    QVERIFY(!columnsOf(world.picture(), world.row(0), green).isValid());
    world.coins.change([](AppSettings &settings) {
        settings.priceColorEnabled = true;
        settings.colorScheme = PriceColorScheme::redUpGreenDown;
    });
    QVERIFY(columnsOf(world.picture(), world.row(0), QColor(QStringLiteral("#F6465D"))).isValid());
}

void CoinPopoverViewTest::longTextsDoNotOverlap_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<double>("price");
    const QString longSymbol(15, QLatin1Char('W'));
    QTest::newRow("long symbol, huge price") << longSymbol << 1e15;
    QTest::newRow("long symbol, price beyond the row") << longSymbol << 1e60;
    QTest::newRow("short symbol, price beyond the row") << QStringLiteral("BTC") << 1e300;
}

void CoinPopoverViewTest::longTextsDoNotOverlap()
{
    QFETCH(QString, symbol);
    QFETCH(double, price);
    CoinPopoverViewWorld world(oneCoin(symbol), 1);
    world.coins.price(price);
    const QRect words = world.row(0).adjusted(56, 0, 0, 0);
    const QImage picture = world.picture();
    const QRect black = columnsOf(picture, words, Qt::black);
    const QRect number = columnsOf(picture, words, green);
    QVERIFY(black.isValid() && number.isValid());
    QVERIFY2(black.right() + 4 < number.left(),
             qPrintable(QStringLiteral("%1, %2").arg(black.right()).arg(number.left())));
    QVERIFY(number.right() <= world.row(0).right() - 12);
}

void CoinPopoverViewTest::oddSymbolsAreDrawn_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::newRow("right to left") << QStringLiteral("\u05d1\u05d9\u05d8\u05e7\u05d5\u05d9\u05df");
    QTest::newRow("combining") << QStringLiteral("Z\u0301\u0302\u0303\u0304A\u0308\u0323");
    QTest::newRow("empty") << QString();
    QTest::newRow("lines") << QStringLiteral("A\nB\nC\nD");
}

void CoinPopoverViewTest::oddSymbolsAreDrawn()
{
    QFETCH(QString, symbol);
    CoinPopoverViewWorld world(oneCoin(symbol), 2);
    world.coins.price(1);
    const QImage picture = world.picture();
    const QRect words = world.row(0).adjusted(56, 0, -100, 0);
    QCOMPARE(columnsOf(picture, words, Qt::black).isValid(), !symbol.isEmpty());
    // Nothing reaches into the next row.
    QVERIFY(!columnsOf(picture, QRect(words.left(), world.row(0).bottom(), words.width(), 2), Qt::black).isValid());
}

void CoinPopoverViewTest::longListPaintsOnlyWhatIsSeen()
{
    CoinPopoverViewWorld world(1000);
    world.coins.price(5);
    world.picture();
    world.clockReadings = 0;
    world.coins.price(6);
    world.picture();
    QVERIFY2(world.clockReadings < 30, qPrintable(QString::number(world.clockReadings)));
}

void CoinPopoverViewTest::statusTellsLoadingAgeAndTrouble()
{
    CoinPopoverViewWorld world;
    QCOMPARE(world.status(), QStringLiteral("Loading prices…"));
    world.coins.price(5);
    QCOMPARE(world.status(), QStringLiteral("Updated just now"));
    world.coins.clock.advance(42);
    QTRY_COMPARE(world.status(), QStringLiteral("Updated 42 s ago"));
    world.coins.answer(failure(UrlLoadingError{UrlErrorCode::notConnectedToInternet}));
    QVERIFY2(world.status() != QStringLiteral("Updated 42 s ago"), "the failure is not told");
    world.coins.price(5);
    QCOMPARE(world.status(), QStringLiteral("Updated just now"));
}

void CoinPopoverViewTest::agesOnlyWhileVisible()
{
    CoinPopoverViewWorld world;
    const QTimer *const timer = world.view->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer && timer->isActive());
    world.view->hide();
    QVERIFY(!timer->isActive());
}

void CoinPopoverViewTest::tabGoesThroughEverything()
{
    CoinPopoverViewWorld world(3);
    world.updates.setUpdateAvailable(true);
    world.view->rewind();
    QApplication::setActiveWindow(world.view.get());
    QStringList visited;
    for (int i = 0; i < 6; ++i) {
        QTest::keyClick(world.view->focusWidget() ? world.view->focusWidget() : world.view.get(), Qt::Key_Tab);
        visited.append(QApplication::focusWidget()->objectName());
    }
    QCOMPARE(visited.join(QLatin1Char(' ')), QStringLiteral("update watchlist settings quit coins update"));
}

void CoinPopoverViewTest::arrowsMoveThroughTheRows()
{
    CoinPopoverViewWorld world(20);
    world.view->rewind();
    QApplication::setActiveWindow(world.view.get());
    QTest::keyClick(world.view.get(), Qt::Key_Down);
    QListView &list = world.view->list();
    QVERIFY(list.hasFocus());
    QCOMPARE(list.currentIndex().row(), 0);
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.currentIndex().row(), 12);
    QVERIFY(list.viewport()->rect().contains(list.visualRect(list.currentIndex())));
    QTest::keyClick(&list, Qt::Key_Home);
    QCOMPARE(list.currentIndex().row(), 0);
}

void CoinPopoverViewTest::returnPressesAButton()
{
    CoinPopoverViewWorld world;
    QTest::keyClick(&world.button("settings"), Qt::Key_Return);
    QTest::keyClick(&world.button("watchlist"), Qt::Key_Space);
    QCOMPARE(world.tabs, (std::vector{SettingsTab::general, SettingsTab::watchlist}));
}

void CoinPopoverViewTest::focusIsVisible()
{
    CoinPopoverViewWorld world(3);
    world.view->rewind();
    QApplication::setActiveWindow(world.view.get());
    const QImage before = world.picture();
    world.button("settings").setFocus(Qt::TabFocusReason);
    const QRect ring = difference(before, world.picture(), world.view->rect());
    QVERIFY(world.button("settings").geometry().contains(ring.center()));
    world.view->list().setFocus(Qt::TabFocusReason);
    QVERIFY(difference(before, world.picture(), world.row(0)).isValid());
    QVERIFY(!difference(before, world.picture(), world.row(1)).isValid());
}

void CoinPopoverViewTest::screenReadersHearTheRows()
{
    CoinPopoverViewWorld world(1000);
    world.coins.price(67432.4, 1.23);
    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(&world.view->list());
    QVERIFY(list);
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->text(QAccessible::Name), QStringLiteral("Watchlist"));
    QCOMPARE(list->childCount(), 1000);
    QCOMPARE(list->child(0)->text(QAccessible::Name), QStringLiteral("BTC, 67,432 USD, up 1.23 percent"));
    QCOMPARE(list->child(0)->role(), QAccessible::ListItem);
}

void CoinPopoverViewTest::screenReadersHearTheButtons()
{
    CoinPopoverViewWorld world;
    world.updates.setUpdateAvailable(true);
    const std::vector<std::pair<const char *, QString>> names{{"update", QStringLiteral("Update")},
                                                              {"watchlist", QStringLiteral("Edit the watchlist")},
                                                              {"settings", QStringLiteral("Open the settings")},
                                                              {"quit", QStringLiteral("Quit Tickwise")}};
    for (const auto &[name, text] : names) {
        QAccessibleInterface *const button = QAccessible::queryAccessibleInterface(&world.button(name));
        QCOMPARE(button->text(QAccessible::Name), text);
        QCOMPARE(button->role(), QAccessible::Button);
        QVERIFY(button->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    }
    QAccessible::queryAccessibleInterface(&world.button("quit"))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(world.quits, 1);
}

void CoinPopoverViewTest::languageChangesWhileOpen()
{
    CoinPopoverViewWorld world;
    world.coins.price(5);
    useLanguage(AppLanguage::zhHans);
    world.view->refresh();
    QCOMPARE(world.status(), localized(QStringLiteral("tooltip.age.now")));
    QCOMPARE(world.button("quit").toolTip(), localized(QStringLiteral("popover.quit.help")));
    QVERIFY(world.button("quit").toolTip() != QStringLiteral("Quit Tickwise"));
}

void CoinPopoverViewTest::followsADarkPalette()
{
    QGuiApplication::setPalette(QPalette(Qt::white, Qt::black, Qt::gray, Qt::darkGray, Qt::gray, Qt::white, Qt::black));
    CoinPopoverViewWorld world;
    world.coins.price(5);
    const QImage picture = world.picture();
    const QRect symbol = world.row(0).adjusted(56, 0, -100, 0);
    QVERIFY(columnsOf(picture, symbol, Qt::white).isValid());
}

void CoinPopoverViewTest::rowsHaveToolTips()
{
    CoinPopoverViewWorld world;
    world.coins.price(67432.4);
    const QString text = world.view->list().model()->index(0, 0).data(Qt::ToolTipRole).toString();
    QVERIFY2(text.contains(QStringLiteral("67,432.4 USD")), qPrintable(text));
}

TICKWISE_WIDGET_TEST(CoinPopoverViewTest)
#include "CoinPopoverViewTest.moc"
