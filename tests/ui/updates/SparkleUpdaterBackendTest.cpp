#include "ui/updates/SparkleUpdaterBackend.h"

#include "UpdateWorld.h"
#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"

#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;
using namespace std::chrono_literals;
using enum tickwise::UpdatePhase;

namespace {

constexpr double oneDay = 86400;

} // namespace

class SparkleUpdaterBackendTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurations_data();
    void configurations();
    void attachesReady();
    void outOfFocusBecomesAReminder();
    void inFocusOpensTheWindow();
    void aUserInitiatedCheckNeverSetsUpdateAvailable();
    void theReminderIsShownAtOnce();
    void attentionClearsTheReminder();
    void theEndOfTheSessionClearsTheReminder_data();
    void theEndOfTheSessionClearsTheReminder();
    void askingDuringAScheduledCheck();
    void askingWhileAWindowIsShown();
    void askingAgainAfterTheEnd();
    void nothingNewStaysSilent();
    void survivesItsController();
    void checksOnceADay();
    void remembersTheLastCheckAcrossRuns();
    void clockJumps();
    void automaticChecksCanBeSwitched();
    void aFailedConnectionIsTriedAgain();
    void aCheckWithoutAnAnswerIsRepeated();
    void aReminderFollowsTheFeed();
    void aReminderOutlivesAFailedCheck();
    void aWithdrawnUpdateEndsTheReminder();
    void noScheduledCheckDisturbsAWindow();

private:
    static void remind(UpdateWorld &world);
    static void nextDay(UpdateWorld &world);
};

void SparkleUpdaterBackendTest::remind(UpdateWorld &world)
{
    world.publish({{}});
    world.start();
    QTRY_VERIFY(world.controller->updateAvailable());
}

void SparkleUpdaterBackendTest::nextDay(UpdateWorld &world)
{
    world.clock.advance(oneDay);
    world.backend().reconsiderSchedule();
}

void SparkleUpdaterBackendTest::configurations_data()
{
    QTest::addColumn<QString>("feed");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<bool>("usable");
    const QString feed = QStringLiteral("https://updates.test/appcast.xml");
    const QByteArray key = SigningKey().publicKey();
    QTest::newRow("https and a key") << feed << key << true;
    QTest::newRow("no feed") << QString() << key << false;
    QTest::newRow("http") << QStringLiteral("http://updates.test/appcast.xml") << key << false;
    QTest::newRow("a file") << QStringLiteral("file:///appcast.xml") << key << false;
    QTest::newRow("no host") << QStringLiteral("https:///appcast.xml") << key << false;
    QTest::newRow("no key") << feed << QByteArray() << false;
    QTest::newRow("a key of another length") << feed << QByteArray("c2hvcnQ=") << false;
    QTest::newRow("a key that is no base64") << feed << QByteArray(44, '!') << false;
}

void SparkleUpdaterBackendTest::configurations()
{
    QFETCH(QString, feed);
    QFETCH(QByteArray, key);
    QFETCH(bool, usable);
    QCOMPARE(isUsable({.feed = QUrl(feed), .publicKey = key}), usable);
}

void SparkleUpdaterBackendTest::attachesReady()
{
    UpdateWorld world;
    world.publish({{}});
    world.start();
    QVERIFY(world.controller->isAvailable());
    QVERIFY(world.controller->canCheckForUpdates());
    QVERIFY(world.controller->automaticallyChecksForUpdates());
    QVERIFY(!world.controller->updateAvailable());
    QCOMPARE(world.feedRequests(), 0);
}

void SparkleUpdaterBackendTest::outOfFocusBecomesAReminder()
{
    UpdateWorld world;
    remind(world);
    QVERIFY(world.driver.states.empty());
    QVERIFY(world.controller->canCheckForUpdates());
    QCOMPARE(world.requests("/tickwise_1.1_amd64.deb"), 0);
}

void SparkleUpdaterBackendTest::inFocusOpensTheWindow()
{
    UpdateWorld world;
    world.focused = true;
    world.publish({{}});
    world.start();
    const QSignalSpy reminded(world.controller.get(), &UpdateController::updateAvailableChanged);
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.driver.states.size(), std::size_t(1));
    QCOMPARE(reminded.size(), 0);
}

void SparkleUpdaterBackendTest::aUserInitiatedCheckNeverSetsUpdateAvailable()
{
    UpdateWorld world;
    world.store({.automaticallyChecks = false});
    world.publish({{}});
    world.start();
    const QSignalSpy reminded(world.controller.get(), &UpdateController::updateAvailableChanged);
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QVERIFY(!world.controller->updateAvailable());
    world.driver.choose(UpdateAction::remindLater);
    QCOMPARE(reminded.size(), 0);
}

void SparkleUpdaterBackendTest::theReminderIsShownAtOnce()
{
    UpdateWorld world;
    remind(world);
    const int requests = world.feedRequests();
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.driver.states.size(), std::size_t(1));
    QCOMPARE(world.driver.fronts, 1);
    QVERIFY(!world.controller->updateAvailable());
    QCOMPARE(world.feedRequests(), requests);
}

void SparkleUpdaterBackendTest::attentionClearsTheReminder()
{
    UpdateWorld world;
    remind(world);
    world.controller->checkForUpdates();
    world.controller->setUpdateAvailable(true);
    world.driver.choose(UpdateAction::download);
    QVERIFY(!world.controller->updateAvailable());
}

void SparkleUpdaterBackendTest::theEndOfTheSessionClearsTheReminder_data()
{
    QTest::addColumn<UpdateAction>("action");
    QTest::newRow("later") << UpdateAction::remindLater;
    QTest::newRow("skip") << UpdateAction::skip;
    QTest::newRow("close") << UpdateAction::close;
}

void SparkleUpdaterBackendTest::theEndOfTheSessionClearsTheReminder()
{
    QFETCH(UpdateAction, action);
    UpdateWorld world;
    remind(world);
    world.controller->checkForUpdates();
    world.driver.choose(action);
    QVERIFY(!world.controller->updateAvailable());
    QCOMPARE(world.driver.dismissals, 1);
    QVERIFY(world.controller->canCheckForUpdates());
}

void SparkleUpdaterBackendTest::askingDuringAScheduledCheck()
{
    UpdateWorld world;
    world.publish({{}});
    world.answers["/appcast.xml"].delay = 2s;
    world.start();
    QTRY_COMPARE(world.feedRequests(), 1);
    const QSignalSpy reminded(world.controller.get(), &UpdateController::updateAvailableChanged);
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(checking));
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.feedRequests(), 1);
    QCOMPARE(reminded.size(), 0);
}

void SparkleUpdaterBackendTest::askingWhileAWindowIsShown()
{
    UpdateWorld world;
    remind(world);
    world.controller->checkForUpdates();
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.driver.fronts, 2);
    QCOMPARE(world.feedRequests(), 1);
}

void SparkleUpdaterBackendTest::askingAgainAfterTheEnd()
{
    UpdateWorld world;
    world.store({.automaticallyChecks = false});
    world.publish({{.version = "1.0"}});
    world.start();
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(upToDate));
    world.publish({{}});
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(checking));
    QTRY_COMPARE(world.driver.phase(), std::optional(available));
    QCOMPARE(world.driver.dismissals, 0);
}

void SparkleUpdaterBackendTest::nothingNewStaysSilent()
{
    UpdateWorld world;
    world.publish({{.version = "1.0"}});
    world.start();
    QTRY_VERIFY(world.stored().lastCheck);
    QCoreApplication::processEvents();
    QVERIFY(world.driver.states.empty());
    QVERIFY(!world.controller->updateAvailable());
}

void SparkleUpdaterBackendTest::survivesItsController()
{
    UpdateWorld world;
    world.publish({{}});
    auto gone = std::make_unique<UpdateController>();
    SparkleUpdaterBackend backend(
        *gone, world.configuration,
        {world.http, world.clock.clock(), world.defaults, world.driver, [] { return false; }, world.installer});
    gone.reset();
    QTRY_VERIFY(world.stored().lastCheck);
    backend.checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(available));
    world.driver.choose(UpdateAction::remindLater);
    QCOMPARE(world.driver.dismissals, 1);
}

void SparkleUpdaterBackendTest::checksOnceADay()
{
    UpdateWorld world;
    world.publish({{.version = "1.0"}});
    world.start();
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QCOMPARE(world.backend().plannedInterval().value(), std::chrono::milliseconds(24h + 1s));
    world.clock.advance(oneDay - 1);
    world.backend().reconsiderSchedule();
    QVERIFY(world.backend().plannedInterval().value() <= 2s);
    QCOMPARE(world.feedRequests(), 1);
    world.clock.advance(1); // the timer that runs finds the day gone by
    QTRY_COMPARE(world.feedRequests(), 2);
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QCOMPARE(world.backend().plannedInterval().value(), std::chrono::milliseconds(24h + 1s));
}

void SparkleUpdaterBackendTest::remembersTheLastCheckAcrossRuns()
{
    UpdateWorld world;
    world.publish({{.version = "1.0"}});
    world.store({.lastCheck = world.clock.now() - 20h});
    world.start();
    QCOMPARE(world.backend().plannedInterval().value(), std::chrono::milliseconds(4h + 1s));
    world.store({.lastCheck = world.clock.now() - 25h});
    world.start();
    QTRY_COMPARE(world.feedRequests(), 1);
}

void SparkleUpdaterBackendTest::clockJumps()
{
    UpdateWorld world;
    world.publish({{.version = "1.0"}});
    world.store({.lastCheck = world.clock.now() + std::chrono::hours(24 * 365)});
    world.start();
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QCOMPARE(world.feedRequests(), 1);
    world.clock.advance(-10 * oneDay);
    world.backend().reconsiderSchedule();
    QTRY_COMPARE(world.feedRequests(), 2);
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QCOMPARE(world.backend().plannedInterval().value(), std::chrono::milliseconds(24h + 1s));
}

void SparkleUpdaterBackendTest::automaticChecksCanBeSwitched()
{
    UpdateWorld world;
    world.publish({{}});
    world.store({.automaticallyChecks = false});
    world.start();
    QVERIFY(!world.controller->automaticallyChecksForUpdates());
    QVERIFY(!world.backend().plannedInterval());
    world.backend().reconsiderSchedule();
    QVERIFY(!world.backend().plannedInterval());
    world.controller->setAutomaticallyChecksForUpdates(true);
    QVERIFY(world.controller->automaticallyChecksForUpdates());
    QVERIFY(world.stored().automaticallyChecks);
    QTRY_COMPARE(world.feedRequests(), 1);
    world.controller->setAutomaticallyChecksForUpdates(false);
    QVERIFY(!world.stored().automaticallyChecks);
    QVERIFY(!world.controller->automaticallyChecksForUpdates());
    QVERIFY(!world.backend().plannedInterval());
}

void SparkleUpdaterBackendTest::aFailedConnectionIsTriedAgain()
{
    UpdateWorld world;
    world.publish({{}});
    faults::reset()(world.answers["/appcast.xml"]);
    const LogCapture log;
    world.start();
    QTRY_COMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Updates")).size(), 1);
    QVERIFY(!world.stored().lastCheck);
    QCOMPARE(world.backend().plannedInterval().value(), std::chrono::milliseconds(24h + 1s));
    world.answers.clear();
    world.publish({{}});
    world.backend().reconsiderSchedule();
    QTRY_VERIFY(world.controller->updateAvailable());
    QVERIFY(world.stored().lastCheck == world.clock.now());
}

void SparkleUpdaterBackendTest::aCheckWithoutAnAnswerIsRepeated()
{
    UpdateWorld world;
    faults::hang()(world.answers["/appcast.xml"]);
    world.start();
    QTRY_COMPARE(world.feedRequests(), 1);
    world.answers.clear();
    world.publish({{}});
    world.backend().reconsiderSchedule();
    QTRY_VERIFY(world.controller->updateAvailable());
    QCOMPARE(world.feedRequests(), 2);
}

void SparkleUpdaterBackendTest::aReminderFollowsTheFeed()
{
    UpdateWorld world;
    remind(world);
    world.publish({{.version = "1.2"}});
    nextDay(world);
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QVERIFY(world.controller->updateAvailable());
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.states.back().item->version, QStringLiteral("1.2"));
}

void SparkleUpdaterBackendTest::aReminderOutlivesAFailedCheck()
{
    UpdateWorld world;
    remind(world);
    world.publishFeed("down for maintenance");
    nextDay(world);
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QVERIFY(world.controller->updateAvailable());
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(available));
}

void SparkleUpdaterBackendTest::aWithdrawnUpdateEndsTheReminder()
{
    UpdateWorld world;
    remind(world);
    world.publish({{.version = "1.1", .minimumSystemVersion = "99"}, {.version = "1.0"}});
    nextDay(world);
    QTRY_VERIFY(!world.controller->updateAvailable());
    QVERIFY(world.driver.states.empty());
}

void SparkleUpdaterBackendTest::noScheduledCheckDisturbsAWindow()
{
    UpdateWorld world;
    remind(world);
    world.controller->checkForUpdates();
    world.publish({{.version = "1.2"}});
    nextDay(world);
    QTRY_COMPARE(world.backend().plannedInterval().value(), std::chrono::milliseconds(24h + 1s));
    QCOMPARE(world.feedRequests(), 1);
    QCOMPARE(world.driver.states.back().item->version, QStringLiteral("1.1"));
}

TICKWISE_TEST(SparkleUpdaterBackendTest)
#include "SparkleUpdaterBackendTest.moc"
