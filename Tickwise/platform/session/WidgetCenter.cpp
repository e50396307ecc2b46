#include "platform/session/WidgetCenter.h"

#include <QDBusMessage>

namespace tickwise {

WidgetCenter::WidgetCenter(QDBusConnection bus)
    : m_bus(std::move(bus))
{
}

void WidgetCenter::reloadAllTimelines()
{
    if (m_bus.isConnected())
        m_bus.send(QDBusMessage::createSignal(QString::fromLatin1(objectPath), QString::fromLatin1(interfaceName),
                                              QString::fromLatin1(reloadSignal)));
}

} // namespace tickwise
