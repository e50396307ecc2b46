#include "ui/controls/RowNameEvents.h"

#include "doubles/CoinListWorld.h"
#include "doubles/Languages.h"
#include "doubles/TestProgram.h"
#include "ui/popover/CoinPopoverView.h"
#include "ui/updates/UpdateController.h"
#include "ui/watchlist/CoinToggleList.h"

#include <QAccessible>
#include <QListView>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

QStringList &heardNames()
{
    static QStringList names;
    return names;
}

void hearNames(QAccessibleEvent *event)
{
    if (event->type() == QAccessible::NameChanged)
        heardNames().append(event->accessibleInterface()->text(QAccessible::Name));
}

/// A screen reader starts or ends.
void listen(bool active)
{
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(active);
}

struct HeardPopoverWorld
{
    HeardPopoverWorld()
    {
        coins.price(100, 1);
        view.show();
        heardNames().clear();
    }

    void priceBitcoin(double price)
    {
        PriceSnapshot snapshot;
        snapshot.prices = {{QStringLiteral("BTC"), price}, {QStringLiteral("ETH"), 100}};
        snapshot.changes24h = {{QStringLiteral("BTC"), 1}, {QStringLiteral("ETH"), 1}};
        coins.answer(snapshot);
    }

    CoinListWorld coins;
    UpdateController updates;
    CoinPopoverView view{{*coins.coinList, coins.settings, updates, nullptr, [](SettingsTab) {}, [] {}}};
};

} // namespace

class RowNameEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { listen(true); }
    void cleanupTestCase();
    void tellsTheRowThatChanged();
    void tellsALanguage();
    void tellsNothingWhileHidden();
    void tellsNothingWhenNobodyListens();
    void otherCoinsAreNoNewNames();
    void tellsACoinThatWasAdded();
};

void RowNameEventsTest::initTestCase()
{
    useLanguage(AppLanguage::en);
    QAccessible::installUpdateHandler(hearNames);
}

void RowNameEventsTest::cleanupTestCase()
{
    QAccessible::installUpdateHandler(nullptr);
    listen(false);
}

void RowNameEventsTest::tellsTheRowThatChanged()
{
    HeardPopoverWorld world;
    world.priceBitcoin(200);
    QCOMPARE(heardNames(), QStringList{QStringLiteral("BTC, 200 USD, up 1.00 percent")});
    world.priceBitcoin(200);
    QCOMPARE(heardNames().size(), 1);
}

void RowNameEventsTest::tellsALanguage()
{
    HeardPopoverWorld world;
    useLanguage(AppLanguage::zhHans);
    world.view.refresh();
    useLanguage(AppLanguage::en);
    const QStringList names = heardNames().filter(QStringLiteral("USD"));
    QCOMPARE(names.size(), 2);
    QVERIFY(!names.front().contains(QStringLiteral("percent")));
}

void RowNameEventsTest::tellsNothingWhileHidden()
{
    HeardPopoverWorld world;
    world.view.hide();
    heardNames().clear();
    world.priceBitcoin(200);
    QCOMPARE(heardNames(), QStringList());
    world.view.show();
    world.priceBitcoin(300);
    QCOMPARE(heardNames().filter(QStringLiteral("USD")), QStringList{QStringLiteral("BTC, 300 USD, up 1.00 percent")});
}

void RowNameEventsTest::tellsNothingWhenNobodyListens()
{
    HeardPopoverWorld world;
    listen(false);
    world.priceBitcoin(200);
    QCOMPARE(heardNames(), QStringList());
}

void RowNameEventsTest::otherCoinsAreNoNewNames()
{
    HeardPopoverWorld world;
    world.coins.watch(3);
    world.coins.watch(2);
    QCOMPARE(heardNames(), QStringList());
    world.priceBitcoin(200);
    QCOMPARE(heardNames(), QStringList{QStringLiteral("BTC, 200 USD, up 1.00 percent")});
}

void RowNameEventsTest::tellsACoinThatWasAdded()
{
    QStringList added;
    CoinToggleModel model([&added](const QString &id) { return added.contains(id); });
    model.setCoins(validCoins(2));
    CoinToggleList list(model, nullptr);
    list.show();
    const QString before = model.index(1, 0).data(Qt::AccessibleTextRole).toString();
    heardNames().clear();
    added.append(QStringLiteral("ethereum"));
    model.refresh();
    const QString after = model.index(1, 0).data(Qt::AccessibleTextRole).toString();
    QVERIFY(after != before);
    QCOMPARE(heardNames(), QStringList{after});
}

TICKWISE_WIDGET_TEST(RowNameEventsTest)
#include "RowNameEventsTest.moc"
