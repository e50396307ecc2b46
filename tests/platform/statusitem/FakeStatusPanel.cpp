#include "FakeStatusPanel.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QSignalSpy>
#include <QTest>

namespace tickwise::test {

namespace {

QString watcherName()
{
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString described(const QDBusMessage &message)
{
    QStringList arguments;
    for (const QVariant &argument : message.arguments())
        arguments << argument.toString();
    return arguments.isEmpty() ? message.member() : message.member() + u'(' + arguments.join(u',') + u')';
}

} // namespace

FakeStatusPanel::FakeStatusPanel(PrivateBus &bus)
    : m_connection(bus.connect())
{
    m_connection.registerObject(QStringLiteral("/StatusNotifierWatcher"), this, QDBusConnection::ExportAllSlots);
    for (const QString &interface :
         {QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("com.canonical.dbusmenu")})
        m_connection.connect(QString(), QString(), interface, QString(), this, SLOT(signalReceived(QDBusMessage)));
    m_connection.registerService(watcherName());
}

FakeStatusPanel::~FakeStatusPanel()
{
    m_connection.unregisterService(watcherName());
}

QStringList FakeStatusPanel::takeSignals()
{
    return std::exchange(m_signals, {});
}

QDBusMessage FakeStatusPanel::call(const QString &path, const QString &interface, const QString &method,
                                   const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_items.value(m_items.size() - 1), path, interface, method);
    message.setArguments(arguments);
    QDBusPendingCallWatcher watcher(m_connection.asyncCall(message));
    QSignalSpy finished(&watcher, &QDBusPendingCallWatcher::finished);
    if (!watcher.isFinished())
        finished.wait();
    return watcher.reply();
}

QDBusMessage FakeStatusPanel::callItem(const QString &method, const QVariantList &arguments)
{
    return call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"), method, arguments);
}

QDBusMessage FakeStatusPanel::callMenu(const QString &method, const QVariantList &arguments)
{
    const QString path = itemProperties().value(QStringLiteral("Menu")).value<QDBusObjectPath>().path();
    return call(path, QStringLiteral("com.canonical.dbusmenu"), method, arguments);
}

QVariantMap FakeStatusPanel::itemProperties()
{
    const QDBusMessage reply =
        call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"),
             QStringLiteral("GetAll"), {QStringLiteral("org.kde.StatusNotifierItem")});
    return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

void FakeStatusPanel::RegisterStatusNotifierItem(const QString &service)
{
    m_items << service;
}

void FakeStatusPanel::signalReceived(const QDBusMessage &message)
{
    m_signals << described(message);
}

FakeSettingsPortal::FakeSettingsPortal(PrivateBus &bus, uint scheme)
    : m_connection(bus.connect())
    , m_scheme(scheme)
{
    m_connection.registerObject(portalPath(), this, QDBusConnection::ExportAllSlots);
    m_connection.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
}

FakeSettingsPortal::~FakeSettingsPortal()
{
    m_connection.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
}

void FakeSettingsPortal::setScheme(uint scheme)
{
    m_scheme = scheme;
    announce(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), scheme);
}

void FakeSettingsPortal::announce(const QString &group, const QString &key, const QVariant &value)
{
    QDBusMessage signal = QDBusMessage::createSignal(portalPath(), QStringLiteral("org.freedesktop.portal.Settings"),
                                                     QStringLiteral("SettingChanged"));
    signal << group << key << QVariant::fromValue(QDBusVariant(value));
    m_connection.send(signal);
}

QDBusVariant FakeSettingsPortal::Read(const QString &, const QString &)
{
    return QDBusVariant(QVariant::fromValue(QDBusVariant(m_scheme)));
}

} // namespace tickwise::test
