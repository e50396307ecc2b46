#include "ui/updates/UpdateDownload.h"

#include "UpdateWorld.h"
#include "doubles/TestProgram.h"

#include <QSignalSpy>

#include <csignal>
#include <sys/resource.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

using DownloadResult = tl::expected<QString, UpdateFailure>;

/// Lets files of this process grow to so many bytes while it lives.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit lowered{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &lowered);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
};

/// One download in a world.
struct Attempt
{
    explicit Attempt(UpdateWorld &world, const Release &release = {})
    {
        UpdateDownloadOrder order{world.itemOf(release), world.configuration.publicKey,
                                  world.configuration.downloadDirectory,
                                  [this](std::optional<int> percent) { percents.push_back(percent.value_or(-1)); },
                                  [this](const DownloadResult &outcome) {
                                      result = outcome;
                                      ++calls;
                                  }};
        subscription = Subscription(std::make_unique<UpdateDownload>(world.http, std::move(order)));
    }

    std::optional<UpdateFailureKind> failure() const
    {
        return result && !*result ? std::optional(result->error().kind) : std::nullopt;
    }

    std::optional<DownloadResult> result;
    int calls = 0;
    std::vector<int> percents;
    Subscription subscription;
};

} // namespace

class UpdateDownloadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAVerifiedPackage();
    void reportsRisingPercentages();
    void aFeedMayNotTellTheLength();
    void refusesAnotherKey();
    void refusesATamperedPackage();
    void refusesATruncatedPackage();
    void refusesALyingLength_data();
    void refusesALyingLength();
    void refusesHugePackagesUnread();
    void refusesOtherAnswers_data();
    void refusesOtherAnswers();
    void followsARedirectToAnotherHost();
    void staysBehindHttps();
    void takesThePackageAsItIsSent();
    void anOddName();
    void nothingStaysOfADroppedDownload();
    void aFullDisk();
    void aFolderThatCannotBeMade();
    void removesEarlierDownloads();
    void leavesFilesThatAreNotOurs();
    void refusesALinkedFolder();
    void packageFileNames_data();
    void packageFileNames();
};

void UpdateDownloadTest::keepsAVerifiedPackage()
{
    UpdateWorld world;
    world.publish({{}});
    Attempt attempt(world);
    QVERIFY(!attempt.result);
    QTRY_VERIFY(attempt.result);
    QVERIFY(attempt.result->has_value());
    const QString path = **attempt.result;
    QCOMPARE(world.downloads(), QStringList{path});
    QVERIFY(path.endsWith(QStringLiteral("/tickwise_1.1_amd64.deb")));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), world.package);
    QCOMPARE(file.permissions() & ~(QFile::ReadUser | QFile::WriteUser), QFile::ReadOwner | QFile::WriteOwner);
    attempt.subscription.cancel();
    QVERIFY(QFile::exists(path));
    QCOMPARE(attempt.calls, 1);
}

void UpdateDownloadTest::reportsRisingPercentages()
{
    UpdateWorld world;
    world.package = QByteArray(8 * 1024 * 1024, 'x');
    world.publish({{}});
    Attempt attempt(world);
    QTRY_VERIFY(attempt.result && attempt.result->has_value());
    QVERIFY(attempt.percents.size() > 1);
    QVERIFY(std::is_sorted(attempt.percents.begin(), attempt.percents.end()));
    QVERIFY(std::adjacent_find(attempt.percents.begin(), attempt.percents.end()) == attempt.percents.end());
    QCOMPARE(attempt.percents.back(), 100);
}

void UpdateDownloadTest::aFeedMayNotTellTheLength()
{
    UpdateWorld world;
    world.publish({{}});
    world.answers["/tickwise_1.1_amd64.deb"].framing = LoopbackAnswer::Framing::chunked;
    Release release;
    release.length = 0;
    Attempt attempt(world, release);
    QTRY_VERIFY(attempt.result);
    QVERIFY(attempt.result->has_value());
    QVERIFY(attempt.percents.empty());
}

void UpdateDownloadTest::refusesAnotherKey()
{
    UpdateWorld world;
    world.publish({{}});
    Release release;
    release.signature = SigningKey().sign(world.package);
    Attempt attempt(world, release);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::signature));
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateDownloadTest::refusesATamperedPackage()
{
    UpdateWorld world;
    world.publish({{}});
    world.answers["/tickwise_1.1_amd64.deb"].body[1000] = '!';
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::signature));
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateDownloadTest::refusesATruncatedPackage()
{
    UpdateWorld world;
    world.publish({{}});
    faults::truncateAfter(500)(world.answers["/tickwise_1.1_amd64.deb"]);
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::network));
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateDownloadTest::refusesALyingLength_data()
{
    QTest::addColumn<qint64>("difference");
    QTest::addColumn<UpdateFailureKind>("kind");
    QTest::newRow("the feed promised more") << qint64(1) << UpdateFailureKind::network;
    QTest::newRow("the feed promised less") << qint64(-1) << UpdateFailureKind::tooLarge;
}

void UpdateDownloadTest::refusesALyingLength()
{
    QFETCH(qint64, difference);
    QFETCH(UpdateFailureKind, kind);
    for (const auto framing : {LoopbackAnswer::Framing::contentLength, LoopbackAnswer::Framing::chunked}) {
        UpdateWorld world;
        world.publish({{}});
        world.answers["/tickwise_1.1_amd64.deb"].framing = framing;
        Release release;
        release.length = world.package.size() + difference;
        Attempt attempt(world, release);
        QTRY_COMPARE(attempt.failure(), std::optional(kind));
        QCOMPARE(world.downloads(), QStringList());
    }
}

void UpdateDownloadTest::refusesHugePackagesUnread()
{
    UpdateWorld world;
    world.publish({{}});
    faults::oversize(maximumPackageBytes + 1)(world.answers["/tickwise_1.1_amd64.deb"]);
    Release release;
    release.length = maximumPackageBytes + 1;
    Attempt attempt(world, release);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::tooLarge));
    QVERIFY(attempt.percents.empty());
}

void UpdateDownloadTest::refusesOtherAnswers_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<UpdateFailureKind>("kind");
    QTest::newRow("not found") << 404 << UpdateFailureKind::packageMissing;
    QTest::newRow("gone") << 410 << UpdateFailureKind::packageMissing;
    QTest::newRow("forbidden") << 403 << UpdateFailureKind::network;
    QTest::newRow("server error") << 500 << UpdateFailureKind::network;
}

void UpdateDownloadTest::refusesOtherAnswers()
{
    QFETCH(int, status);
    QFETCH(UpdateFailureKind, kind);
    UpdateWorld world;
    world.publish({{}});
    world.answers["/tickwise_1.1_amd64.deb"].status = status;
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(kind));
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateDownloadTest::followsARedirectToAnotherHost()
{
    UpdateWorld world;
    UpdateWorld elsewhere;
    world.publish({{}});
    elsewhere.package = world.package;
    elsewhere.publish({{}});
    faults::redirect(QUrl(elsewhere.packageUrl()))(world.answers["/tickwise_1.1_amd64.deb"]);
    Attempt attempt(world);
    QTRY_VERIFY(attempt.result);
    QVERIFY(attempt.result->has_value());
    QCOMPARE(elsewhere.requests("/tickwise_1.1_amd64.deb"), 1);
}

void UpdateDownloadTest::staysBehindHttps()
{
    UpdateWorld world;
    world.publish({{}});
    QUrl open(world.packageUrl());
    open.setScheme(QStringLiteral("http"));
    faults::redirect(open)(world.answers["/tickwise_1.1_amd64.deb"]);
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::network));
}

void UpdateDownloadTest::takesThePackageAsItIsSent()
{
    UpdateWorld world;
    world.package = gzipped(QByteArray("archive ").repeated(1000));
    world.publish({{}});
    faults::headers({{"Content-Encoding", "gzip"}})(world.answers["/tickwise_1.1_amd64.deb"]);
    Attempt attempt(world);
    QTRY_VERIFY(attempt.result);
    QVERIFY(attempt.result->has_value());
    QCOMPARE(world.headerOfLastRequest("Accept-Encoding"), QByteArray("identity"));
    QCOMPARE(attempt.percents.back(), 100);
}

void UpdateDownloadTest::anOddName()
{
    UpdateWorld world;
    world.publish({{}});
    for (const QByteArray name : {"download.part", "part", "package"}) {
        world.answers['/' + name].body = world.package;
        Release release;
        release.url = world.packageUrl().replace(QStringLiteral("tickwise_1.1_amd64.deb"), QString::fromLatin1(name));
        Attempt attempt(world, release);
        QTRY_VERIFY(attempt.result);
        QVERIFY(attempt.result->has_value());
        QCOMPARE(world.downloads(), QStringList{**attempt.result});
        QVERIFY(attempt.result->value().endsWith(u'/' + QString::fromLatin1(name)));
    }
}

void UpdateDownloadTest::nothingStaysOfADroppedDownload()
{
    UpdateWorld world;
    world.publish({{}});
    faults::stallAfter(20000)(world.answers["/tickwise_1.1_amd64.deb"]);
    Attempt attempt(world);
    QTRY_VERIFY(!attempt.percents.empty());
    QCOMPARE(world.downloads().size(), 1);
    attempt.subscription.cancel();
    QCOMPARE(world.downloads(), QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(attempt.calls, 0);
}

void UpdateDownloadTest::aFullDisk()
{
    UpdateWorld world;
    world.package = QByteArray(4 * 1024 * 1024, 'x');
    world.publish({{}});
    const FileSizeLimit limit(1024 * 1024);
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::disk));
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateDownloadTest::aFolderThatCannotBeMade()
{
    UpdateWorld world;
    world.publish({{}});
    world.configuration.downloadDirectory = QStringLiteral("/dev/null/updates");
    Attempt attempt(world);
    QVERIFY(!attempt.result);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::disk));
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
}

void UpdateDownloadTest::removesEarlierDownloads()
{
    UpdateWorld world;
    world.publish({{}});
    Attempt first(world);
    QTRY_VERIFY(first.result);
    QFile partial(world.configuration.downloadDirectory + QStringLiteral("/.part"));
    QVERIFY(partial.open(QIODevice::WriteOnly));
    Attempt second(world);
    QTRY_VERIFY(second.result);
    QVERIFY(second.result->has_value());
    QCOMPARE(world.downloads().size(), 1);
}

void UpdateDownloadTest::leavesFilesThatAreNotOurs()
{
    UpdateWorld world;
    world.publish({{}});
    const QString path = world.configuration.downloadDirectory + QStringLiteral("/tickwise_1.1_amd64.deb");
    QVERIFY(QDir().mkpath(world.configuration.downloadDirectory));
    QFile stranger(path);
    QVERIFY(stranger.open(QIODevice::WriteOnly));
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::disk));
    QCOMPARE(world.downloads(), QStringList{path});
}

void UpdateDownloadTest::refusesALinkedFolder()
{
    UpdateWorld world;
    world.publish({{}});
    const QTemporaryDir home;
    QVERIFY(QFile::link(home.path(), world.configuration.downloadDirectory));
    QFile precious(home.filePath(QStringLiteral(".part")));
    QVERIFY(precious.open(QIODevice::WriteOnly));
    Attempt attempt(world);
    QTRY_COMPARE(attempt.failure(), std::optional(UpdateFailureKind::disk));
    QVERIFY(precious.exists());
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
}

void UpdateDownloadTest::packageFileNames_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("name");
    const QString fallback = QStringLiteral("tickwise-update");
    const auto row = [](const QString &path, const QString &name) {
        QTest::newRow(qPrintable(path.left(40))) << QString(QStringLiteral("https://updates.test/") + path) << name;
    };
    row(QStringLiteral("a/b/tickwise_1.1~rc1+2_amd64.deb?x=/y"), QStringLiteral("tickwise_1.1~rc1+2_amd64.deb"));
    row(QString(), fallback);
    row(QStringLiteral("folder/"), fallback);
    row(QStringLiteral(".bashrc"), fallback);
    row(QStringLiteral("-rf"), fallback);
    row(QStringLiteral("..%2f..%2fevil"), QStringLiteral("evil"));
    row(QStringLiteral("a%00b"), fallback);
    row(QStringLiteral("a b.deb"), fallback);
    row(QStringLiteral("\u00e4.deb"), fallback);
    row(QStringLiteral("a").repeated(121), fallback);
}

void UpdateDownloadTest::packageFileNames()
{
    QFETCH(QString, url);
    QFETCH(QString, name);
    AppcastItem item;
    item.url = QUrl(url);
    const QString found = packageFileName(item);
    QVERIFY(!found.contains(u'/'));
    QCOMPARE(found, name);
}

TICKWISE_TEST(UpdateDownloadTest)
#include "UpdateDownloadTest.moc"
