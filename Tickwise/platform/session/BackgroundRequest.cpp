#include "platform/session/BackgroundRequest.h"

#include "platform/dbus/BusCall.h"
#include "platform/dbus/SessionBus.h"

#include <QDBusObjectPath>
#include <QUuid>

namespace tickwise {

namespace {

using Kind = DesktopServiceError::Kind;

QString backgroundInterface()
{
    return QStringLiteral("org.freedesktop.portal.Background");
}

tl::unexpected<Error> portalFailure(Kind kind, const QString &text)
{
    return failure(DesktopServiceError{kind, backgroundInterface() + QStringLiteral(": ") + text});
}

} // namespace

BackgroundRequest::BackgroundRequest(const SessionBus &bus, bool autostart, Completion<void> done, QObject *parent)
    : QObject(parent)
    , m_bus(bus.connection())
    , m_autostart(autostart)
    , m_done(std::move(done))
    , m_portalWatcher(portalService(), m_bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_portalWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &formerOwner) {
                // One that the request itself starts has no predecessor.
                if (!formerOwner.isEmpty())
                    finish(portalFailure(Kind::noService, QStringLiteral("the portal ended")));
            });
    connect(&bus, &SessionBus::disconnected, this,
            [this] { finish(portalFailure(Kind::noMessageBus, QStringLiteral("the session bus ended"))); });
}

void BackgroundRequest::send(const QString &program, const QString &reason)
{
    if (!m_bus.isConnected()) {
        // A call on such a connection never finishes.
        QMetaObject::invokeMethod(
            this, [this] { finish(portalFailure(Kind::noMessageBus, QStringLiteral("there is no session bus"))); },
            Qt::QueuedConnection);
        return;
    }
    const QString token = QStringLiteral("tickwise") + QUuid::createUuid().toString(QUuid::Id128);
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    // The answer may come before the call's own reply: its path follows from the token, so that it can be heard in
    // time.
    listen(portalPath() + QStringLiteral("/request/") + sender + u'/' + token);
    const QVariantMap options{{QStringLiteral("handle_token"), token},
                              {QStringLiteral("reason"), reason},
                              {QStringLiteral("autostart"), m_autostart},
                              {QStringLiteral("commandline"), QStringList{program}},
                              {QStringLiteral("dbus-activatable"), false}};
    const QDBusMessage call =
        portalCall(backgroundInterface(), QStringLiteral("RequestBackground"), {QString(), options});
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] { takeReply(*watcher); });
}

void BackgroundRequest::listen(const QString &requestPath)
{
    m_requestPath = requestPath;
    // Named by path and interface alone: with the sender's name QtDBus would wait for the bus to resolve it.
    m_bus.connect(QString(), requestPath, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
                  this, SLOT(takeResponse(uint, QVariantMap)));
}

void BackgroundRequest::takeReply(const QDBusPendingCallWatcher &call)
{
    const QDBusPendingReply<QDBusObjectPath> reply = call;
    if (reply.isError())
        finish(
            portalFailure(std::get<DesktopServiceError>(errorFromDBus(reply.error())).kind, reply.error().message()));
    else if (reply.value().path() != m_requestPath)
        listen(reply.value().path());
}

void BackgroundRequest::takeResponse(uint response, const QVariantMap &results)
{
    const bool granted = results.value(QStringLiteral("autostart")).toBool();
    if (response != 0)
        finish(portalFailure(Kind::refused, QStringLiteral("the request was refused")));
    else if (granted != m_autostart)
        finish(portalFailure(Kind::refused, QStringLiteral("starting at login was not granted")));
    else
        finish({});
}

void BackgroundRequest::finish(const Result<void> &result)
{
    const Completion<void> done = std::exchange(m_done, nullptr);
    if (!done)
        return;
    deleteLater();
    done(result);
}

} // namespace tickwise
