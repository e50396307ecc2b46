#include "platform/session/WidgetCenter.h"

#include "platform/dbus/SessionBus.h"

#include <QDBusMessage>

namespace tickwise {

WidgetCenter::WidgetCenter(const SessionBus &bus)
    : m_bus(bus)
{
}

void WidgetCenter::reloadAllTimelines() const
{
    const QDBusConnection &bus = m_bus.connection();
    if (bus.isConnected())
        bus.send(QDBusMessage::createSignal(QString::fromLatin1(objectPath), QString::fromLatin1(interfaceName),
                                            QString::fromLatin1(reloadSignal)));
}

WidgetReloads::WidgetReloads(const SessionBus &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    connect(&bus, &SessionBus::connected, this, [this] {
        listen();
        Q_EMIT reloadRequested();
    });
    listen();
}

void WidgetReloads::listen()
{
    // Named by path and interface alone: with the sender's name QtDBus would wait for the bus to resolve it.
    QDBusConnection(m_bus.connection())
        .connect(QString(), QString::fromLatin1(WidgetCenter::objectPath),
                 QString::fromLatin1(WidgetCenter::interfaceName), QString::fromLatin1(WidgetCenter::reloadSignal),
                 this, SIGNAL(reloadRequested()));
}

} // namespace tickwise
