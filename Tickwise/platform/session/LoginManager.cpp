#include "platform/session/LoginManager.h"

namespace tickwise {

LoginManager::LoginManager(const QDBusConnection &systemBus)
    : QDBusAbstractInterface(service(), QStringLiteral("/org/freedesktop/login1"), "org.freedesktop.login1.Manager",
                             systemBus, nullptr)
{
}

QString LoginManager::service()
{
    return QStringLiteral("org.freedesktop.login1");
}

QDBusPendingCall LoginManager::inhibitSleep()
{
    return asyncCall(QStringLiteral("Inhibit"), QStringLiteral("sleep"), QStringLiteral("Tickwise"),
                     QStringLiteral("Prices are not fetched while the computer sleeps"), QStringLiteral("delay"));
}

} // namespace tickwise
