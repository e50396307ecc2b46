#include "doubles/TestProgram.h"
#include "ui/updates/UpdateSession.h"

#include "UpdateWorld.h"
#include "doubles/LogCapture.h"

using namespace tickwise;
using namespace tickwise::test;
using enum tickwise::UpdatePhase;

/// What becomes of a verified package.
class UpdateInstallationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tamperedBeforeTheInstallation();
    void installationEndsByItself();
    void packagesThatNothingOpens();
    void anInstalledVersionNeedsARestart();
    void restartingEndsTheSessionFirst();
    void laterRemovesThePackage();
    void openedPackagesStay();
};

void UpdateInstallationTest::tamperedBeforeTheInstallation()
{
    UpdateWorld world;
    world.publish({{}});
    downloadUntil(world, ready);
    QFile package(world.downloads().front());
    QVERIFY(package.open(QIODevice::ReadWrite));
    QCOMPARE(package.write("X"), 1);
    package.close();
    world.driver.choose(UpdateAction::install);
    QTRY_COMPARE(world.driver.failure(), std::optional(UpdateFailureKind::signature));
    QVERIFY(world.installer.paths.isEmpty());
    QCOMPARE(world.downloads(), QStringList());
}

void UpdateInstallationTest::installationEndsByItself()
{
    UpdateWorld world;
    world.publish({{}});
    downloadUntil(world, ready);
    world.driver.choose(UpdateAction::install);
    QVERIFY(!world.controller->canCheckForUpdates());
    world.driver.choose(UpdateAction::close);
    QCOMPARE(world.driver.dismissals, 0);
    QTRY_COMPARE(world.driver.dismissals, 1);
    QCOMPARE(world.installer.paths.size(), 1);
}

void UpdateInstallationTest::packagesThatNothingOpens()
{
    UpdateWorld world;
    world.installer.result = failure(DesktopServiceError{DesktopServiceError::Kind::noService, QString()});
    world.publish({{}});
    downloadUntil(world, ready);
    const LogCapture log;
    world.driver.choose(UpdateAction::install);
    QTRY_COMPARE(world.driver.phase(), std::optional(manualInstallation));
    QCOMPARE(world.driver.states.back().packagePath, world.installer.paths.front());
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Updates")).size(), 1);
    QVERIFY(world.controller->canCheckForUpdates());
    world.controller->checkForUpdates();
    QCOMPARE(world.driver.phase(), std::optional(manualInstallation));
    world.driver.choose(UpdateAction::close);
    QCOMPARE(world.driver.dismissals, 1);
    QCOMPARE(world.downloads(), world.installer.paths);
}

void UpdateInstallationTest::anInstalledVersionNeedsARestart()
{
    UpdateWorld world;
    world.installer.result = PackageInstallation::replaced;
    world.publish({{}});
    downloadUntil(world, ready);
    world.driver.choose(UpdateAction::install);
    QTRY_COMPARE(world.driver.phase(), std::optional(restartNeeded));
    QCOMPARE(world.downloads(), QStringList());
    world.driver.choose(UpdateAction::close);
    QCOMPARE(world.installer.restarts, 0);
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(restartNeeded));
    world.driver.choose(UpdateAction::restart);
    QCOMPARE(world.installer.restarts, 1);
    QCOMPARE(world.driver.dismissals, 2);
    world.controller->setAutomaticallyChecksForUpdates(true);
    world.clock.advance(86400);
    world.backend().reconsiderSchedule();
    QTRY_VERIFY(world.stored().lastCheck == world.clock.now());
    QVERIFY(!world.controller->updateAvailable());
    QCOMPARE(world.driver.dismissals, 3);
}

/// The end of the program closes the session's window, which chooses then.
void UpdateInstallationTest::restartingEndsTheSessionFirst()
{
    UpdateWorld world;
    world.installer.result = PackageInstallation::replaced;
    world.publish({{}});
    downloadUntil(world, ready);
    world.driver.choose(UpdateAction::install);
    QTRY_COMPARE(world.driver.phase(), std::optional(restartNeeded));
    int dismissals = 0;
    world.installer.onRestart = [&] {
        dismissals = world.driver.dismissals;
        world.driver.choose(UpdateAction::close);
    };
    world.driver.choose(UpdateAction::restart);
    QCOMPARE(world.installer.restarts, 1);
    QCOMPARE(dismissals, 1);
    QCOMPARE(world.driver.dismissals, 1);
    QVERIFY(world.controller->canCheckForUpdates());
}

void UpdateInstallationTest::laterRemovesThePackage()
{
    UpdateWorld world;
    world.publish({{}});
    downloadUntil(world, ready);
    QCOMPARE(world.downloads().size(), 1);
    world.driver.choose(UpdateAction::remindLater);
    QCOMPARE(world.downloads(), QStringList());
    QVERIFY(world.installer.paths.isEmpty());
}

void UpdateInstallationTest::openedPackagesStay()
{
    UpdateWorld world;
    world.publish({{}});
    downloadUntil(world, ready);
    world.driver.choose(UpdateAction::install);
    QTRY_COMPARE(world.driver.dismissals, 1);
    QCOMPARE(world.downloads(), world.installer.paths);
    world.start();
    QCOMPARE(world.downloads(), QStringList());
}

TICKWISE_TEST(UpdateInstallationTest)
#include "UpdateInstallationTest.moc"
