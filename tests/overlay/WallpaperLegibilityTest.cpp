#include "overlay/WallpaperLegibility.h"

#include "doubles/TestProgram.h"

#include <limits>

using namespace tickwise;

class WallpaperLegibilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ground_data();
    void ground();
};

void WallpaperLegibilityTest::ground_data()
{
    QTest::addColumn<double>("opacity");
    QTest::addColumn<bool>("adjusting");
    QTest::addColumn<bool>("translucent");
    QTest::addColumn<double>("backdrop");
    QTest::addColumn<bool>("halo");
    const auto row = [](const char *name, double opacity, bool adjusting, bool translucent, double backdrop,
                        bool halo) { QTest::newRow(name) << opacity << adjusting << translucent << backdrop << halo; };
    row("opaque", 1, false, true, 1, false);
    row("half", 0.5, false, true, 0.5, false);
    row("the least without a halo", 0.2, false, true, 0.2, false);
    row("just below it", 0.19, false, true, 0.19, true);
    row("nearly transparent", 0.1, false, true, 0.1, true);
    row("nearly transparent, adjusted", 0.1, true, true, 0.6, false);
    row("opaque, adjusted", 0.9, true, true, 0.9, false);
    row("nothing", 0, false, true, 0, true);
    row("below nothing", -3, false, true, 0, true);
    row("more than opaque", 7, false, true, 1, false);
    row("not a number", std::numeric_limits<double>::quiet_NaN(), false, true, 0, true);
    row("infinite", std::numeric_limits<double>::infinity(), false, true, 0, true);
    row("without a compositor", 0.1, false, false, 1, false);
    row("without a compositor, adjusted", 0.1, true, false, 1, false);
}

void WallpaperLegibilityTest::ground()
{
    QFETCH(double, opacity);
    QFETCH(bool, adjusting);
    QFETCH(bool, translucent);
    QFETCH(bool, halo);
    const DesktopOverlayGround ground{opacity, adjusting, translucent};
    QTEST(backdropOpacity(ground), "backdrop");
    QCOMPARE(wallpaperLegibility(ground), (WidgetLegibility{.halo = halo, .boost = halo}));
}

TICKWISE_TEST(WallpaperLegibilityTest)
#include "WallpaperLegibilityTest.moc"
