#include "catalog/logos/CoinLogoStore.h"

#include "demo/LoopbackMarket.h"
#include "doubles/LogCapture.h"
#include "doubles/LogoPictures.h"
#include "doubles/TestProgram.h"
#include "platform/network/NetworkHttpClient.h"

#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;
using enum MarketEndpoint;

namespace {

const QString transferCategory = QStringLiteral("com.pelmo.tickwise.CoinLogos");

/// Logos of this world come from its file host, over TLS.
bool isLoopbackLogo(const QString &address)
{
    return QUrl(address).scheme() == QLatin1String("https") &&
           QUrl(address).path().startsWith(QStringLiteral("/logos/"));
}

} // namespace

class CoinLogoTransferTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void downloadsOverTls();
    void stopsAtTheLimit_data();
    void stopsAtTheLimit();
    void exactlyTheLimit_data();
    void exactlyTheLimit();
    void followsARedirectWithinTheRule();
    void refusesARedirectOutOfTheRule();
    void statusWithoutALogoIsSilent();
    void brokenTransferIsOneLine();
    void strangerIsRefused();

private:
    void start(LoopbackCertificate certificate);
    CoinMetadata coin(const QString &path) const;
    void finishDownload();

    std::unique_ptr<QTemporaryDir> m_container;
    std::unique_ptr<LoopbackMarket> m_market;
    std::unique_ptr<NetworkHttpClient> m_client;
    std::unique_ptr<CoinLogoStore> m_store;
    std::unique_ptr<LogCapture> m_log;
    QByteArray m_logo = encoded(logoLikeImage(64), "png");
};

void CoinLogoTransferTest::start(LoopbackCertificate certificate)
{
    m_store.reset();
    LoopbackMarket::Options options;
    options.transport = LoopbackMarket::Transport::tls;
    options.certificate = certificate;
    m_market = std::make_unique<LoopbackMarket>(options);
    m_market->addFile(QStringLiteral("/logos/bitcoin.png"), m_logo, "image/png");
    m_market->addFile(QStringLiteral("/elsewhere/bitcoin.png"), m_logo, "image/png");
    m_client = std::make_unique<NetworkHttpClient>(LoopbackMarket::authorities());
    m_store =
        std::make_unique<CoinLogoStore>(CoinLogoCache::inContainer(m_container->path()), *m_client, isLoopbackLogo);
}

void CoinLogoTransferTest::init()
{
    m_container = std::make_unique<QTemporaryDir>();
    start(LoopbackCertificate::valid);
    m_log = std::make_unique<LogCapture>();
}

void CoinLogoTransferTest::cleanup()
{
    m_log.reset();
    m_store.reset();
    m_client.reset();
    m_market.reset();
}

CoinMetadata CoinLogoTransferTest::coin(const QString &path) const
{
    CoinMetadata coin;
    coin.id = QStringLiteral("bitcoin");
    coin.logoURL = m_market->url(files, path).toString();
    return coin;
}

/// Downloads the logo at the usual path, to the end. A second `ensureLogo` sends nothing for as long as the first is
/// under way, so that the end shows as a second request.
void CoinLogoTransferTest::finishDownload()
{
    const CoinMetadata bitcoin = coin(QStringLiteral("/logos/bitcoin.png"));
    m_store->ensureLogo(bitcoin);
    QTRY_VERIFY(m_market->requestCount(files) > 0);
    m_market->forgetRequests();
    QTRY_VERIFY((m_store->ensureLogo(bitcoin), m_market->requestCount(files) > 0));
}

void CoinLogoTransferTest::downloadsOverTls()
{
    m_store->ensureLogo(coin(QStringLiteral("/logos/bitcoin.png")));
    QTRY_VERIFY(m_store->image(QStringLiteral("bitcoin")));
    QCOMPARE(m_store->image(QStringLiteral("bitcoin"))->size(), QSize(64, 64));
    QCOMPARE(m_log->texts(transferCategory), QStringList());
}

void CoinLogoTransferTest::stopsAtTheLimit_data()
{
    QTest::addColumn<bool>("announced");
    QTest::newRow("by the announced length") << true;
    QTest::newRow("while it comes") << false;
}

void CoinLogoTransferTest::stopsAtTheLimit()
{
    QFETCH(bool, announced);
    const Fault endless = faults::oversize(1LL << 36);
    m_market->script(files, announced ? endless : faults::together({endless, faults::chunked()}));
    m_store->ensureLogo(coin(QStringLiteral("/logos/bitcoin.png")));
    QTRY_VERIFY(m_market->requestCount(files) > 0);
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    // What the buffers of both kernels' ends took in.
    QVERIFY(m_market->server(files).bodyBytesSent() < 16 * 1024 * 1024);
    QVERIFY(m_store->cachedIDs().isEmpty());
    QCOMPARE(m_log->texts(transferCategory), QStringList());
}

void CoinLogoTransferTest::exactlyTheLimit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("taken");
    QTest::newRow("524288 bytes") << 524288 << true;
    QTest::newRow("524289 bytes") << 524289 << false;
}

void CoinLogoTransferTest::exactlyTheLimit()
{
    QFETCH(int, size);
    QFETCH(bool, taken);
    m_market->addFile(QStringLiteral("/logos/bitcoin.png"), paddedTo(size, m_logo), "image/png");
    if (taken) {
        m_store->ensureLogo(coin(QStringLiteral("/logos/bitcoin.png")));
        QTRY_COMPARE(m_store->cachedIDs(), QSet<QString>{QStringLiteral("bitcoin")});
    } else {
        finishDownload();
        QVERIFY(m_store->cachedIDs().isEmpty());
    }
    QCOMPARE(m_log->texts(transferCategory), QStringList());
}

void CoinLogoTransferTest::followsARedirectWithinTheRule()
{
    m_market->script(files, faults::redirect(m_market->url(files, QStringLiteral("/logos/bitcoin.png"))));
    m_store->ensureLogo(coin(QStringLiteral("/logos/old.png")));
    QTRY_COMPARE(m_store->cachedIDs(), QSet<QString>{QStringLiteral("bitcoin")});
    QCOMPARE(m_market->requestCount(files), 2);
}

void CoinLogoTransferTest::refusesARedirectOutOfTheRule()
{
    m_market->script(files, faults::redirect(m_market->url(files, QStringLiteral("/elsewhere/bitcoin.png"))));
    m_store->ensureLogo(coin(QStringLiteral("/logos/old.png")));
    QTRY_COMPARE(m_log->texts(transferCategory).size(), 1);
    QVERIFY(
        m_log->texts(transferCategory).front().startsWith(QStringLiteral("Logo download failed: redirect refused")));
    QCOMPARE(m_market->requestCount(files), 1);
    QVERIFY(m_store->cachedIDs().isEmpty());
}

void CoinLogoTransferTest::statusWithoutALogoIsSilent()
{
    m_market->script(files, faults::status(404, m_logo), LoopbackMarket::Repeat::always);
    finishDownload();
    QVERIFY(m_store->cachedIDs().isEmpty());
    QCOMPARE(m_log->texts(transferCategory), QStringList());
}

void CoinLogoTransferTest::brokenTransferIsOneLine()
{
    m_market->script(files, faults::truncateAfter(100), LoopbackMarket::Repeat::always);
    m_store->ensureLogo(coin(QStringLiteral("/logos/bitcoin.png")));
    QTRY_COMPARE(m_log->texts(transferCategory).size(), 1);
    QVERIFY(m_log->texts(transferCategory)
                .front()
                .startsWith(QStringLiteral("Logo download failed: network connection lost")));
    QVERIFY(m_store->cachedIDs().isEmpty());
}

void CoinLogoTransferTest::strangerIsRefused()
{
    start(LoopbackCertificate::fromStranger);
    m_store->ensureLogo(coin(QStringLiteral("/logos/bitcoin.png")));
    QTRY_COMPARE(m_log->texts(transferCategory).size(), 1);
    QVERIFY(
        m_log->texts(transferCategory).front().startsWith(QStringLiteral("Logo download failed: server certificate")));
}

TICKWISE_TEST(CoinLogoTransferTest)
#include "CoinLogoTransferTest.moc"
