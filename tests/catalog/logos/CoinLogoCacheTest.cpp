#include "catalog/logos/CoinLogoCache.h"

#include "catalog/CoinId.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;

class CoinLogoCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void liesInTheContainer();
    void writesAndReadsBytesAsTheyCame();
    void makesTheDirectories();
    void listsImageFiles();
    void missingOrUnreadableDirectoryIsEmpty();
    void withoutAContainer();
    void replacesTheFileAsAWhole();
    void readerKeepsTheOldFileWhileANewOneIsWritten();
    void writeFailureIsAnError();
    void removeIgnoresFailures();
    void removesOnlyInsideItsDirectory();
    void readsNothingThatIsTooLarge();
    void onlyCoinIdsBecomeFileNames_data();
    void onlyCoinIdsBecomeFileNames();

private:
    void put(const QString &name, const QByteArray &bytes);

    std::unique_ptr<QTemporaryDir> m_container;
    CoinLogoCache m_cache;
};

void CoinLogoCacheTest::init()
{
    m_container = std::make_unique<QTemporaryDir>();
    m_cache = CoinLogoCache::inContainer(m_container->path());
}

void CoinLogoCacheTest::put(const QString &name, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(*m_cache.directory));
    QFile file(*m_cache.directory + QLatin1Char('/') + name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

void CoinLogoCacheTest::liesInTheContainer()
{
    QCOMPARE(*m_cache.directory, m_container->filePath(QStringLiteral("CoinLogos")));
    QCOMPARE(*m_cache.path(QStringLiteral("bitcoin")), m_container->filePath(QStringLiteral("CoinLogos/bitcoin.img")));
}

void CoinLogoCacheTest::writesAndReadsBytesAsTheyCame()
{
    const QByteArray bytes("\0any\xff bytes", 11);
    QVERIFY(m_cache.write(QStringLiteral("bitcoin"), bytes));
    QCOMPARE(m_cache.read(QStringLiteral("bitcoin")), std::optional(bytes));
    QCOMPARE(m_cache.read(QStringLiteral("ethereum")), std::nullopt);
}

void CoinLogoCacheTest::makesTheDirectories()
{
    m_cache.directory = m_container->filePath(QStringLiteral("a/b/CoinLogos"));
    QVERIFY(m_cache.write(QStringLiteral("bitcoin"), "x"));
    QCOMPARE(m_cache.cachedIDs(), QSet<QString>{QStringLiteral("bitcoin")});
}

void CoinLogoCacheTest::listsImageFiles()
{
    put(QStringLiteral("bitcoin.img"), "1");
    put(QStringLiteral("avalanche-2.img"), "2");
    put(QStringLiteral("ethereum.png"), "3");
    put(QStringLiteral("solana.img.part"), "4");
    put(QStringLiteral("a.img.img"), "5");
    const QSet<QString> expected{QStringLiteral("bitcoin"), QStringLiteral("avalanche-2"), QStringLiteral("a.img")};
    QCOMPARE(m_cache.cachedIDs(), expected);
}

void CoinLogoCacheTest::missingOrUnreadableDirectoryIsEmpty()
{
    QCOMPARE(m_cache.cachedIDs(), QSet<QString>());
    QFile file(*m_cache.directory);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(m_cache.cachedIDs(), QSet<QString>());
}

void CoinLogoCacheTest::withoutAContainer()
{
    const CoinLogoCache cache = CoinLogoCache::inContainer(std::nullopt);
    QVERIFY(!cache.directory);
    QCOMPARE(cache.cachedIDs(), QSet<QString>());
    QCOMPARE(cache.path(QStringLiteral("bitcoin")), std::nullopt);
    QCOMPARE(cache.read(QStringLiteral("bitcoin")), std::nullopt);
    const Result<void> written = cache.write(QStringLiteral("bitcoin"), "x");
    QVERIFY(!written);
    QCOMPARE(description(written.error()), QStringLiteral("CoinLogos: no container"));
}

void CoinLogoCacheTest::replacesTheFileAsAWhole()
{
    QVERIFY(m_cache.write(QStringLiteral("bitcoin"), "a longer text"));
    QVERIFY(m_cache.write(QStringLiteral("bitcoin"), "short"));
    QCOMPARE(m_cache.read(QStringLiteral("bitcoin")), std::optional(QByteArray("short")));
    QCOMPARE(QDir(*m_cache.directory).entryList(QDir::Files | QDir::Hidden),
             QStringList{QStringLiteral("bitcoin.img")});
}

void CoinLogoCacheTest::readerKeepsTheOldFileWhileANewOneIsWritten()
{
    QVERIFY(m_cache.write(QStringLiteral("bitcoin"), "a longer text"));
    QFile reader(*m_cache.path(QStringLiteral("bitcoin")));
    QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QCOMPARE(reader.read(2), QByteArray("a "));
    QVERIFY(m_cache.write(QStringLiteral("bitcoin"), "short"));
    QCOMPARE(reader.readAll(), QByteArray("longer text"));
}

void CoinLogoCacheTest::writeFailureIsAnError()
{
    QVERIFY(QDir().mkpath(*m_cache.path(QStringLiteral("bitcoin"))));
    const Result<void> written = m_cache.write(QStringLiteral("bitcoin"), "x");
    QVERIFY(!written);
    const auto &error = std::get<FileError>(written.error());
    QCOMPARE(error.path, *m_cache.path(QStringLiteral("bitcoin")));
    QVERIFY(!error.text.isEmpty());

    put(QStringLiteral("file"), "x");
    m_cache.directory = *m_cache.directory + QStringLiteral("/file/below");
    QVERIFY(!m_cache.write(QStringLiteral("bitcoin"), "x"));
}

void CoinLogoCacheTest::removeIgnoresFailures()
{
    put(QStringLiteral("bitcoin.img"), "x");
    m_cache.remove(QStringLiteral("bitcoin"));
    QCOMPARE(m_cache.cachedIDs(), QSet<QString>());
    m_cache.remove(QStringLiteral("bitcoin"));
    QCOMPARE(m_cache.cachedIDs(), QSet<QString>());
}

void CoinLogoCacheTest::removesOnlyInsideItsDirectory()
{
    QFile outside(m_container->filePath(QStringLiteral("outside.img")));
    QVERIFY(outside.open(QIODevice::WriteOnly));
    put(QStringLiteral("No Coin.img"), "x");
    m_cache.remove(QStringLiteral("../outside"));
    m_cache.remove(QStringLiteral("No Coin"));
    CoinLogoCache().remove(QStringLiteral("bitcoin"));
    QVERIFY(outside.exists());
    QCOMPARE(m_cache.cachedIDs(), QSet<QString>());
}

void CoinLogoCacheTest::readsNothingThatIsTooLarge()
{
    put(QStringLiteral("bitcoin.img"), QByteArray(524288, 'x'));
    put(QStringLiteral("ethereum.img"), QByteArray(524289, 'x'));
    QCOMPARE(m_cache.read(QStringLiteral("bitcoin")).value_or(QByteArray()).size(), qsizetype(524288));
    QCOMPARE(m_cache.read(QStringLiteral("ethereum")), std::nullopt);
}

void CoinLogoCacheTest::onlyCoinIdsBecomeFileNames_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<bool>("valid");
    const auto row = [](const char *name, const QString &id, bool valid) { QTest::newRow(name) << id << valid; };
    row("usual", QStringLiteral("bitcoin"), true);
    row("one character", QStringLiteral("a"), true);
    row("digit and hyphens", QStringLiteral("0x-protocol-"), true);
    row("80 characters", QString(80, QLatin1Char('a')), true);
    row("81 characters", QString(81, QLatin1Char('a')), false);
    row("empty", QString(), false);
    row("leading hyphen", QStringLiteral("-a"), false);
    row("parent", QStringLiteral(".."), false);
    row("path", QStringLiteral("../bitcoin"), false);
    row("absolute", QStringLiteral("/tmp/bitcoin"), false);
    row("separator inside", QStringLiteral("a/b"), false);
    row("dot", QStringLiteral("a.b"), false);
    row("upper case", QStringLiteral("Bitcoin"), false);
    row("other letter", QStringLiteral("b\u00edtcoin"), false);
    row("null character", QStringLiteral("bit") + QChar(0) + QStringLiteral("coin"), false);
    row("line break", QStringLiteral("bitcoin\n"), false);
}

void CoinLogoCacheTest::onlyCoinIdsBecomeFileNames()
{
    QFETCH(QString, id);
    QFETCH(bool, valid);
    QCOMPARE(isCoinId(id), valid);
    QCOMPARE(m_cache.path(id).has_value(), valid);
    QCOMPARE(m_cache.write(id, "x").has_value(), valid);
    QCOMPARE(m_cache.read(id).has_value(), valid);
}

TICKWISE_TEST(CoinLogoCacheTest)
#include "CoinLogoCacheTest.moc"
