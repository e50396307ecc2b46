#include "widget/program/WidgetLogos.h"

#include "doubles/LogoPictures.h"
#include "doubles/TestProgram.h"

#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

class WidgetLogosTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEachFileOnce();
    void missingOnesAreLookedForAgain();
    void fileThatIsNoImage();
    void withoutAContainer();
};

void WidgetLogosTest::readsEachFileOnce()
{
    const QTemporaryDir folder;
    const CoinLogoCache cache{folder.path()};
    QVERIFY(cache.write(QStringLiteral("monero"), encoded(logoLikeImage(32), "png")));
    WidgetLogos logos(cache);
    QCOMPARE(logos.image(QStringLiteral("monero")).value_or(QImage()).size(), QSize(32, 32));
    cache.remove(QStringLiteral("monero"));
    QVERIFY(!logos.findMissing());
    QVERIFY(logos.image(QStringLiteral("monero")));
}

void WidgetLogosTest::missingOnesAreLookedForAgain()
{
    const QTemporaryDir folder;
    const CoinLogoCache cache{folder.path()};
    WidgetLogos logos(cache);
    QVERIFY(!logos.image(QStringLiteral("monero")));
    QVERIFY(!logos.findMissing());
    QVERIFY(cache.write(QStringLiteral("monero"), encoded(logoLikeImage(32), "png")));
    QVERIFY(!logos.image(QStringLiteral("monero")));
    QVERIFY(logos.findMissing());
    QVERIFY(!logos.findMissing());
    QVERIFY(logos.image(QStringLiteral("monero")));
}

void WidgetLogosTest::fileThatIsNoImage()
{
    const QTemporaryDir folder;
    const CoinLogoCache cache{folder.path()};
    QVERIFY(cache.write(QStringLiteral("monero"), "<html></html>"));
    QVERIFY(!WidgetLogos(cache).image(QStringLiteral("monero")));
}

void WidgetLogosTest::withoutAContainer()
{
    QVERIFY(!WidgetLogos({}).image(QStringLiteral("monero")));
}

TICKWISE_TEST(WidgetLogosTest)
#include "WidgetLogosTest.moc"
