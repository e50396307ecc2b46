#include "platform/dbus/BusCall.h"

namespace tickwise {

QDBusMessage busCall(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), method);
    call.setArguments(arguments);
    return call;
}

QString portalService()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QDBusMessage portalCall(const QString &interface, const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(portalService(), portalPath(), interface, method);
    call.setArguments(arguments);
    return call;
}

QDBusMessage propertyQuestion(const QString &service, const QString &path, const QString &interface,
                              const QString &property)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                       QStringLiteral("Get"));
    call.setArguments({interface, property});
    return call;
}

void whenFinished(const QDBusConnection &bus, const QDBusMessage &call, QObject *context,
                  std::chrono::milliseconds timeout, std::function<void(const QDBusPendingCall &)> finished)
{
    if (!bus.isConnected()) {
        QMetaObject::invokeMethod(
            context,
            [finished = std::move(finished)] {
                finished(QDBusPendingCall::fromError(QDBusError(QDBusError::Disconnected, QString())));
            },
            Qt::QueuedConnection);
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, int(timeout.count())), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [finished = std::move(finished)](QDBusPendingCallWatcher *ended) {
                         ended->deleteLater();
                         finished(*ended);
                     });
}

} // namespace tickwise
