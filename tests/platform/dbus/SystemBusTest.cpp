#include "platform/dbus/SystemBus.h"

#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"

#include <QElapsedTimer>

#include <memory>

using namespace tickwise;
using namespace tickwise::test;

class SystemBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void opensTheBusOfTheEnvironment();
    void aDeafBusIsNone();
    void anAbsentBusIsNone();

private:
    std::unique_ptr<PrivateBus> m_bus; ///< not made where only the functions are listed
    QByteArray m_formerAddress;
};

void SystemBusTest::init()
{
    m_bus = std::make_unique<PrivateBus>();
    m_formerAddress = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus->address().toUtf8());
}

void SystemBusTest::cleanup()
{
    m_formerAddress.isNull() ? qunsetenv("DBUS_SYSTEM_BUS_ADDRESS")
                             : qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_formerAddress);
}

void SystemBusTest::opensTheBusOfTheEnvironment()
{
    const QDBusConnection bus = openSystemBus();
    QVERIFY(bus.isConnected());
    QVERIFY(bus.baseService().startsWith(u':'));
}

void SystemBusTest::aDeafBusIsNone()
{
    m_bus->pause();
    QElapsedTimer opening;
    opening.start();
    const QDBusConnection bus = openSystemBus();
    const qint64 blocked = opening.elapsed();
    m_bus->resume();
    QVERIFY(!bus.isConnected());
    QVERIFY2(blocked < 10000, "the library itself waits for 25 seconds");
}

void SystemBusTest::anAbsentBusIsNone()
{
    m_bus->stop();
    const QDBusConnection bus = openSystemBus();
    m_bus->start();
    QVERIFY(!bus.isConnected());
}

TICKWISE_TEST(SystemBusTest)
#include "SystemBusTest.moc"
