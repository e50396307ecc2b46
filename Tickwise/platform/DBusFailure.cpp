#include "platform/DBusFailure.h"

namespace tickwise {

namespace {

UrlErrorCode errorCode(QDBusError::ErrorType type)
{
    switch (type) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return UrlErrorCode::timedOut;
    case QDBusError::ServiceUnknown:
        return UrlErrorCode::cannotFindHost;
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
    case QDBusError::NoNetwork:
        return UrlErrorCode::cannotConnectToHost;
    default:
        return UrlErrorCode::badServerResponse;
    }
}

} // namespace

Error errorFromDBus(const QDBusError &error)
{
    return UrlLoadingError{errorCode(error.type()), error.message()};
}

Error noMessageBus()
{
    return UrlLoadingError{UrlErrorCode::cannotConnectToHost, QStringLiteral("there is no message bus")};
}

} // namespace tickwise
