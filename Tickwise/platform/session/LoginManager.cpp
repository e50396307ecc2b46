#include "platform/session/LoginManager.h"

namespace tickwise {

LoginManager::LoginManager(const QDBusConnection &systemBus)
    : QDBusAbstractInterface(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
                             "org.freedesktop.login1.Manager", systemBus, nullptr)
{
}

} // namespace tickwise
