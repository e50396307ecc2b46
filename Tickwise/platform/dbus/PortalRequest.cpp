#include "platform/dbus/PortalRequest.h"

namespace tickwise {

PortalRequest::PortalRequest(const QDBusConnection &sessionBus, const QString &path)
    : QDBusAbstractInterface(service(), path, "org.freedesktop.portal.Request", sessionBus, nullptr)
{
}

QString PortalRequest::service()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

} // namespace tickwise
