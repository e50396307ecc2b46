#include "app/PopoverController.h"

#include "app/DelegateDoubles.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A status item whose host tells where it is.
class PlacedStatusItem : public RecordingStatusItem
{
public:
    std::optional<QRect> geometry() const override { return place; }
    StatusItemAvailability availability() const override { return m_availability; }
    void setAvailability(StatusItemAvailability availability)
    {
        m_availability = availability;
        Q_EMIT availabilityChanged(availability);
    }

    std::optional<QRect> place;

private:
    StatusItemAvailability m_availability = StatusItemAvailability::shown;
};

/// What a popover's surface was asked for.
struct SurfaceCalls
{
    QStringList calls;
    std::vector<PopoverAnchor> anchors;
    int refusals = 0;
};

/// A surface that shows nothing, and can refuse to.
class CountingPopoverSurface : public PopoverSurface
{
public:
    explicit CountingPopoverSurface(SurfaceCalls &calls)
        : m_calls(calls)
    {
    }

    bool show(QWidget &, QSize popover, int, const PopoverAnchor &anchor) override
    {
        m_calls.anchors.push_back(anchor);
        if (m_calls.refusals-- > 0)
            return false;
        m_calls.calls.append(QStringLiteral("shown"));
        onPlaced({QRect(QPoint(), popover), false, true});
        return true;
    }
    void resize(QSize) override {}
    void hide() override { m_calls.calls.append(QStringLiteral("hidden")); }

private:
    SurfaceCalls &m_calls;
};

/// A delegate whose popover has a place among doubles; not started yet.
struct DelegatePopoverWorld : DelegateDoubles
{
    DelegatePopoverWorld()
    {
        http.hold(Endpoints().binanceMain);
        delegate = std::make_unique<AppDelegate>(environment());
        QObject::connect(delegate.get(), &AppDelegate::activationRequested,
                         [this] { surface.calls.append(QStringLiteral("activated")); });
        QObject::connect(delegate.get(), &AppDelegate::settingsWindowRequested,
                         [this](SettingsTab tab) { surface.calls.append(rawValue(tab)); });
    }

    AppEnvironment environment()
    {
        AppEnvironment all = doubles();
        all.makeStatusItem = [this] {
            auto made = std::make_unique<PlacedStatusItem>();
            placedItem = made.get();
            return made;
        };
        all.makePopoverSurface = [this] { return std::make_unique<CountingPopoverSurface>(surface); };
        return all;
    }
    AppDelegate &launch()
    {
        delegate->applicationDidFinishLaunching();
        return *delegate;
    }

    SurfaceCalls surface;
    QPointer<PlacedStatusItem> placedItem;
    std::unique_ptr<AppDelegate> delegate;
};

QStringList lines(const char *text)
{
    return QString::fromLatin1(text).split(QStringLiteral(", "));
}

} // namespace

class DelegatePopoverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aClickActivatesFirst();
    void anActivationOpensIt();
    void waitsUntilItKnowsWhetherAPanelShowsTheItem_data();
    void waitsUntilItKnowsWhetherAPanelShowsTheItem();
    void theSettingsWindowComesInsteadOfIt();
    void theStatusMenuClosesIt();
    void nothingOpensItAfterTheStart();
    void opensAfterTheStart();
};

void DelegatePopoverTest::aClickActivatesFirst()
{
    DelegatePopoverWorld world;
    world.launch();
    world.placedItem->place = QRect(1000, 0, 80, 30);
    Q_EMIT world.placedItem->clicked(QPoint(1040, 10));
    QCOMPARE(world.surface.calls, lines("activated, shown"));
    const PopoverAnchor anchor{PopoverAnchor::Cause::click, QRect(1000, 0, 80, 30), QPoint(1040, 10), true};
    QVERIFY(world.surface.anchors == std::vector{anchor});
}

void DelegatePopoverTest::anActivationOpensIt()
{
    DelegatePopoverWorld world;
    world.launch().activate(QStringLiteral("token-1"));
    QCOMPARE(world.surface.calls, lines("activated, shown"));
    QVERIFY(world.surface.anchors == std::vector{PopoverAnchor()});
}

void DelegatePopoverTest::waitsUntilItKnowsWhetherAPanelShowsTheItem_data()
{
    QTest::addColumn<int>("availability");
    QTest::newRow("a panel") << int(StatusItemAvailability::shown);
    QTest::newRow("no panel") << int(StatusItemAvailability::needsPanel);
}

void DelegatePopoverTest::waitsUntilItKnowsWhetherAPanelShowsTheItem()
{
    QFETCH(int, availability);
    DelegatePopoverWorld world;
    world.launch();
    world.placedItem->setAvailability(StatusItemAvailability::unknown);
    world.delegate->openUrls({QStringLiteral("tickwise://popover")}, {});
    QCOMPARE(world.surface.calls, lines("activated"));
    world.placedItem->setAvailability(StatusItemAvailability(availability));
    QCOMPARE(world.surface.calls, lines("activated, shown"));
    QCOMPARE(world.surface.anchors.back().hasStatusItem, availability == int(StatusItemAvailability::shown));
    world.placedItem->setAvailability(StatusItemAvailability::needsPanel);
    QCOMPARE(world.surface.calls, lines("activated, shown"));
}

void DelegatePopoverTest::theSettingsWindowComesInsteadOfIt()
{
    DelegatePopoverWorld world;
    world.launch();
    world.placedItem->setAvailability(StatusItemAvailability::unknown);
    world.delegate->activate();
    world.delegate->openSettingsWindow(SettingsTab::general);
    world.placedItem->setAvailability(StatusItemAvailability::shown);
    QCOMPARE(world.surface.calls, lines("activated, general"));
}

void DelegatePopoverTest::theStatusMenuClosesIt()
{
    DelegatePopoverWorld world;
    world.launch().activate();
    world.surface.calls.clear();
    world.placedItem->menu()[2].activate();
    QCOMPARE(world.surface.calls, lines("hidden, general"));
    QVERIFY(!world.delegate->popover()->isShown());
    world.placedItem->menu()[3].activate();
    QCOMPARE(world.surface.calls, lines("hidden, general, about"));
}

void DelegatePopoverTest::nothingOpensItAfterTheStart()
{
    DelegatePopoverWorld world;
    world.launch();
    QVERIFY(world.surface.anchors.empty());
}

void DelegatePopoverTest::opensAfterTheStart()
{
    DelegatePopoverWorld world;
    world.delegate->setOpensPopoverAfterLaunch(true);
    world.surface.refusals = 1;
    world.launch();
    QVERIFY(!world.delegate->popover()->isShown());
    // The panel tells where the item is meanwhile.
    world.placedItem->place = QRect(1000, 0, 80, 30);
    QTRY_VERIFY(world.delegate->popover()->isShown());
    QCOMPARE(world.surface.anchors.size(), 2U);
    QCOMPARE(world.surface.anchors.front().item, std::optional<QRect>());
    QCOMPARE(world.surface.anchors.back().item, world.placedItem->place);
    QVERIFY(world.surface.anchors.back().cause == PopoverAnchor::Cause::request);
}

TICKWISE_WIDGET_TEST(DelegatePopoverTest)
#include "DelegatePopoverTest.moc"
