#include "ui/updates/UpdateController.h"

#include "doubles/TestProgram.h"

#include <QSignalSpy>

using namespace tickwise;

namespace {

struct BackendRecord
{
    int checks = 0;
    bool deleted = false;
};

class BackendDouble : public QObject, public UpdaterBackend
{
public:
    explicit BackendDouble(BackendRecord &record)
        : m_record(record)
    {
    }
    ~BackendDouble() override { m_record.deleted = true; }

    void checkForUpdates() override { ++m_record.checks; }
    void setAutomaticallyChecksForUpdates(bool enabled) override { automaticallyChecks = enabled; }
    QBindable<bool> bindableCanCheckForUpdates() override { return &canCheck; }
    QBindable<bool> bindableAutomaticallyChecksForUpdates() override { return &automaticallyChecks; }

    QProperty<bool> canCheck{true};
    QProperty<bool> automaticallyChecks{true};

private:
    BackendRecord &m_record;
};

} // namespace

class UpdateControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithEverythingFalse();
    void isInertWithoutABackend();
    void attachingMakesItAvailable();
    void mirrorsTheBackend();
    void writesBackToTheBackend();
    void asksTheBackend();
    void publishesUpdateAvailable();
    void ownsTheBackend();
};

void UpdateControllerTest::startsWithEverythingFalse()
{
    UpdateController controller;
    QVERIFY(!controller.updateAvailable());
    QVERIFY(!controller.isAvailable());
    QVERIFY(!controller.canCheckForUpdates());
    QVERIFY(!controller.automaticallyChecksForUpdates());
}

void UpdateControllerTest::isInertWithoutABackend()
{
    UpdateController controller;
    controller.checkForUpdates();
    controller.setAutomaticallyChecksForUpdates(true);
    QVERIFY(!controller.automaticallyChecksForUpdates());
    QVERIFY(!controller.isAvailable());
}

void UpdateControllerTest::attachingMakesItAvailable()
{
    BackendRecord record;
    UpdateController controller;
    const QSignalSpy available(&controller, &UpdateController::isAvailableChanged);
    controller.attach(std::make_unique<BackendDouble>(record));
    QVERIFY(controller.isAvailable());
    QVERIFY(controller.canCheckForUpdates());
    QVERIFY(controller.automaticallyChecksForUpdates());
    QVERIFY(!controller.updateAvailable());
    QCOMPARE(available.size(), 1);
}

void UpdateControllerTest::mirrorsTheBackend()
{
    BackendRecord record;
    UpdateController controller;
    auto owned = std::make_unique<BackendDouble>(record);
    BackendDouble &backend = *owned;
    controller.attach(std::move(owned));
    const QSignalSpy canCheck(&controller, &UpdateController::canCheckForUpdatesChanged);
    backend.canCheck = false;
    QVERIFY(!controller.canCheckForUpdates());
    QVERIFY(controller.automaticallyChecksForUpdates());
    backend.canCheck = true;
    QVERIFY(controller.canCheckForUpdates());
    QCOMPARE(canCheck.size(), 2);
    backend.automaticallyChecks = false;
    QVERIFY(!controller.automaticallyChecksForUpdates());
}

void UpdateControllerTest::writesBackToTheBackend()
{
    BackendRecord record;
    UpdateController controller;
    auto owned = std::make_unique<BackendDouble>(record);
    BackendDouble &backend = *owned;
    controller.attach(std::move(owned));
    const QSignalSpy changed(&controller, &UpdateController::automaticallyChecksForUpdatesChanged);
    controller.setAutomaticallyChecksForUpdates(false);
    QVERIFY(!backend.automaticallyChecks);
    QVERIFY(!controller.automaticallyChecksForUpdates());
    QCOMPARE(changed.size(), 1);
}

void UpdateControllerTest::asksTheBackend()
{
    BackendRecord record;
    UpdateController controller;
    controller.attach(std::make_unique<BackendDouble>(record));
    QCOMPARE(record.checks, 0);
    controller.checkForUpdates();
    QCOMPARE(record.checks, 1);
}

void UpdateControllerTest::publishesUpdateAvailable()
{
    UpdateController controller;
    const QSignalSpy changed(&controller, &UpdateController::updateAvailableChanged);
    controller.setUpdateAvailable(true);
    controller.setUpdateAvailable(true);
    QVERIFY(controller.updateAvailable());
    QCOMPARE(changed.size(), 1);
    controller.setUpdateAvailable(false);
    QVERIFY(!controller.updateAvailable());
    QCOMPARE(changed.size(), 2);
}

void UpdateControllerTest::ownsTheBackend()
{
    BackendRecord record;
    {
        UpdateController controller;
        controller.attach(std::make_unique<BackendDouble>(record));
        QVERIFY(!record.deleted);
    }
    QVERIFY(record.deleted);
}

TICKWISE_TEST(UpdateControllerTest)
#include "UpdateControllerTest.moc"
