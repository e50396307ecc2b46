#include "ui/controls/SymbolImage.h"

#include "doubles/TestProgram.h"

#include <QDir>
#include <QImage>

using namespace tickwise;

class SymbolImageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySymbolIsDrawn_data();
    void everySymbolIsDrawn();
    void hasTheSymbolsOfTheInterface_data();
    void hasTheSymbolsOfTheInterface();
    void isSharpOnDenseScreens_data();
    void isSharpOnDenseScreens();
    void colorsAreKeptApart();
    void unknownSymbolIsNull_data();
    void unknownSymbolIsNull();
};

namespace {

/// The pixels that the symbol covers wholly.
int covered(const QImage &image, const QColor &color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

} // namespace

void SymbolImageTest::everySymbolIsDrawn_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &file : QDir(QStringLiteral(":/symbols")).entryList())
        QTest::newRow(qPrintable(file)) << file.chopped(4);
}

void SymbolImageTest::everySymbolIsDrawn()
{
    QFETCH(QString, name);
    const QColor color(10, 120, 230);
    const QImage image = symbolPixmap(name, color, 64, 1).toImage();
    QCOMPARE(image.size(), QSize(64, 64));
    const int count = covered(image, color);
    QVERIFY2(count > 200 && count < 64 * 64 - 200, qPrintable(QString::number(count)));
    // Nothing is cut off by the frame.
    for (int i = 0; i < 64; ++i) {
        QCOMPARE(qAlpha(image.pixel(i, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(i, 63)), 0);
        QCOMPARE(qAlpha(image.pixel(0, i)), 0);
        QCOMPARE(qAlpha(image.pixel(63, i)), 0);
    }
}

void SymbolImageTest::hasTheSymbolsOfTheInterface_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"gearshape", "power", "arrow.down.circle.fill", "bitcoinsign.circle", "magnifyingglass",
                             "xmark.circle.fill", "checkmark.circle.fill", "minus.circle.fill", "plus.circle",
                             "line.3.horizontal", "info.circle", "list.bullet", "trash", "chart"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void SymbolImageTest::hasTheSymbolsOfTheInterface()
{
    QFETCH(QString, name);
    QVERIFY(!symbolPixmap(name, Qt::black, 16, 1).isNull());
}

void SymbolImageTest::isSharpOnDenseScreens_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<int>("pixels");
    QTest::newRow("1") << 1.0 << 16;
    QTest::newRow("1.25") << 1.25 << 20;
    QTest::newRow("2") << 2.0 << 32;
    QTest::newRow("3") << 3.0 << 48;
}

void SymbolImageTest::isSharpOnDenseScreens()
{
    QFETCH(qreal, ratio);
    QFETCH(int, pixels);
    const QPixmap pixmap = symbolPixmap(QStringLiteral("power"), Qt::black, 16, ratio);
    QCOMPARE(pixmap.size(), QSize(pixels, pixels));
    QCOMPARE(pixmap.devicePixelRatio(), ratio);
    QCOMPARE(pixmap.deviceIndependentSize(), QSizeF(16, 16));
}

void SymbolImageTest::colorsAreKeptApart()
{
    const auto power = [](const QColor &color) { return symbolPixmap(QStringLiteral("power"), color, 32, 1); };
    QCOMPARE(covered(power(Qt::red).toImage(), Qt::blue), 0);
    QVERIFY(covered(power(Qt::blue).toImage(), Qt::blue) > 0);
    QVERIFY(covered(power(Qt::red).toImage(), Qt::red) > 0);
    QCOMPARE(power(Qt::red).cacheKey(), power(Qt::red).cacheKey());
}

void SymbolImageTest::unknownSymbolIsNull_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("side");
    QTest::newRow("unknown") << QStringLiteral("nothing") << 16;
    QTest::newRow("empty") << QString() << 16;
    QTest::newRow("no size") << QStringLiteral("power") << 0;
}

void SymbolImageTest::unknownSymbolIsNull()
{
    QFETCH(QString, name);
    QFETCH(int, side);
    QVERIFY(symbolPixmap(name, Qt::black, side, 1).isNull());
}

TICKWISE_WIDGET_TEST(SymbolImageTest)
#include "SymbolImageTest.moc"
