#include "platform/dbus/PortalRequest.h"

#include "platform/dbus/BusCall.h"

namespace tickwise {

PortalRequest::PortalRequest(const QDBusConnection &sessionBus, const QString &path)
    : QDBusAbstractInterface(portalService(), path, "org.freedesktop.portal.Request", sessionBus, nullptr)
{
}

} // namespace tickwise
