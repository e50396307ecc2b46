#include "doubles/PrivateBus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QFile>
#include <QUuid>

#include <csignal>

namespace tickwise::test {

namespace {

constexpr char configuration[] = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>%1</listen>
  <servicedir>%2</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
    %3
  </policy>
</busconfig>
)";

/// A call of the bus itself.
QDBusMessage busCallOf(const QString &method)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

} // namespace

PrivateBus::PrivateBus()
    : PrivateBus(QStringList())
{
}

PrivateBus::PrivateBus(const QStringList &refusedNames)
{
    QString refusals;
    for (const QString &name : refusedNames)
        refusals += QStringLiteral("<deny own=\"%1\"/>").arg(name);
    QFile file(m_directory.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no file for the private bus: %s", qPrintable(file.errorString()));
    file.write(QString::fromLatin1(configuration).arg(address(), m_directory.path(), refusals).toUtf8());
    file.close();
    start();
}

PrivateBus::~PrivateBus()
{
    for (const QString &name : std::as_const(m_connections))
        QDBusConnection::disconnectFromBus(name);
    stop();
}

void PrivateBus::start()
{
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + m_directory.filePath(QStringLiteral("bus.conf")),
                    QStringLiteral("--nofork"), QStringLiteral("--nosyslog"), QStringLiteral("--print-address")});
    while (!m_daemon.canReadLine()) {
        if (!m_daemon.waitForReadyRead(10000))
            qFatal("dbus-daemon did not start: %s", m_daemon.readAllStandardError().constData());
    }
    m_daemon.readLine();
}

void PrivateBus::stop()
{
    m_daemon.terminate();
    m_daemon.waitForFinished(5000);
    QFile::remove(m_directory.filePath(QStringLiteral("bus")));
}

void PrivateBus::kill()
{
    m_daemon.kill();
    m_daemon.waitForFinished(5000);
    QFile::remove(m_directory.filePath(QStringLiteral("bus")));
}

void PrivateBus::pause()
{
    ::kill(pid_t(m_daemon.processId()), SIGSTOP);
}

void PrivateBus::resume()
{
    ::kill(pid_t(m_daemon.processId()), SIGCONT);
}

void PrivateBus::addActivation(const QString &service, const QString &command)
{
    QFile file(m_directory.filePath(service + QStringLiteral(".service")));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no service file for the private bus: %s", qPrintable(file.errorString()));
    file.write(QStringLiteral("[D-BUS Service]\nName=%1\nExec=%2\n").arg(service, command).toUtf8());
    file.close();
    connect().call(busCallOf(QStringLiteral("ReloadConfig")));
}

QString PrivateBus::address() const
{
    return QStringLiteral("unix:path=") + m_directory.filePath(QStringLiteral("bus"));
}

QDBusConnection PrivateBus::connect()
{
    const QString name = QUuid::createUuid().toString();
    m_connections.append(name);
    const QDBusConnection connection = QDBusConnection::connectToBus(address(), name);
    if (!connection.isConnected())
        qFatal("no connection to the private bus: %s", qPrintable(connection.lastError().message()));
    return connection;
}

bool PrivateBus::settle(const QDBusConnection &connection)
{
    return connection.call(busCallOf(QStringLiteral("GetId"))).type() == QDBusMessage::ReplyMessage;
}

} // namespace tickwise::test
