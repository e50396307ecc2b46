#pragma once

#include "support/Subscription.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantMap>

class QDBusPendingCallWatcher;

namespace tickwise {

class SessionBus;

/// One question to org.freedesktop.portal.Background: may the application start at login? Deletes itself after `done`.
class BackgroundRequest : public QObject
{
    Q_OBJECT

public:
    /// Fails when `bus` ends, which has to outlive the request.
    BackgroundRequest(const SessionBus &bus, bool autostart, Completion<void> done, QObject *parent);

    /// `program` is the command inside the sandbox, `reason` is shown to the user.
    void send(const QString &program, const QString &reason);

private Q_SLOTS:
    void takeResponse(uint response, const QVariantMap &results);

private:
    void listen(const QString &requestPath);
    void takeReply(const QDBusPendingCallWatcher &call);
    void finish(const Result<void> &result);

    QDBusConnection m_bus;
    bool m_autostart;
    Completion<void> m_done;
    QDBusServiceWatcher m_portalWatcher;
    QString m_requestPath;
};

} // namespace tickwise
