#include "platform/PrivateBus.h"

#include <QFile>
#include <QUuid>

#include <csignal>

namespace tickwise::test {

namespace {

const char configuration[] = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

PrivateBus::PrivateBus()
{
    const QString path = m_directory.filePath(QStringLiteral("bus.conf"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration) < 0)
        return;
    file.close();
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--config-file=") + path,
                                                   QStringLiteral("--print-address"), QStringLiteral("--nofork")});
    if (m_daemon.waitForReadyRead())
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
}

PrivateBus::~PrivateBus()
{
    for (const QString &name : m_connections)
        QDBusConnection::disconnectFromBus(name);
    m_daemon.terminate();
    m_daemon.waitForFinished();
}

QDBusConnection PrivateBus::connect()
{
    m_connections << QUuid::createUuid().toString();
    return QDBusConnection::connectToBus(m_address, m_connections.last());
}

void PrivateBus::pause()
{
    ::kill(pid_t(m_daemon.processId()), SIGSTOP);
}

void PrivateBus::resume()
{
    ::kill(pid_t(m_daemon.processId()), SIGCONT);
}

} // namespace tickwise::test
