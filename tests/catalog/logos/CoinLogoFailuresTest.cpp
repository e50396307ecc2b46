#include "catalog/logos/CoinLogoStore.h"

#include "doubles/LogCapture.h"
#include "doubles/LogoPictures.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString logoServer = QStringLiteral("https://assets.coingecko.com/");
const QString bitcoinID = QStringLiteral("bitcoin");

CoinMetadata coinWithLogo()
{
    CoinMetadata coin;
    coin.id = bitcoinID;
    coin.logoURL = logoServer + QStringLiteral("bitcoin.png");
    return coin;
}

const QByteArray goodLogo = encoded(logoLikeImage(32), "png");

} // namespace

/// What the store does with logos that do not come or are damaged.
class CoinLogoFailuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aSeenCoinIsNotTriedAgain_data();
    void aSeenCoinIsNotTriedAgain();
    void aSeenCoinIsTriedAgainLater();
    void syncTriesAgain();
    void aNeededLogoIsTriedAgainWhenFailuresAreForgotten();
    void aNeededLogoThatIsDamagedIsFetchedAnew();
    void aDamagedFileIsFetchedAnew();
    void aFileDamagedForGoodIsFetchedOnce();
    void aMissingFileIsFetchedAnew();
    void nothingChangesWhileImagesAreRead();
    void aDownloadMeanwhileStays();

private:
    CoinLogoStore &store();
    void putFile(const QByteArray &bytes) { QVERIFY(cache().write(bitcoinID, bytes)); }
    CoinLogoCache cache() const { return CoinLogoCache::inContainer(m_container->path()); }
    /// What a repaint of the coin does, and everything that follows.
    void paint();

    std::unique_ptr<QTemporaryDir> m_container;
    std::unique_ptr<ScriptedHttpClient> m_client;
    std::unique_ptr<CoinLogoStore> m_store;
    std::unique_ptr<LogCapture> m_log;
};

void CoinLogoFailuresTest::init()
{
    m_container = std::make_unique<QTemporaryDir>();
    m_client = std::make_unique<ScriptedHttpClient>();
    m_log = std::make_unique<LogCapture>();
}

void CoinLogoFailuresTest::cleanup()
{
    m_store.reset();
    m_client.reset();
    m_log.reset();
}

CoinLogoStore &CoinLogoFailuresTest::store()
{
    if (!m_store)
        m_store = std::make_unique<CoinLogoStore>(cache(), *m_client);
    return *m_store;
}

void CoinLogoFailuresTest::paint()
{
    store().image(bitcoinID);
    store().ensureSeenLogo(coinWithLogo());
    QCoreApplication::processEvents();
    QTRY_COMPARE(m_client->open(), 0);
}

void CoinLogoFailuresTest::aSeenCoinIsNotTriedAgain_data()
{
    QTest::addColumn<int>("status"); // 0: a transport error
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("not found") << 404 << QByteArray();
    QTest::newRow("no picture") << 200 << QByteArray("<html/>");
    QTest::newRow("offline") << 0 << QByteArray();
}

void CoinLogoFailuresTest::aSeenCoinIsNotTriedAgain()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    if (status > 0)
        m_client->answer(logoServer, status, body);
    else
        m_client->fail(logoServer, UrlLoadingError{UrlErrorCode::notConnectedToInternet});
    for (int i = 0; i < 3; ++i)
        paint();
    QCOMPARE(m_client->requests().size(), std::size_t(1));
    QVERIFY(m_log->lines().size() <= 1);
}

void CoinLogoFailuresTest::aSeenCoinIsTriedAgainLater()
{
    m_client->answer(logoServer, 404, {});
    m_client->answer(logoServer, 200, goodLogo);
    paint();
    store().forgetFailures();
    paint();
    QVERIFY(store().image(bitcoinID));
}

void CoinLogoFailuresTest::syncTriesAgain()
{
    m_client->answer(logoServer, 404, {});
    paint();
    store().sync({coinWithLogo()});
    QCOMPARE(m_client->requests().size(), std::size_t(2));
    QTRY_COMPARE(m_client->open(), 0);
    paint();
    QCOMPARE(m_client->requests().size(), std::size_t(2));
}

void CoinLogoFailuresTest::aNeededLogoIsTriedAgainWhenFailuresAreForgotten()
{
    m_client->fail(logoServer, UrlLoadingError{UrlErrorCode::notConnectedToInternet});
    store().sync({coinWithLogo()});
    QTRY_COMPARE(m_client->open(), 0);
    m_client->clear(logoServer);
    m_client->answer(logoServer, 200, goodLogo);
    store().forgetFailures();
    QTRY_COMPARE(m_client->open(), 0);
    QVERIFY(store().image(bitcoinID));
}

void CoinLogoFailuresTest::aNeededLogoThatIsDamagedIsFetchedAnew()
{
    putFile(goodLogo.chopped(20));
    m_client->answer(logoServer, 200, goodLogo);
    store().sync({coinWithLogo()});
    QVERIFY(!store().image(bitcoinID));
    QTRY_VERIFY(store().image(bitcoinID));
    QCOMPARE(m_client->requests().size(), std::size_t(1));
}

void CoinLogoFailuresTest::aDamagedFileIsFetchedAnew()
{
    putFile(goodLogo.chopped(20));
    m_client->answer(logoServer, 200, goodLogo);
    paint();
    QVERIFY(!QFile::exists(*cache().path(bitcoinID)));
    QCOMPARE(store().cachedIDs(), QSet<QString>());
    paint();
    QVERIFY(store().image(bitcoinID));
    QCOMPARE(cache().read(bitcoinID), goodLogo);
}

void CoinLogoFailuresTest::aFileDamagedForGoodIsFetchedOnce()
{
    putFile(goodLogo.chopped(20));
    m_client->answer(logoServer, 200, goodLogo.chopped(20));
    for (int i = 0; i < 4; ++i)
        paint();
    QCOMPARE(m_client->requests().size(), std::size_t(1));
    QVERIFY(!QFile::exists(*cache().path(bitcoinID)));
}

void CoinLogoFailuresTest::aMissingFileIsFetchedAnew()
{
    putFile(goodLogo);
    store();
    QVERIFY(QFile::remove(*cache().path(bitcoinID)));
    m_client->answer(logoServer, 200, goodLogo);
    paint();
    paint();
    QVERIFY(store().image(bitcoinID));
}

void CoinLogoFailuresTest::nothingChangesWhileImagesAreRead()
{
    putFile(goodLogo.chopped(20));
    QSignalSpy changed(&store(), &CoinLogoStore::cachedIDsChanged);
    store().image(bitcoinID);
    store().image(bitcoinID);
    QCOMPARE(changed.size(), 0);
    QTRY_COMPARE(changed.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(changed.size(), 1);
}

void CoinLogoFailuresTest::aDownloadMeanwhileStays()
{
    putFile(goodLogo.chopped(20));
    m_client->answer(logoServer, 200, goodLogo);
    store().image(bitcoinID);
    // The watchlist loses the coin and gets it again before the event loop discards the file.
    store().sync({});
    store().sync({coinWithLogo()});
    QTRY_COMPARE(store().cachedIDs(), QSet<QString>{bitcoinID});
    QCoreApplication::processEvents();
    QVERIFY(store().image(bitcoinID));
    QVERIFY(QFile::exists(*cache().path(bitcoinID)));
}

TICKWISE_TEST(CoinLogoFailuresTest)
#include "CoinLogoFailuresTest.moc"
