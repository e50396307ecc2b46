#include "catalog/logos/CoinLogoPainting.h"

#include "catalog/CoinCatalog.h"
#include "catalog/ShippedImages.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>

using namespace tickwise;

class CoinLogoPaintingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void letters_data();
    void letters();
    void placeholderIsACircleWithLetters();
    void placeholderHasBoldLettersOfEightPixels();
    void placeholderKeepsThePainter();
    void imageFillsTheBox();
    void shippedLogoFillsTheBox_data();
    void shippedLogoFillsTheBox();
    void unknownShippedLogoPaintsNothing_data();
    void unknownShippedLogoPaintsNothing();
    void firstMatchWins();
    void recommendedCoinsHaveShippedLogos();
    void shippedLogosBelongToCoins();
};

namespace {

constexpr int side = 64;

template<class Paint>
QImage painted(Paint paint)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter);
    return image;
}

bool isBlank(const QImage &image)
{
    QImage blank = image;
    blank.fill(Qt::transparent);
    return image == blank;
}

/// The colors of the drawing reach the four sides of the box, and its corners stay free.
bool isFullCircle(const QImage &image)
{
    const int end = side - 1;
    const int middle = side / 2;
    return qAlpha(image.pixel(middle, 1)) > 0 && qAlpha(image.pixel(middle, end - 1)) > 0 &&
           qAlpha(image.pixel(1, middle)) > 0 && qAlpha(image.pixel(end - 1, middle)) > 0 &&
           qAlpha(image.pixel(0, 0)) == 0 && qAlpha(image.pixel(end, end)) == 0;
}

const QRectF box(0, 0, side, side);

} // namespace

void CoinLogoPaintingTest::letters_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("letters");
    QTest::newRow("long") << QStringLiteral("LINK") << QStringLiteral("LIN");
    QTest::newRow("three") << QStringLiteral("BTC") << QStringLiteral("BTC");
    QTest::newRow("one") << QStringLiteral("S") << QStringLiteral("S");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("combined") << QStringLiteral("e\u0301e\u0301e\u0301X") << QStringLiteral("e\u0301e\u0301e\u0301");
    QTest::newRow("beyond the first plane")
        << QStringLiteral("\U0001F680\U0001F680AB") << QStringLiteral("\U0001F680\U0001F680A");
}

void CoinLogoPaintingTest::letters()
{
    QFETCH(QString, symbol);
    QTEST(placeholderLetters(symbol), "letters");
}

void CoinLogoPaintingTest::placeholderIsACircleWithLetters()
{
    const QColor accent(200, 40, 90);
    const QImage image =
        painted([&](QPainter &painter) { paintLogoPlaceholder(painter, box, QStringLiteral("BTC"), accent); });
    QVERIFY(isFullCircle(image));
    // The ground at 15 %, away from the letters.
    QCOMPARE(qAlpha(image.pixel(side / 2, 8)), qRound(0.15 * 255));
    const QImage empty = painted([&](QPainter &painter) { paintLogoPlaceholder(painter, box, {}, accent); });
    const QImage other =
        painted([&](QPainter &painter) { paintLogoPlaceholder(painter, box, QStringLiteral("ETH"), accent); });
    const QImage longer =
        painted([&](QPainter &painter) { paintLogoPlaceholder(painter, box, QStringLiteral("BTCX"), accent); });
    QVERIFY(image != empty);
    QVERIFY(image != other);
    QCOMPARE(image, longer);
}

void CoinLogoPaintingTest::placeholderHasBoldLettersOfEightPixels()
{
    const QColor accent(200, 40, 90);
    const QImage expected = painted([&](QPainter &painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor::fromRgbF(accent.redF(), accent.greenF(), accent.blueF(), 0.15F));
        painter.drawEllipse(box);
        QFont font = QGuiApplication::font();
        font.setPixelSize(8);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(accent);
        painter.drawText(box, Qt::AlignCenter, QStringLiteral("BTC"));
    });
    QCOMPARE(painted([&](QPainter &painter) { paintLogoPlaceholder(painter, box, QStringLiteral("BTC"), accent); }),
             expected);
}

void CoinLogoPaintingTest::placeholderKeepsThePainter()
{
    painted([](QPainter &painter) {
        const QFont font = painter.font();
        const QPen pen = painter.pen();
        paintLogoPlaceholder(painter, box, QStringLiteral("BTC"), Qt::red);
        QCOMPARE(painter.font(), font);
        QCOMPARE(painter.pen(), pen);
    });
}

void CoinLogoPaintingTest::imageFillsTheBox()
{
    QImage logo(8, 8, QImage::Format_ARGB32_Premultiplied);
    logo.fill(Qt::blue);
    const QImage image = painted([&](QPainter &painter) { paintLogoImage(painter, box, logo); });
    QImage blue = image;
    blue.fill(Qt::blue);
    QCOMPARE(image, blue);
}

void CoinLogoPaintingTest::shippedLogoFillsTheBox_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &file : QDir(QStringLiteral(":/logos")).entryList())
        QTest::newRow(qPrintable(file)) << file.chopped(4);
}

void CoinLogoPaintingTest::shippedLogoFillsTheBox()
{
    QFETCH(QString, name);
    bool found = false;
    const QImage image = painted([&](QPainter &painter) { found = paintShippedLogo(painter, box, name); });
    QVERIFY(found);
    QVERIFY(isFullCircle(image));
    // A white sign on a ground that is not.
    int white = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            white += image.pixel(x, y) == qRgb(255, 255, 255) ? 1 : 0;
    }
    QVERIFY2(white > side * side / 40 && white < side * side / 3, qPrintable(QString::number(white)));
}

void CoinLogoPaintingTest::unknownShippedLogoPaintsNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown") << QStringLiteral("coin-nothing");
    QTest::newRow("empty") << QString();
    QTest::newRow("directory") << QStringLiteral("..");
}

void CoinLogoPaintingTest::unknownShippedLogoPaintsNothing()
{
    QFETCH(QString, name);
    bool found = true;
    const QImage image = painted([&](QPainter &painter) { found = paintShippedLogo(painter, box, name); });
    QVERIFY(!found);
    QVERIFY(isBlank(image));
}

void CoinLogoPaintingTest::firstMatchWins()
{
    const QString bitcoin = QStringLiteral("coin-bitcoin");
    const QString symbol = QStringLiteral("BTC");
    QImage logo(8, 8, QImage::Format_ARGB32_Premultiplied);
    logo.fill(Qt::blue);
    const auto coinLogo = [&](const std::optional<QString> &asset, const std::optional<QImage> &image) {
        return painted([&](QPainter &painter) { paintCoinLogo(painter, box, asset, image, symbol, Qt::red); });
    };
    const QImage shipped = painted([&](QPainter &painter) { paintShippedLogo(painter, box, bitcoin); });
    const QImage loaded = painted([&](QPainter &painter) { paintLogoImage(painter, box, logo); });
    const QImage letters = painted([&](QPainter &painter) { paintLogoPlaceholder(painter, box, symbol, Qt::red); });
    QCOMPARE(coinLogo(bitcoin, logo), shipped);
    QCOMPARE(coinLogo(std::nullopt, logo), loaded);
    QCOMPARE(coinLogo(QString(), logo), loaded);
    QCOMPARE(coinLogo(std::nullopt, std::nullopt), letters);
    QCOMPARE(coinLogo(QStringLiteral("coin-nothing"), std::nullopt), letters);
}

void CoinLogoPaintingTest::recommendedCoinsHaveShippedLogos()
{
    const CoinCatalog catalog(QStringLiteral(":/coins.json"), shippedImageExists);
    QFile file(QStringLiteral(":/recommendedCoins.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray symbols = QJsonDocument::fromJson(file.readAll()).array();
    QVERIFY(!symbols.isEmpty());
    for (const QJsonValue &symbol : symbols) {
        const auto isRecommended = [&](const CoinMetadata &coin) {
            return coin.listed && coin.symbol == symbol.toString();
        };
        const auto coin = std::find_if(catalog.coins().begin(), catalog.coins().end(), isRecommended);
        QVERIFY(coin != catalog.coins().end());
        QCOMPARE(coin->logoAssetName, std::optional(QStringLiteral("coin-") + coin->id));
    }
}

void CoinLogoPaintingTest::shippedLogosBelongToCoins()
{
    const CoinCatalog catalog(QStringLiteral(":/coins.json"), shippedImageExists);
    const QStringList files = QDir(QStringLiteral(":/logos")).entryList();
    QVERIFY(!files.isEmpty());
    for (const QString &name : files) {
        QVERIFY2(name.startsWith(QStringLiteral("coin-")) && name.endsWith(QStringLiteral(".svg")), qPrintable(name));
        QVERIFY2(catalog.byID().contains(name.mid(5).chopped(4)), qPrintable(name));
    }
}

TICKWISE_WIDGET_TEST(CoinLogoPaintingTest)
#include "CoinLogoPaintingTest.moc"
