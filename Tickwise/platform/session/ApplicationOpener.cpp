#include "platform/session/ApplicationOpener.h"

#include "platform/dbus/BusCall.h"
#include "platform/dbus/SessionBus.h"
#include "support/LogCategories.h"

#include <QProcess>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcOpener, "com.pelmo.tickwise.ApplicationOpener")

bool isTimeout(const Error &error)
{
    const auto *const failed = std::get_if<DesktopServiceError>(&error);
    return failed && failed->kind == DesktopServiceError::Kind::timedOut;
}

} // namespace

ApplicationOpener::ApplicationOpener(const SessionBus &bus, QString applicationId, QString ownProgram, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_applicationId(std::move(applicationId))
    , m_ownProgram(std::move(ownProgram))
{
}

void ApplicationOpener::open(const QString &address)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_applicationId, u'/' + QString(m_applicationId).replace(u'.', u'/'),
                                       QStringLiteral("org.freedesktop.Application"), QStringLiteral("Open"));
    call << QStringList{address} << QVariantMap();
    sendCall<void>(m_bus.connection(), call, this, [this, address](const Result<void> &answer) {
        if (answer)
            return;
        // A copy that runs and does not answer would not answer a second one either.
        if (isTimeout(answer.error()))
            qCWarning(lcOpener).noquote() << "The application did not answer:" << description(answer.error());
        else
            start(address);
    });
}

void ApplicationOpener::start(const QString &address) const
{
    if (!QProcess::startDetached(m_ownProgram, {address}))
        qCWarning(lcOpener).noquote() << "The application cannot be started:" << m_ownProgram;
}

} // namespace tickwise
