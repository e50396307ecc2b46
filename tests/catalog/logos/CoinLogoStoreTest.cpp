#include "catalog/logos/CoinLogoStore.h"

#include "doubles/LogCapture.h"
#include "doubles/LogoPictures.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString host = QStringLiteral("https://coin-images.coingecko.com/");
const QString category = QStringLiteral("com.pelmo.tickwise.CoinLogos");

CoinMetadata coin(const char *id)
{
    CoinMetadata coin;
    coin.id = QString::fromLatin1(id);
    coin.symbol = coin.id.toUpper();
    coin.name = coin.id;
    coin.logoURL = host + coin.id + QStringLiteral(".png");
    coin.listed = true;
    return coin;
}

QSet<QString> ids(std::initializer_list<const char *> texts)
{
    QSet<QString> ids;
    for (const char *text : texts)
        ids.insert(QString::fromLatin1(text));
    return ids;
}

const QByteArray logo = encoded(logoLikeImage(32), "png");

} // namespace

class CoinLogoStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void asksForTheLogoAsAgreed();
    void redirectsStayOnTheLogoHosts_data();
    void redirectsStayOnTheLogoHosts();
    void keepsADownload();
    void startsWithWhatIsOnDisk();
    void shippedAssetNeverStartsADownload();
    void cachedLogoIsNotDownloadedAgain();
    void oneRequestForTwoCalls();
    void unusableAddressNeverStartsADownload_data();
    void unusableAddressNeverStartsADownload();
    void strangeIdNeverStartsADownload();
    void dropsWhatIsNoLogo_data();
    void dropsWhatIsNoLogo();
    void acceptsExactlyTheLargestSize();
    void oversizedTransferIsSilent();
    void transportErrorIsOneLine_data();
    void transportErrorIsOneLine();
    void failedDownloadIsTriedByTheNextCall();
    void unknownIdReadsNoFile();
    void deletedFileIsServedFromMemory();
    void fileDeletedBeforeFirstUseGivesNothing();
    void damagedFileGivesNothing();
    void withoutAContainer();
    void writeFailureIsOneLine();
    void syncPrunesAndDownloads();
    void syncForgetsShippedAndRemovedCoins();
    void syncDeletesFilesOfAnyName();
    void syncIgnoresAFailedDelete();
    void syncWithoutAChangePublishesNothing();
    void publishesOncePerLogo();
    void destroyingTheStoreCancels();

private:
    CoinLogoStore &store();
    void put(const QString &id, const QByteArray &bytes);
    QString file(const QString &id) const { return m_container->filePath(QStringLiteral("CoinLogos/%1.img").arg(id)); }
    void finishDownloads() { QTRY_COMPARE(m_client->open(), 0); }

    std::unique_ptr<QTemporaryDir> m_container;
    std::unique_ptr<ScriptedHttpClient> m_client;
    std::unique_ptr<CoinLogoStore> m_store;
    std::unique_ptr<LogCapture> m_log;
};

void CoinLogoStoreTest::init()
{
    m_container = std::make_unique<QTemporaryDir>();
    m_client = std::make_unique<ScriptedHttpClient>();
    m_log = std::make_unique<LogCapture>();
}

void CoinLogoStoreTest::cleanup()
{
    m_store.reset();
    m_client.reset();
    m_log.reset();
}

CoinLogoStore &CoinLogoStoreTest::store()
{
    if (!m_store)
        m_store = std::make_unique<CoinLogoStore>(CoinLogoCache::inContainer(m_container->path()), *m_client);
    return *m_store;
}

void CoinLogoStoreTest::put(const QString &id, const QByteArray &bytes)
{
    QVERIFY(CoinLogoCache::inContainer(m_container->path()).write(id, bytes));
}

void CoinLogoStoreTest::asksForTheLogoAsAgreed()
{
    m_client->hold(host);
    store().ensureLogo(coin("bitcoin"));
    QCOMPARE(m_client->requests().size(), std::size_t(1));
    const HttpRequest &request = m_client->requests().front();
    QCOMPARE(request.url, QUrl(QStringLiteral("https://coin-images.coingecko.com/bitcoin.png")));
    QCOMPARE(request.timeout, std::chrono::milliseconds(15000));
    QCOMPARE(request.maximumBytes, qint64(524288));
}

void CoinLogoStoreTest::redirectsStayOnTheLogoHosts_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("same host") << QStringLiteral("https://coin-images.coingecko.com/b.png") << true;
    QTest::newRow("other logo host") << QStringLiteral("https://assets.coingecko.com/b.png") << true;
    QTest::newRow("without TLS") << QStringLiteral("http://assets.coingecko.com/b.png") << false;
    QTest::newRow("another host") << QStringLiteral("https://example.com/b.png") << false;
    QTest::newRow("with a user") << QStringLiteral("https://u@assets.coingecko.com/b.png") << true;
}

void CoinLogoStoreTest::redirectsStayOnTheLogoHosts()
{
    QFETCH(QString, target);
    QFETCH(bool, allowed);
    m_client->hold(host);
    store().ensureLogo(coin("bitcoin"));
    QCOMPARE(m_client->requests().front().mayRedirectTo(QUrl(target)), allowed);
}

void CoinLogoStoreTest::keepsADownload()
{
    m_client->answer(host, 200, logo);
    store().ensureLogo(coin("bitcoin"));
    QVERIFY(store().cachedIDs().isEmpty());
    QTRY_COMPARE(store().cachedIDs(), ids({"bitcoin"}));
    QFile stored(file(QStringLiteral("bitcoin")));
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QCOMPARE(stored.readAll(), logo);
    // It is in memory already.
    QVERIFY(stored.remove());
    QCOMPARE(store().image(QStringLiteral("bitcoin"))->size(), QSize(32, 32));
    QVERIFY(m_log->lines().empty());
}

void CoinLogoStoreTest::startsWithWhatIsOnDisk()
{
    put(QStringLiteral("bitcoin"), logo);
    put(QStringLiteral("solana"), logo);
    QCOMPARE(store().cachedIDs(), ids({"bitcoin", "solana"}));
    QCOMPARE(store().image(QStringLiteral("solana"))->size(), QSize(32, 32));
}

void CoinLogoStoreTest::shippedAssetNeverStartsADownload()
{
    CoinMetadata shipped = coin("bitcoin");
    shipped.logoAssetName = QStringLiteral("coin-bitcoin");
    store().ensureLogo(shipped);
    store().sync({shipped});
    QVERIFY(m_client->requests().empty());
}

void CoinLogoStoreTest::cachedLogoIsNotDownloadedAgain()
{
    put(QStringLiteral("bitcoin"), logo);
    store().ensureLogo(coin("bitcoin"));
    QVERIFY(m_client->requests().empty());
}

void CoinLogoStoreTest::oneRequestForTwoCalls()
{
    m_client->answer(host, 200, logo);
    store().ensureLogo(coin("bitcoin"));
    store().ensureLogo(coin("bitcoin"));
    store().ensureLogo(coin("solana"));
    QCOMPARE(m_client->requests().size(), std::size_t(2));
    QTRY_COMPARE(store().cachedIDs(), ids({"bitcoin", "solana"}));
    QCOMPARE(m_client->requests().size(), std::size_t(2));
}

void CoinLogoStoreTest::unusableAddressNeverStartsADownload_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("scheme") << QStringLiteral("http://coin-images.coingecko.com/bitcoin.png");
    QTest::newRow("host") << QStringLiteral("https://example.com/bitcoin.png");
    QTest::newRow("no host") << QStringLiteral("https:///bitcoin.png");
    QTest::newRow("no address") << QStringLiteral("bitcoin");
    QTest::newRow("empty") << QString();
}

void CoinLogoStoreTest::unusableAddressNeverStartsADownload()
{
    QFETCH(QString, address);
    CoinMetadata bitcoin = coin("bitcoin");
    bitcoin.logoURL = address;
    store().ensureLogo(bitcoin);
    bitcoin.logoURL.reset();
    store().ensureLogo(bitcoin);
    QVERIFY(m_client->requests().empty());
    QVERIFY(m_log->lines().empty());
}

void CoinLogoStoreTest::strangeIdNeverStartsADownload()
{
    CoinMetadata strange = coin("../bitcoin");
    strange.logoURL = host + QStringLiteral("bitcoin.png");
    store().ensureLogo(strange);
    QVERIFY(m_client->requests().empty());
}

void CoinLogoStoreTest::dropsWhatIsNoLogo_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("404") << 404 << logo;
    QTest::newRow("204") << 204 << logo;
    QTest::newRow("201") << 201 << logo;
    QTest::newRow("500") << 500 << QByteArray("oops");
    QTest::newRow("empty body") << 200 << QByteArray();
    QTest::newRow("no picture") << 200 << QByteArray("<html/>");
    QTest::newRow("drawing") << 200
                             << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>");
    QTest::newRow("truncated") << 200 << logo.chopped(20);
    QTest::newRow("524289 bytes") << 200 << paddedTo(524289, logo);
}

void CoinLogoStoreTest::dropsWhatIsNoLogo()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    m_client->answer(host, status, body);
    store().ensureLogo(coin("bitcoin"));
    finishDownloads();
    QVERIFY(store().cachedIDs().isEmpty());
    QVERIFY(!QFile::exists(file(QStringLiteral("bitcoin"))));
    QVERIFY(m_log->lines().empty());
}

void CoinLogoStoreTest::acceptsExactlyTheLargestSize()
{
    m_client->answer(host, 200, paddedTo(524288, logo));
    store().ensureLogo(coin("bitcoin"));
    QTRY_COMPARE(store().cachedIDs(), ids({"bitcoin"}));
    QCOMPARE(QFileInfo(file(QStringLiteral("bitcoin"))).size(), qint64(524288));
}

void CoinLogoStoreTest::oversizedTransferIsSilent()
{
    m_client->fail(host, UrlLoadingError{UrlErrorCode::dataLengthExceedsMaximum});
    store().ensureLogo(coin("bitcoin"));
    finishDownloads();
    QVERIFY(store().cachedIDs().isEmpty());
    QVERIFY(m_log->lines().empty());
}

void CoinLogoStoreTest::transportErrorIsOneLine_data()
{
    QTest::addColumn<Error>("error");
    QTest::newRow("time-out") << Error(UrlLoadingError{UrlErrorCode::timedOut});
    QTest::newRow("no host") << Error(UrlLoadingError{UrlErrorCode::cannotFindHost, QStringLiteral("Host not found")});
    QTest::newRow("redirect") << Error(UrlLoadingError{UrlErrorCode::redirectRefused});
}

void CoinLogoStoreTest::transportErrorIsOneLine()
{
    QFETCH(Error, error);
    m_client->fail(host, error);
    store().ensureLogo(coin("bitcoin"));
    finishDownloads();
    QCOMPARE(m_log->texts(category), QStringList{QStringLiteral("Logo download failed: ") + description(error)});
    QCOMPARE(m_log->lines().front().type, QtWarningMsg);
    QVERIFY(store().cachedIDs().isEmpty());
}

void CoinLogoStoreTest::failedDownloadIsTriedByTheNextCall()
{
    m_client->fail(host, UrlLoadingError{UrlErrorCode::timedOut});
    m_client->answer(host, 404, {});
    m_client->answer(host, 200, logo);
    for (std::size_t attempt = 1; attempt <= 3; ++attempt) {
        store().sync({coin("bitcoin")});
        QCOMPARE(m_client->requests().size(), attempt);
        finishDownloads();
    }
    QTRY_COMPARE(store().cachedIDs(), ids({"bitcoin"}));
}

void CoinLogoStoreTest::unknownIdReadsNoFile()
{
    store();
    put(QStringLiteral("bitcoin"), logo);
    QCOMPARE(store().image(QStringLiteral("bitcoin")), std::nullopt);
}

void CoinLogoStoreTest::deletedFileIsServedFromMemory()
{
    put(QStringLiteral("bitcoin"), logo);
    QVERIFY(store().image(QStringLiteral("bitcoin")));
    QVERIFY(QFile::remove(file(QStringLiteral("bitcoin"))));
    QVERIFY(store().image(QStringLiteral("bitcoin")));
}

void CoinLogoStoreTest::fileDeletedBeforeFirstUseGivesNothing()
{
    put(QStringLiteral("bitcoin"), logo);
    QCOMPARE(store().cachedIDs(), ids({"bitcoin"}));
    QVERIFY(QFile::remove(file(QStringLiteral("bitcoin"))));
    QCOMPARE(store().image(QStringLiteral("bitcoin")), std::nullopt);
}

void CoinLogoStoreTest::damagedFileGivesNothing()
{
    put(QStringLiteral("bitcoin"), logo.chopped(20));
    QCOMPARE(store().image(QStringLiteral("bitcoin")), std::nullopt);
}

void CoinLogoStoreTest::withoutAContainer()
{
    m_client->answer(host, 200, logo);
    m_store = std::make_unique<CoinLogoStore>(CoinLogoCache(), *m_client);
    QVERIFY(store().cachedIDs().isEmpty());
    store().ensureLogo(coin("bitcoin"));
    QTRY_COMPARE(m_log->texts(category),
                 QStringList{QStringLiteral("Logo cache write failed: CoinLogos: no container")});
    QVERIFY(store().cachedIDs().isEmpty());
    QCOMPARE(store().image(QStringLiteral("bitcoin")), std::nullopt);
}

void CoinLogoStoreTest::writeFailureIsOneLine()
{
    QVERIFY(QDir().mkpath(file(QStringLiteral("solana")) + QStringLiteral("/folder")));
    m_client->answer(host, 200, logo);
    store().sync({});
    store().ensureLogo(coin("solana"));
    QTRY_COMPARE(m_log->texts(category).size(), 1);
    QVERIFY(m_log->texts(category).front().startsWith(QStringLiteral("Logo cache write failed: ") +
                                                      file(QStringLiteral("solana"))));
    QCOMPARE(m_log->lines().front().type, QtWarningMsg);
    QVERIFY(store().cachedIDs().isEmpty());
    QCOMPARE(store().image(QStringLiteral("solana")), std::nullopt);
}

void CoinLogoStoreTest::syncPrunesAndDownloads()
{
    put(QStringLiteral("bitcoin"), logo);
    put(QStringLiteral("gone"), logo);
    m_client->answer(host, 200, logo);
    QVERIFY(store().image(QStringLiteral("gone")));
    store().sync({coin("solana"), coin("bitcoin"), coin("tron")});
    QCOMPARE(store().cachedIDs(), ids({"bitcoin"}));
    QCOMPARE(store().image(QStringLiteral("gone")), std::nullopt);
    QVERIFY(!QFile::exists(file(QStringLiteral("gone"))));
    QVERIFY(QFile::exists(file(QStringLiteral("bitcoin"))));
    const std::vector<QUrl> expected{QUrl(host + QStringLiteral("solana.png")),
                                     QUrl(host + QStringLiteral("tron.png"))};
    QCOMPARE(m_client->urls(), expected);
    QTRY_COMPARE(store().cachedIDs(), ids({"bitcoin", "solana", "tron"}));
}

void CoinLogoStoreTest::syncForgetsShippedAndRemovedCoins()
{
    put(QStringLiteral("bitcoin"), logo);
    CoinMetadata shipped = coin("bitcoin");
    shipped.logoAssetName = QStringLiteral("coin-bitcoin");
    store().sync({shipped});
    QVERIFY(store().cachedIDs().isEmpty());
    QVERIFY(!QFile::exists(file(QStringLiteral("bitcoin"))));
}

void CoinLogoStoreTest::syncDeletesFilesOfAnyName()
{
    put(QStringLiteral("bitcoin"), logo);
    store();
    const QStringList strange{QStringLiteral("Not a coin"), QStringLiteral("a.b"),   QStringLiteral("-x"), QString(),
                              QString(100, u'a'),           QStringLiteral("solana")};
    for (const QString &name : strange) {
        QFile stranger(file(name));
        QVERIFY(stranger.open(QIODevice::WriteOnly));
    }
    QVERIFY(QFile::link(QStringLiteral("nowhere"), file(QStringLiteral("link"))));
    QFile other(m_container->filePath(QStringLiteral("CoinLogos/readme.txt")));
    QVERIFY(other.open(QIODevice::WriteOnly));
    store().sync({coin("bitcoin")});
    const auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QCOMPARE(QDir(m_container->filePath(QStringLiteral("CoinLogos"))).entryList(everything, QDir::Name),
             (QStringList{QStringLiteral("bitcoin.img"), QStringLiteral("readme.txt")}));
    QCOMPARE(store().cachedIDs(), ids({"bitcoin"}));
}

void CoinLogoStoreTest::syncIgnoresAFailedDelete()
{
    QVERIFY(QDir().mkpath(file(QStringLiteral("gone")) + QStringLiteral("/folder")));
    QCOMPARE(store().cachedIDs(), ids({"gone"}));
    store().sync({});
    QVERIFY(store().cachedIDs().isEmpty());
    QVERIFY(m_log->lines().empty());
}

void CoinLogoStoreTest::syncWithoutAChangePublishesNothing()
{
    put(QStringLiteral("bitcoin"), logo);
    QSignalSpy changed(&store(), &CoinLogoStore::cachedIDsChanged);
    store().sync({coin("bitcoin")});
    QCOMPARE(changed.size(), 0);
}

void CoinLogoStoreTest::publishesOncePerLogo()
{
    m_client->answer(host, 200, logo);
    QSignalSpy changed(&store(), &CoinLogoStore::cachedIDsChanged);
    bool imageThere = false;
    connect(&store(), &CoinLogoStore::cachedIDsChanged, this,
            [&] { imageThere = store().image(QStringLiteral("bitcoin")).has_value(); });
    store().ensureLogo(coin("bitcoin"));
    QTRY_COMPARE(changed.size(), 1);
    QVERIFY(imageThere);
    finishDownloads();
    QCOMPARE(changed.size(), 1);
}

void CoinLogoStoreTest::destroyingTheStoreCancels()
{
    m_client->answer(host, 200, logo);
    store().ensureLogo(coin("bitcoin"));
    QCOMPARE(m_client->open(), 1);
    m_store.reset();
    QCOMPARE(m_client->open(), 0);
    QCoreApplication::processEvents();
    QVERIFY(!QFile::exists(file(QStringLiteral("bitcoin"))));
}

TICKWISE_TEST(CoinLogoStoreTest)
#include "CoinLogoStoreTest.moc"
