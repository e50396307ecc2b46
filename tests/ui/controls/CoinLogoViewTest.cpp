#include "ui/controls/CoinLogoView.h"

#include "catalog/logos/CoinLogoPainting.h"
#include "doubles/LogoPictures.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"

#include <QPainter>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString address = QStringLiteral("https://assets.coingecko.com/solana.png");

CoinLogoContent solana()
{
    return {QStringLiteral("solana"), std::nullopt, address, QStringLiteral("SOL")};
}

CoinMetadata metadata(const CoinLogoContent &content)
{
    CoinMetadata coin;
    coin.id = content.coinID;
    coin.logoURL = content.urlString;
    return coin;
}

QByteArray blueLogo()
{
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(Qt::blue);
    return encoded(image, "png");
}

} // namespace

class CoinLogoViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void kind_data();
    void kind();
    void drawsTheShippedLogo();
    void drawsTheCachedLogo();
    void drawsThePlaceholderUntilTheLogoLands();
    void followsTheStoreWhenALogoGoes();
    void emptyAssetNameIsNone();
    void withoutAStoreLoadsTheLogo();
    void withoutAStoreKeepsThePlaceholder_data();
    void withoutAStoreKeepsThePlaceholder();
    void invalidAddressIsNotLoaded_data();
    void invalidAddressIsNotLoaded();
    void changedContentDropsTheLoading();
    void sameContentLoadsOnce();
    void worksWithoutAnySource();
    void isSharpOnDenseScreens();
    void followsThePalette();
    void saysWhoseLogoItIs();

private:
    std::unique_ptr<CoinLogoView> view(const CoinLogoSources &sources);
    QImage grabbed(CoinLogoView &view) { return view.grab().toImage().convertToFormat(QImage::Format_ARGB32); }
    bool isBlue(CoinLogoView &view) { return grabbed(view).pixel(16, 4) == qRgb(0, 0, 255); }
    CoinLogoCache cache() const { return CoinLogoCache::inContainer(m_container->path()); }

    std::unique_ptr<QTemporaryDir> m_container;
    std::unique_ptr<ScriptedHttpClient> m_client;
};

void CoinLogoViewTest::init()
{
    m_container = std::make_unique<QTemporaryDir>();
    m_client = std::make_unique<ScriptedHttpClient>();
}

std::unique_ptr<CoinLogoView> CoinLogoViewTest::view(const CoinLogoSources &sources)
{
    auto view = std::make_unique<CoinLogoView>(sources);
    view->resize(32, 32);
    return view;
}

void CoinLogoViewTest::kind_data()
{
    QTest::addColumn<std::optional<QString>>("assetName");
    QTest::addColumn<bool>("hasStore");
    QTest::addColumn<CoinLogoKind>("kind");
    const std::optional<QString> asset = QStringLiteral("coin-bitcoin");
    const std::optional<QString> empty = QString();
    const std::optional<QString> none;
    QTest::newRow("asset, store") << asset << true << CoinLogoKind::shipped;
    QTest::newRow("asset, no store") << asset << false << CoinLogoKind::shipped;
    QTest::newRow("empty asset, store") << empty << true << CoinLogoKind::cached;
    QTest::newRow("empty asset, no store") << empty << false << CoinLogoKind::remote;
    QTest::newRow("no asset, store") << none << true << CoinLogoKind::cached;
    QTest::newRow("no asset, no store") << none << false << CoinLogoKind::remote;
}

void CoinLogoViewTest::kind()
{
    QFETCH(std::optional<QString>, assetName);
    QFETCH(bool, hasStore);
    QTEST(coinLogoKind(assetName, hasStore), "kind");
}

void CoinLogoViewTest::drawsTheShippedLogo()
{
    QVERIFY(cache().write(QStringLiteral("bitcoin"), blueLogo()));
    CoinLogoStore store(cache(), *m_client);
    const auto logo = view({&store, m_client.get()});
    logo->setContent({QStringLiteral("bitcoin"), QStringLiteral("coin-bitcoin"), address, QStringLiteral("BTC")});
    QImage expected = logo->grab().toImage(); // in the format that widgets are painted in
    QPainter(&expected).fillRect(expected.rect(), logo->palette().window());
    QPainter painter(&expected);
    QVERIFY(paintShippedLogo(painter, expected.rect(), QStringLiteral("coin-bitcoin")));
    painter.end();
    QCOMPARE(grabbed(*logo), expected.convertToFormat(QImage::Format_ARGB32));
    QVERIFY(m_client->requests().empty());
}

void CoinLogoViewTest::drawsTheCachedLogo()
{
    QVERIFY(cache().write(QStringLiteral("solana"), blueLogo()));
    CoinLogoStore store(cache(), *m_client);
    const auto logo = view({&store, m_client.get()});
    logo->setContent(solana());
    QVERIFY(isBlue(*logo));
    QVERIFY(m_client->requests().empty());
}

void CoinLogoViewTest::drawsThePlaceholderUntilTheLogoLands()
{
    m_client->answer(address, 200, blueLogo());
    CoinLogoStore store(cache(), *m_client);
    const auto logo = view({&store, m_client.get()});
    logo->setContent(solana());
    logo->show();
    QVERIFY(!isBlue(*logo));
    store.ensureLogo(metadata(solana()));
    QTRY_VERIFY(isBlue(*logo));
    QCOMPARE(m_client->requests().size(), std::size_t(1));
}

void CoinLogoViewTest::followsTheStoreWhenALogoGoes()
{
    QVERIFY(cache().write(QStringLiteral("solana"), blueLogo()));
    CoinLogoStore store(cache(), *m_client);
    const auto logo = view({&store, m_client.get()});
    logo->setContent(solana());
    QVERIFY(isBlue(*logo));
    store.sync({});
    QVERIFY(!isBlue(*logo));
}

void CoinLogoViewTest::emptyAssetNameIsNone()
{
    QVERIFY(cache().write(QStringLiteral("solana"), blueLogo()));
    CoinLogoStore store(cache(), *m_client);
    const auto logo = view({&store, m_client.get()});
    CoinLogoContent content = solana();
    content.assetName = QString();
    logo->setContent(content);
    QVERIFY(isBlue(*logo));
}

void CoinLogoViewTest::withoutAStoreLoadsTheLogo()
{
    m_client->answer(address, 200, blueLogo());
    const auto logo = view({nullptr, m_client.get()});
    logo->setContent(solana());
    QVERIFY(!isBlue(*logo));
    QTRY_VERIFY(isBlue(*logo));
    QCOMPARE(m_client->requests().front().maximumBytes, qint64(524288));
    QVERIFY(!m_client->requests().front().mayRedirectTo(QUrl(QStringLiteral("https://example.com/a.png"))));
}

void CoinLogoViewTest::withoutAStoreKeepsThePlaceholder_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("transport error") << 0 << QByteArray();
    QTest::newRow("404") << 404 << blueLogo();
    QTest::newRow("no picture") << 200 << QByteArray("<html/>");
}

void CoinLogoViewTest::withoutAStoreKeepsThePlaceholder()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    if (status == 0)
        m_client->fail(address, UrlLoadingError{UrlErrorCode::timedOut});
    else
        m_client->answer(address, status, body);
    const auto logo = view({nullptr, m_client.get()});
    logo->setContent(solana());
    const QImage placeholder = grabbed(*logo);
    QTRY_COMPARE(m_client->open(), 0);
    QCOMPARE(grabbed(*logo), placeholder);
    QCOMPARE(logo->image(), std::nullopt);
}

void CoinLogoViewTest::invalidAddressIsNotLoaded_data()
{
    QTest::addColumn<std::optional<QString>>("urlString");
    QTest::newRow("none") << std::optional<QString>();
    QTest::newRow("scheme") << std::optional(QStringLiteral("http://assets.coingecko.com/solana.png"));
    QTest::newRow("host") << std::optional(QStringLiteral("https://example.com/solana.png"));
}

void CoinLogoViewTest::invalidAddressIsNotLoaded()
{
    QFETCH(std::optional<QString>, urlString);
    const auto logo = view({nullptr, m_client.get()});
    CoinLogoContent content = solana();
    content.urlString = urlString;
    logo->setContent(content);
    QVERIFY(m_client->requests().empty());
    QVERIFY(!isBlue(*logo));
}

void CoinLogoViewTest::changedContentDropsTheLoading()
{
    m_client->answer(address, 200, blueLogo());
    m_client->hold(QStringLiteral("https://assets.coingecko.com/tron.png"));
    const auto logo = view({nullptr, m_client.get()});
    logo->setContent(solana());
    CoinLogoContent tron{
        QStringLiteral("tron"), {}, QStringLiteral("https://assets.coingecko.com/tron.png"), QStringLiteral("TRX")};
    logo->setContent(tron);
    QCOMPARE(m_client->open(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(logo->image(), std::nullopt);
    tron.urlString.reset();
    logo->setContent(tron);
    QCOMPARE(m_client->open(), 0);
}

void CoinLogoViewTest::sameContentLoadsOnce()
{
    m_client->answer(address, 200, blueLogo());
    const auto logo = view({nullptr, m_client.get()});
    logo->setContent(solana());
    logo->setContent(solana());
    QTRY_VERIFY(logo->image());
    logo->setContent(solana());
    QCOMPARE(m_client->requests().size(), std::size_t(1));
    QVERIFY(logo->image());
}

void CoinLogoViewTest::worksWithoutAnySource()
{
    const auto logo = view({});
    logo->setContent(solana());
    const QImage sol = grabbed(*logo);
    CoinLogoContent tron = solana();
    tron.symbol = QStringLiteral("TRX");
    logo->setContent(tron);
    QVERIFY(grabbed(*logo) != sol);
}

void CoinLogoViewTest::isSharpOnDenseScreens()
{
    QVERIFY(cache().write(QStringLiteral("solana"), encoded(noiseImage(250), "png")));
    CoinLogoStore store(cache(), *m_client);
    const auto logo = view({&store, m_client.get()});
    logo->setContent(solana());
    // Enough pixels for the largest size at triple density.
    QCOMPARE(logo->image()->size(), QSize(96, 96));
    QImage dense(96, 96, QImage::Format_ARGB32_Premultiplied);
    dense.setDevicePixelRatio(3);
    logo->render(&dense);
    dense.setDevicePixelRatio(1);
    // Neighboring pixels of the screen differ, which a logo drawn at single density would not let them.
    int different = 0;
    for (int i = 0; i < 96; ++i)
        different += dense.pixelColor(i, 50).lightness() != dense.pixelColor(i / 3 * 3, 50).lightness() ? 1 : 0;
    QVERIFY2(different > 48, qPrintable(QString::number(different)));
}

void CoinLogoViewTest::followsThePalette()
{
    const auto logo = view({});
    logo->setContent(solana());
    QPalette palette = logo->palette();
    palette.setColor(QPalette::Highlight, Qt::red);
    logo->setPalette(palette);
    const QImage red = grabbed(*logo);
    palette.setColor(QPalette::Highlight, Qt::green);
    logo->setPalette(palette);
    QVERIFY(grabbed(*logo) != red);
}

void CoinLogoViewTest::saysWhoseLogoItIs()
{
    const auto logo = view({});
    logo->setContent(solana());
    QCOMPARE(logo->accessibleName(), QStringLiteral("SOL"));
    QCOMPARE(logo->sizeHint(), QSize(32, 32));
}

TICKWISE_WIDGET_TEST(CoinLogoViewTest)
#include "CoinLogoViewTest.moc"
