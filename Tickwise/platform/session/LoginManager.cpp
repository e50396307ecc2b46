#include "platform/session/LoginManager.h"

namespace tickwise {

namespace {

QString managerPath()
{
    return QStringLiteral("/org/freedesktop/login1");
}

constexpr char managerInterface[] = "org.freedesktop.login1.Manager";

} // namespace

LoginManager::LoginManager(const QDBusConnection &systemBus)
    : QDBusAbstractInterface(service(), managerPath(), managerInterface, systemBus, nullptr)
{
}

QString LoginManager::service()
{
    return QStringLiteral("org.freedesktop.login1");
}

QDBusMessage LoginManager::delaySleepCall()
{
    QDBusMessage call = QDBusMessage::createMethodCall(service(), managerPath(), QString::fromLatin1(managerInterface),
                                                       QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Tickwise")
         << QStringLiteral("Prices are not fetched while the computer sleeps") << QStringLiteral("delay");
    return call;
}

} // namespace tickwise
