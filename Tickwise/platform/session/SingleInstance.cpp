#include "platform/session/SingleInstance.h"

#include "platform/dbus/BusCall.h"
#include "platform/dbus/SessionBus.h"
#include "platform/session/ApplicationAdaptor.h"
#include "support/LogCategories.h"

#include <QDBusReply>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcSingleInstance, "com.pelmo.tickwise.SingleInstance")

constexpr int callTimeoutMs = 900;
constexpr uint waitInQueue = 0;

QString applicationInterface()
{
    return QStringLiteral("org.freedesktop.Application");
}

/// The folder when it is a real one of this user that nobody else may enter.
bool isPrivateFolder(const QString &path)
{
    struct stat information = {};
    return ::lstat(QFile::encodeName(path).constData(), &information) == 0 && S_ISDIR(information.st_mode) &&
           information.st_uid == ::getuid() && (information.st_mode & 077) == 0;
}

} // namespace

SingleInstance::SingleInstance(QString applicationId, SessionBus &bus, QString lockDirectory, QObject *parent)
    : QObject(parent)
    , m_applicationId(std::move(applicationId))
    , m_objectPath(u'/' + QString(m_applicationId).replace(u'.', u'/'))
    , m_bus(bus)
    , m_lockDirectory(std::move(lockDirectory))
{
    new ApplicationAdaptor(this);
}

SingleInstance::~SingleInstance()
{
    QDBusConnection(m_bus.connection()).unregisterObject(m_objectPath);
    if (m_lockFile >= 0)
        ::close(m_lockFile);
}

SingleInstance::Role SingleInstance::claim(const QStringList &addresses, const QString &activationToken)
{
    if (requestName() == NameRequest::taken) {
        forward(addresses, activationToken);
        return Role::alreadyRunning;
    }
    // Also with the name: a copy without a bus, or on another one, has only the lock.
    if (!takeLock())
        return Role::alreadyRunning;
    connect(&m_bus, &SessionBus::connected, this, &SingleInstance::requestNameAgain);
    return Role::first;
}

SingleInstance::NameRequest SingleInstance::requestName()
{
    // The object has to be there before the name: a call that the bus held back arrives together with the name.
    QDBusConnection bus = m_bus.connection();
    if (!bus.isConnected() || !bus.registerObject(m_objectPath, this, QDBusConnection::ExportAdaptors))
        return NameRequest::noBus;
    const QDBusMessage request = busCall(QStringLiteral("RequestName"), {m_applicationId, busName::doNotQueue});
    const QDBusReply<uint> reply = bus.call(request, QDBus::Block, callTimeoutMs);
    if (reply.isValid() && (reply.value() == busName::primaryOwner || reply.value() == busName::alreadyOwner))
        return NameRequest::granted;
    bus.unregisterObject(m_objectPath);
    return reply.isValid() ? NameRequest::taken : NameRequest::noBus;
}

// A second copy that has just started may hold the name until it has seen the lock file.
void SingleInstance::requestNameAgain()
{
    QDBusConnection bus = m_bus.connection();
    bus.registerObject(m_objectPath, this, QDBusConnection::ExportAdaptors);
    sendCall<uint>(bus, busCall(QStringLiteral("RequestName"), {m_applicationId, waitInQueue}), this,
                   [](const Result<uint> &answer) {
                       if (!answer)
                           qCInfo(lcSingleInstance) << "No name on the session bus:" << description(answer.error());
                   });
}

void SingleInstance::forward(const QStringList &addresses, const QString &activationToken)
{
    const QString method = addresses.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("Open");
    QDBusMessage message =
        QDBusMessage::createMethodCall(m_applicationId, m_objectPath, applicationInterface(), method);
    message.setAutoStartService(false);
    if (!addresses.isEmpty())
        message << addresses;
    QVariantMap platformData;
    if (!activationToken.isEmpty())
        platformData = {{ApplicationAdaptor::tokenKey(), activationToken},
                        {ApplicationAdaptor::startupIdKey(), activationToken}};
    message << platformData;
    if (const QDBusMessage reply = m_bus.connection().call(message, QDBus::Block, callTimeoutMs);
        reply.type() == QDBusMessage::ErrorMessage) {
        qCInfo(lcSingleInstance).noquote() << "The running copy did not answer:" << reply.errorMessage();
    }
}

/// True also where no lock file can be made.
bool SingleInstance::takeLock()
{
    if (m_lockFile >= 0 || m_lockDirectory.isEmpty())
        return true;
    const QString path = m_lockDirectory + u'/' + m_applicationId + QStringLiteral(".lock");
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0) {
        qCInfo(lcSingleInstance).noquote() << "No lock file:" << path << qt_error_string(errno);
        return true;
    }
    // The kernel releases the lock when its process ends, however it ends: the file itself means nothing.
    if (::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(file);
        return false;
    }
    m_lockFile = file;
    return true;
}

QString SingleInstance::defaultLockDirectory(const QString &applicationId)
{
    QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (isPrivateFolder(runtime))
        return runtime;
    QString own = QDir::tempPath() + u'/' + applicationId + u'-' + QString::number(::getuid());
    ::mkdir(QFile::encodeName(own).constData(), 0700);
    return isPrivateFolder(own) ? own : QString();
}

} // namespace tickwise
