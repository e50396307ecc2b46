#include "ui/updates/UpdateSession.h"

#include "UpdateWorld.h"
#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"
#include "ui/updates/appcast/AppcastParser.h"

using namespace tickwise;
using namespace tickwise::test;
using enum tickwise::UpdatePhase;

namespace {

QString category()
{
    return QStringLiteral("com.pelmo.tickwise.Updates");
}

QByteArray billionLaughs()
{
    QByteArray declarations = "<!ENTITY lol0 \"lol\">";
    for (int i = 1; i < 10; ++i) {
        const QByteArray before = "&lol" + QByteArray::number(i - 1) + ";";
        declarations += "<!ENTITY lol" + QByteArray::number(i) + " \"" + before.repeated(10) + "\">";
    }
    return "<?xml version=\"1.0\"?><!DOCTYPE rss [" + declarations +
           "]><rss><channel><title>&lol9;</title></channel></rss>";
}

} // namespace

class UpdateSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromTheCheckToTheOpenedPackage();
    void refusedFeeds_data();
    void refusedFeeds();
    void aFeedOfExactlyTheLimit();
    void refusedItems_data();
    void refusedItems();
    void notOffered_data();
    void notOffered();
    void serverUnreachable();
    void untrustedServer();
    void feedRedirectedAway();
    void refusedPackage_data();
    void refusedPackage();
    void withdrawnReleases_data();
    void withdrawnReleases();
    void aFailedAcceptanceIsForgotten();
    void withdrawnBeforeTheDownload();
    void replacedBeforeTheDownload();
    void cancelledChecks();
    void cancelledDownloads();
    void quittingDuringADownload();
    void skippedVersionsAreRemembered();
    void askingForASkippedVersion();
};

void UpdateSessionTest::fromTheCheckToTheOpenedPackage()
{
    UpdateWorld world;
    world.publish({{.version = "0.9"}, {.version = "1.1", .minimumSystemVersion = "12"}});
    checkUntil(world, available);
    QCOMPARE(world.driver.states.front().phase, checking);
    QCOMPARE(world.driver.states.back().item->version, QStringLiteral("1.1"));
    QCOMPARE(world.driver.states.back().item->releaseNotes, QStringLiteral("Faster"));
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
    world.driver.choose(UpdateAction::download);
    QCOMPARE(world.driver.phase(), std::optional(downloading));
    QTRY_COMPARE(world.driver.phase(), std::optional(ready));
    QVERIFY(world.installer.paths.isEmpty());
    world.driver.choose(UpdateAction::install);
    QCOMPARE(world.driver.phase(), std::optional(installing));
    QTRY_COMPARE(world.installer.paths.size(), 1);
    QCOMPARE(world.installer.content, world.package);
    QTRY_COMPARE(world.driver.dismissals, 1);
    QVERIFY(!world.controller->updateAvailable());
}

void UpdateSessionTest::refusedFeeds_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("feed");
    QTest::addColumn<UpdateFailureKind>("kind");
    using enum UpdateFailureKind;
    QTest::newRow("missing") << 404 << QByteArray("Not found") << feedMissing;
    QTest::newRow("server error") << 500 << QByteArray() << feed;
    QTest::newRow("empty") << 200 << QByteArray() << feed;
    QTest::newRow("HTML") << 200 << QByteArray("<html><body>Welcome to the hotel</body></html>") << feed;
    QTest::newRow("not XML") << 200 << QByteArray("{}") << feed;
    QTest::newRow("cut off") << 200 << QByteArray("<rss><channel><item>") << feed;
    QTest::newRow("1 MiB and one byte") << 200 << QByteArray(maximumAppcastBytes + 1, ' ') << tooLarge;
    QTest::newRow("billion laughs") << 200 << billionLaughs() << feed;
    QTest::newRow("external entity")
        << 200
        << QByteArray("<!DOCTYPE rss [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><rss><channel>&x;</channel></rss>")
        << feed;
}

void UpdateSessionTest::refusedFeeds()
{
    QFETCH(int, status);
    QFETCH(QByteArray, feed);
    QFETCH(UpdateFailureKind, kind);
    UpdateWorld world;
    world.publishFeed(feed);
    world.answers["/appcast.xml"].status = status;
    const LogCapture log;
    world.start(); // a check is due at once
    QTRY_COMPARE(log.texts(category()).size(), 1);
    QVERIFY(log.texts(category()).front().startsWith(QStringLiteral("Failed to update: ")));
    QCOMPARE(log.lines().back().type, QtWarningMsg);
    QVERIFY(world.driver.states.empty());
    QVERIFY(!world.controller->updateAvailable());
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.failure(), std::optional(kind));
    QCOMPARE(world.driver.phase(), std::optional(failed));
}

void UpdateSessionTest::aFeedOfExactlyTheLimit()
{
    UpdateWorld world;
    world.publish({{}});
    QByteArray &feed = world.answers["/appcast.xml"].body;
    feed += QByteArray(maximumAppcastBytes - feed.size(), ' ');
    checkUntil(world, available);
}

void UpdateSessionTest::refusedItems_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QString>("url");
    QTest::addColumn<UpdateFailureKind>("kind");
    QTest::newRow("not signed") << QByteArray() << QString() << UpdateFailureKind::noSignature;
    QTest::newRow("signature that is none") << QByteArray("c2lnbmVk") << QString() << UpdateFailureKind::signature;
    QTest::newRow("package behind http") << QByteArray(88, 'A') << QStringLiteral("http://127.0.0.1/a.deb")
                                         << UpdateFailureKind::feed;
}

void UpdateSessionTest::refusedItems()
{
    QFETCH(QByteArray, signature);
    QFETCH(QString, url);
    QFETCH(UpdateFailureKind, kind);
    UpdateWorld world;
    world.publish({{.signature = signature, .url = url}});
    const LogCapture log;
    world.start();
    QTRY_COMPARE(log.texts(category()).size(), 1);
    QVERIFY(world.driver.states.empty());
    QVERIFY(!world.controller->updateAvailable());
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.failure(), std::optional(kind));
}

void UpdateSessionTest::notOffered_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QByteArray>("minimumSystem");
    QTest::addColumn<bool>("fails");
    QTest::newRow("same version") << QByteArray("1.0") << QByteArray() << false;
    QTest::newRow("downgrade") << QByteArray("0.9") << QByteArray() << false;
    QTest::newRow("system too old") << QByteArray("1.1") << QByteArray("13") << true;
}

void UpdateSessionTest::notOffered()
{
    QFETCH(QByteArray, version);
    QFETCH(QByteArray, minimumSystem);
    QFETCH(bool, fails);
    UpdateWorld world;
    world.publish({{.version = version, .minimumSystemVersion = minimumSystem}});
    checkUntil(world, fails ? failed : upToDate);
    if (fails)
        QCOMPARE(world.driver.failure(), std::optional(UpdateFailureKind::noUpdateForSystem));
    world.driver.choose(UpdateAction::download);
    QCOMPARE(world.driver.phase(), std::optional(fails ? failed : upToDate));
    world.driver.choose(UpdateAction::close);
    QCOMPARE(world.driver.dismissals, 1);
    QVERIFY(world.controller->canCheckForUpdates());
}

void UpdateSessionTest::serverUnreachable()
{
    UpdateWorld world;
    world.configuration.feed = QUrl(QStringLiteral("https://127.0.0.1:1/appcast.xml"));
    checkUntil(world, failed);
    QCOMPARE(world.driver.failure(), std::optional(UpdateFailureKind::network));
    QVERIFY(!world.stored().lastCheck);
}

void UpdateSessionTest::untrustedServer()
{
    UpdateWorld world;
    int requests = 0;
    LoopbackHttpServer stranger(loopbackServerTls(LoopbackCertificate::fromStranger), world.clock.clock(),
                                [&](const LoopbackRequest &) {
                                    ++requests;
                                    return LoopbackAnswer();
                                });
    world.configuration.feed = QUrl(stranger.baseUrl() + QStringLiteral("/appcast.xml"));
    checkUntil(world, failed);
    QCOMPARE(world.driver.failure(), std::optional(UpdateFailureKind::network));
    QCOMPARE(requests, 0);
}

void UpdateSessionTest::feedRedirectedAway()
{
    UpdateWorld world;
    UpdateWorld elsewhere;
    elsewhere.publish({{}});
    world.publish({{}});
    faults::redirect(elsewhere.configuration.feed)(world.answers["/appcast.xml"]);
    checkUntil(world, failed);
    QCOMPARE(world.driver.failure(), std::optional(UpdateFailureKind::feed));
    QCOMPARE(elsewhere.feedRequests(), 0);
}

void UpdateSessionTest::refusedPackage_data()
{
    QTest::addColumn<bool>("otherKey");
    QTest::addColumn<bool>("tampered");
    QTest::addColumn<bool>("truncated");
    QTest::addColumn<UpdateFailureKind>("kind");
    QTest::newRow("signed with another key") << true << false << false << UpdateFailureKind::signature;
    QTest::newRow("tampered") << false << true << false << UpdateFailureKind::signature;
    QTest::newRow("truncated") << false << false << true << UpdateFailureKind::network;
}

void UpdateSessionTest::refusedPackage()
{
    QFETCH(bool, otherKey);
    QFETCH(bool, tampered);
    QFETCH(bool, truncated);
    QFETCH(UpdateFailureKind, kind);
    UpdateWorld world;
    if (otherKey)
        world.publish({{.signature = SigningKey().sign(world.package)}});
    else
        world.publish({{}});
    LoopbackAnswer &package = world.answers["/tickwise_1.1_amd64.deb"];
    if (tampered)
        package.body[7] = 'X';
    if (truncated)
        faults::truncateAfter(1000)(package);
    downloadUntil(world, failed);
    QCOMPARE(world.driver.failure(), std::optional(kind));
    QVERIFY(world.installer.paths.isEmpty());
    world.driver.choose(UpdateAction::install);
    QVERIFY(world.installer.paths.isEmpty());
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateSessionTest::withdrawnReleases_data()
{
    QTest::addColumn<QByteArray>("left"); // the version that is left in the feed; empty: none
    QTest::newRow("the running version is left") << QByteArray("1.0");
    QTest::newRow("nothing is left") << QByteArray();
}

void UpdateSessionTest::withdrawnReleases()
{
    QFETCH(QByteArray, left);
    UpdateWorld world;
    world.publish({{}});
    world.start();
    QTRY_VERIFY(world.controller->updateAvailable());
    const LogCapture log;
    world.publish(left.isEmpty() ? std::vector<Release>() : std::vector<Release>{{.version = left}});
    world.clock.advance(86400);
    world.backend().reconsiderSchedule();
    QTRY_VERIFY(!world.controller->updateAvailable());
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(upToDate));
    QCOMPARE(log.texts(category()), QStringList());
}

void UpdateSessionTest::aFailedAcceptanceIsForgotten()
{
    UpdateWorld world;
    world.publish({{}});
    checkUntil(world, available);
    world.publishFeed("no feed");
    world.driver.choose(UpdateAction::download);
    QTRY_COMPARE(world.driver.phase(), std::optional(failed));
    world.publish({{}});
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
}

void UpdateSessionTest::withdrawnBeforeTheDownload()
{
    UpdateWorld world;
    world.publish({{}});
    checkUntil(world, available);
    world.publish({{.version = "1.0"}});
    world.driver.choose(UpdateAction::download);
    QCOMPARE(world.driver.phase(), std::optional(downloading));
    QTRY_COMPARE(world.driver.phase(), std::optional(upToDate));
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
}

void UpdateSessionTest::replacedBeforeTheDownload()
{
    UpdateWorld world;
    world.publish({{}});
    checkUntil(world, available);
    world.publish({{.version = "1.2"}});
    world.driver.choose(UpdateAction::download);
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.driver.states.back().item->version, QStringLiteral("1.2"));
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
    world.driver.choose(UpdateAction::download);
    QTRY_COMPARE(world.driver.phase(), std::optional(ready));
}

void UpdateSessionTest::cancelledChecks()
{
    UpdateWorld world;
    world.publish({{}});
    checkUntil(world, checking);
    QVERIFY(!world.controller->canCheckForUpdates());
    world.driver.choose(UpdateAction::cancel);
    QVERIFY(world.controller->canCheckForUpdates());
    QCOMPARE(world.driver.dismissals, 1);
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.driver.states.size(), std::size_t(3)); // nothing came of the first check
}

void UpdateSessionTest::cancelledDownloads()
{
    UpdateWorld world;
    world.publish({{}});
    faults::stallAfter(20000)(world.answers["/tickwise_1.1_amd64.deb"]);
    downloadUntil(world, downloading);
    QTRY_VERIFY(world.driver.states.back().percent.value_or(0) > 0);
    QVERIFY(!world.controller->canCheckForUpdates());
    QCOMPARE(world.downloads().size(), 1);
    world.driver.choose(UpdateAction::cancel);
    QCOMPARE(world.downloads(), QStringList());
    QVERIFY(world.controller->canCheckForUpdates());
    QCOMPARE(world.driver.dismissals, 1);
}

void UpdateSessionTest::quittingDuringADownload()
{
    UpdateWorld world;
    world.publish({{}});
    faults::stallAfter(20000)(world.answers["/tickwise_1.1_amd64.deb"]);
    downloadUntil(world, downloading);
    QTRY_COMPARE(world.downloads().size(), 1);
    world.stop();
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateSessionTest::skippedVersionsAreRemembered()
{
    UpdateWorld world;
    world.publish({{}});
    checkUntil(world, available);
    world.driver.choose(UpdateAction::skip);
    QCOMPARE(world.stored().skippedVersion, QStringLiteral("1.1"));
    QCOMPARE(world.driver.dismissals, 1);
    world.store({.skippedVersion = world.stored().skippedVersion});
    world.start();
    QTRY_COMPARE(world.feedRequests(), 2);
    QTRY_VERIFY(world.stored().lastCheck);
    QVERIFY(!world.controller->updateAvailable());
    world.publish({{.version = "1.2"}});
    world.clock.advance(86400);
    world.backend().reconsiderSchedule();
    QTRY_VERIFY(world.controller->updateAvailable());
}

void UpdateSessionTest::askingForASkippedVersion()
{
    UpdateWorld world;
    world.store({.skippedVersion = QStringLiteral("1.1")});
    world.publish({{}});
    checkUntil(world, available);
    QCOMPARE(world.stored().skippedVersion, QStringLiteral("1.1"));
    world.driver.choose(UpdateAction::remindLater);
    QVERIFY(world.stored().skippedVersion.isEmpty());
}

TICKWISE_TEST(UpdateSessionTest)
#include "UpdateSessionTest.moc"
