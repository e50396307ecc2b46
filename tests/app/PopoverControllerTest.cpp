#include "app/PopoverController.h"

#include "doubles/CoinListWorld.h"
#include "doubles/TestProgram.h"
#include "ui/updates/UpdateController.h"

#include <QAbstractItemView>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

using namespace std::chrono_literals;

/// A surface that shows the window as it is, and can refuse to.
class FakeSurface : public PopoverSurface
{
public:
    explicit FakeSurface(std::vector<QString> &log)
        : m_log(log)
    {
    }

    bool show(QWidget &window, QSize popover, int, const PopoverAnchor &anchor) override
    {
        if (refusals > 0) {
            --refusals;
            m_log.push_back(QStringLiteral("refused"));
            return false;
        }
        m_window = &window;
        lastAnchor = anchor;
        m_log.push_back(QStringLiteral("show %1").arg(popover.height()));
        window.resize(popover);
        window.show();
        onPlaced({QRect(QPoint(), popover), false, true});
        return true;
    }
    void resize(QSize popover) override { m_log.push_back(QStringLiteral("resize %1").arg(popover.height())); }
    void hide() override
    {
        m_log.push_back(QStringLiteral("hide"));
        m_window->hide();
    }

    int refusals = 0;
    PopoverAnchor lastAnchor;

private:
    std::vector<QString> &m_log;
    QWidget *m_window = nullptr;
};

struct PopoverControllerWorld
{
    PopoverControllerWorld()
    {
        auto made = std::make_unique<FakeSurface>(log);
        surface = made.get();
        controller =
            std::make_unique<PopoverController>(CoinPopoverContext{*coins.coinList, coins.settings, updates, nullptr,
                                                                   [this](SettingsTab tab) { tabs.push_back(tab); },
                                                                   [this] { ++quits; }, coins.clock.clock()},
                                                std::move(made), [this] { return now; });
    }

    void click() { controller->toggle({.cause = PopoverAnchor::Cause::click}); }
    QWidget *button(const char *name) const
    {
        return controller->window()->findChild<QWidget *>(QString::fromLatin1(name));
    }

    CoinListWorld coins;
    UpdateController updates;
    std::vector<QString> log;
    std::vector<SettingsTab> tabs;
    int quits = 0;
    std::chrono::steady_clock::time_point now;
    FakeSurface *surface = nullptr;
    std::unique_ptr<PopoverController> controller;
};

std::vector<QString> words(std::initializer_list<const char *> texts)
{
    std::vector<QString> list;
    for (const char *const text : texts)
        list.push_back(QString::fromLatin1(text));
    return list;
}

} // namespace

class PopoverControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clickOpensAndTheNextCloses();
    void theClickThatClosedItOpensNothing();
    void aClickToldTwiceOpens();
    void onlyAClickThatOpensActivates();
    void escapeCloses();
    void openingAShownPopoverChangesNothing();
    void navigatingClosesFirst();
    void quitIsPassedOn();
    void lossOfTheScreenCloses();
    void resizesWithTheNumberOfCoins();
    void startsAtTheTopEachTime();
    void triesAgainAfterLaunch();
    void givesUpAfterItsRetries();
    void nothingIsBuiltBeforeItIsOpened();
};

void PopoverControllerTest::clickOpensAndTheNextCloses()
{
    PopoverControllerWorld world;
    QSignalSpy changes(world.controller.get(), &PopoverController::isShownChanged);
    world.click();
    QVERIFY(world.controller->isShown());
    QVERIFY(world.controller->window()->isVisible());
    world.now += 1s;
    world.click();
    QVERIFY(!world.controller->isShown());
    QCOMPARE(world.log, words({"show 298", "hide"}));
    QCOMPARE(changes.count(), 2);
}

void PopoverControllerTest::theClickThatClosedItOpensNothing()
{
    PopoverControllerWorld world;
    world.click();
    Q_EMIT world.controller->window()->dismissed();
    world.now += 249ms;
    world.click();
    QVERIFY(!world.controller->isShown());
    world.now += 1ms;
    world.click();
    QVERIFY(world.controller->isShown());
}

void PopoverControllerTest::aClickToldTwiceOpens()
{
    PopoverControllerWorld world;
    world.click();
    world.click();
    QVERIFY(world.controller->isShown());
}

void PopoverControllerTest::onlyAClickThatOpensActivates()
{
    PopoverControllerWorld world;
    connect(world.controller.get(), &PopoverController::activationRequested, this,
            [&world] { world.log.push_back(QStringLiteral("activate")); });
    world.click();
    world.click();
    world.now += 1s;
    world.click();
    world.click();
    QCOMPARE(world.log, words({"activate", "show 298", "hide"}));
}

void PopoverControllerTest::escapeCloses()
{
    PopoverControllerWorld world;
    world.click();
    QTest::keyClick(world.controller->window(), Qt::Key_Escape);
    QVERIFY(!world.controller->isShown());
}

void PopoverControllerTest::openingAShownPopoverChangesNothing()
{
    PopoverControllerWorld world;
    world.controller->open({});
    world.controller->open({});
    QCOMPARE(world.log, words({"show 298"}));
    QVERIFY(world.surface->lastAnchor.cause == PopoverAnchor::Cause::request);
}

void PopoverControllerTest::navigatingClosesFirst()
{
    PopoverControllerWorld world;
    world.click();
    QTest::mouseClick(world.button("settings"), Qt::LeftButton);
    QVERIFY(!world.controller->isShown());
    QCOMPARE(world.tabs, std::vector{SettingsTab::general});
}

void PopoverControllerTest::quitIsPassedOn()
{
    PopoverControllerWorld world;
    world.click();
    QTest::mouseClick(world.button("quit"), Qt::LeftButton);
    QCOMPARE(world.quits, 1);
}

void PopoverControllerTest::lossOfTheScreenCloses()
{
    PopoverControllerWorld world;
    world.click();
    world.surface->onTakenAway();
    QVERIFY(!world.controller->isShown());
}

void PopoverControllerTest::resizesWithTheNumberOfCoins()
{
    PopoverControllerWorld world;
    world.coins.watch(6);
    world.click();
    world.coins.watch(7);
    world.coins.price(5);
    world.coins.watch(100);
    world.coins.watch(0);
    QCOMPARE(world.log, words({"show 402", "resize 454", "resize 506", "resize 298"}));
    world.controller->close();
    world.coins.watch(5);
    QCOMPARE(world.log.back(), QStringLiteral("hide"));
}

void PopoverControllerTest::startsAtTheTopEachTime()
{
    PopoverControllerWorld world;
    world.coins.watch(50);
    world.click();
    auto *const list = world.controller->window()->findChild<QAbstractItemView *>();
    list->setFocus(Qt::TabFocusReason);
    list->scrollToBottom();
    QVERIFY(list->indexAt({1, 1}).row() > 0);
    world.controller->close();
    world.controller->open({});
    QCOMPARE(list->indexAt({1, 1}).row(), 0);
    QCOMPARE(list->currentIndex().row(), 0);
    QVERIFY(!list->hasFocus());
}

void PopoverControllerTest::triesAgainAfterLaunch()
{
    PopoverControllerWorld world;
    world.surface->refusals = 2;
    PopoverAnchor anchor;
    world.controller->openAfterLaunch([&anchor] { return anchor; });
    QVERIFY(!world.controller->isShown());
    anchor.item = QRect(1000, 0, 80, 30);
    QTRY_VERIFY(world.controller->isShown());
    QCOMPARE(world.surface->lastAnchor.item, anchor.item);
    QCOMPARE(world.log, words({"refused", "refused", "show 298"}));
}

void PopoverControllerTest::givesUpAfterItsRetries()
{
    PopoverControllerWorld world;
    world.surface->refusals = 100;
    world.controller->openAfterLaunch([] { return PopoverAnchor(); }, 2);
    QTRY_COMPARE(world.log.size(), 3U);
    // Longer than a retry takes.
    QTest::qWait(400);
    QCOMPARE(world.log, words({"refused", "refused", "refused"}));
}

void PopoverControllerTest::nothingIsBuiltBeforeItIsOpened()
{
    PopoverControllerWorld world;
    world.coins.price(3);
    world.controller->retranslate();
    QVERIFY(!world.controller->window());
}

TICKWISE_WIDGET_TEST(PopoverControllerTest)
#include "PopoverControllerTest.moc"
