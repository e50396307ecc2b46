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

} // namespace tickwise
