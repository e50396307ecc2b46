#include "platform/dbus/DBusFailure.h"

namespace tickwise {

namespace {

using Kind = DesktopServiceError::Kind;

Kind kindOf(QDBusError::ErrorType type)
{
    switch (type) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return Kind::timedOut;
    case QDBusError::ServiceUnknown:
        return Kind::noService;
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
    case QDBusError::NoNetwork:
        return Kind::noMessageBus;
    default:
        return Kind::refused;
    }
}

} // namespace

Error errorFromDBus(const QDBusError &error)
{
    return DesktopServiceError{kindOf(error.type()), error.message()};
}

Error noMessageBus()
{
    return DesktopServiceError{Kind::noMessageBus, {}};
}

} // namespace tickwise
