#include "ui/settings/SettingsWindowFrame.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

using Frame = std::optional<QRect>;
using Screens = std::vector<QRect>;
class SettingsWindowFrameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void limits_data();
    void limits();
    void restores_data();
    void restores();
    void storesAndReads();
    void refuses_data();
    void refuses();
};

void SettingsWindowFrameTest::limits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("clamped");
    QTest::newRow("inside") << QSize(700, 450) << QSize(700, 450);
    QTest::newRow("too small") << QSize(599, 419) << QSize(600, 420);
    QTest::newRow("too large") << QSize(801, 501) << QSize(800, 500);
    QTest::newRow("at the limits") << QSize(600, 500) << QSize(600, 500);
}

void SettingsWindowFrameTest::limits()
{
    QFETCH(QSize, size);
    QTEST(clampedSettingsWindowSize(size), "clamped");
}

void SettingsWindowFrameTest::restores_data()
{
    QTest::addColumn<Frame>("saved");
    QTest::addColumn<Screens>("screens");
    QTest::addColumn<QRect>("frame");
    const QRect first(0, 30, 1280, 770);
    const QRect second(1280, 0, 1920, 1080);
    const auto row = [](const char *name, Frame saved, Screens screens, QRect frame) {
        QTest::newRow(name) << saved << screens << frame;
    };
    row("nothing saved", {}, {first, second}, QRect(247, 165, 786, 500));
    row("where it was", QRect(100, 50, 700, 450), {first, second}, QRect(100, 50, 700, 450));
    row("on the second screen", QRect(1500, 50, 700, 450), {first, second}, QRect(1500, 50, 700, 450));
    row("too large", QRect(100, 50, 5000, 5000), {first}, QRect(100, 50, 800, 500));
    row("too small", QRect(100, 50, 1, 1), {first}, QRect(100, 50, 600, 420));
    row("on a screen that is gone", QRect(1500, 50, 700, 450), {first}, QRect(580, 50, 700, 450));
    row("far away", QRect(900000, -900000, 700, 450), {first, second}, QRect(2500, 0, 700, 450));
    row("over an edge", QRect(-100, 700, 700, 450), {first}, QRect(0, 350, 700, 450));
    const QRect wide(0, 0, 3840, 1080);
    const QRect beside(3840, 0, 1280, 1080);
    row("over the edge to a smaller screen", QRect(3200, 50, 700, 450), {wide, beside}, QRect(3140, 50, 700, 450));
    row("mostly on the smaller screen", QRect(3600, 50, 700, 450), {wide, beside}, QRect(3840, 50, 700, 450));
    row("below a wide screen", QRect(3100, 1200, 700, 450), {wide, beside}, QRect(3100, 630, 700, 450));
    row("right of all screens", QRect(6000, 50, 700, 450), {wide, beside}, QRect(4420, 50, 700, 450));
    row("a screen that is too small", QRect(100, 50, 700, 450), {QRect(10, 20, 400, 300)}, QRect(10, 20, 700, 450));
    row("no screens", QRect(100, 50, 700, 450), {}, QRect(100, 50, 700, 450));
}

void SettingsWindowFrameTest::restores()
{
    QFETCH(Frame, saved);
    QFETCH(Screens, screens);
    QTEST(restoredSettingsWindowFrame(saved, screens), "frame");
}

void SettingsWindowFrameTest::storesAndReads()
{
    const QRect frame(-5, 20, 700, 450);
    QCOMPARE(encodeWindowFrame(frame), QByteArray("[-5,20,700,450]"));
    QCOMPARE(decodeWindowFrame(encodeWindowFrame(frame)), std::optional(frame));
}

void SettingsWindowFrameTest::refuses_data()
{
    QTest::addColumn<QByteArray>("stored");
    for (const char *const stored : {"", "null", "[1,2,3]", "[1,2,3,4,5]", "[1,2,\"3\",4]", "[1,2,0,4]", "[1,2,3,-4]",
                                     "[1e300,2,3,4]", "{\"x\":1}", "[1,2,3,4", "\xff\xfe"})
        QTest::newRow(stored) << QByteArray(stored);
}

void SettingsWindowFrameTest::refuses()
{
    QFETCH(QByteArray, stored);
    QVERIFY(!decodeWindowFrame(stored).has_value());
}

TICKWISE_TEST(SettingsWindowFrameTest)
#include "SettingsWindowFrameTest.moc"
