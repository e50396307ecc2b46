#include "platform/dbus/SystemBus.h"

#include "platform/dbus/DeafBus.h"
#include "platform/dbus/SessionBus.h"

#include <QUuid>

namespace tickwise {

namespace {

QString systemAddress()
{
    const QString address = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return address.isEmpty() ? QStringLiteral("unix:path=/run/dbus/system_bus_socket") : address;
}

} // namespace

QDBusConnection openSystemBus()
{
    if (isDeafBus(systemAddress(), SessionBus::longestSilence))
        return QDBusConnection(QString());
    return QDBusConnection::connectToBus(QDBusConnection::SystemBus, QUuid::createUuid().toString());
}

} // namespace tickwise
