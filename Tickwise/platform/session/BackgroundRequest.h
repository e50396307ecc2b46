#pragma once

#include "support/Subscription.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariantMap>

#include <memory>

class QDBusPendingCallWatcher;

namespace tickwise {

class PortalRequest;

/// One question to org.freedesktop.portal.Background: may the application start at login? Deletes itself after `done`.
class BackgroundRequest : public QObject
{
    Q_OBJECT

public:
    BackgroundRequest(const QDBusConnection &bus, bool autostart, Completion<void> done, QObject *parent);
    ~BackgroundRequest() override;

    /// `program` is the command inside the sandbox, `reason` is shown to the user.
    void send(const QString &program, const QString &reason);

private:
    void listen(const QString &requestPath);
    void takeReply(const QDBusPendingCallWatcher &call);
    void takeResponse(uint response, const QVariantMap &results);
    void finish(const Result<void> &result);

    QDBusConnection m_bus;
    bool m_autostart;
    Completion<void> m_done;
    QDBusServiceWatcher m_portalWatcher;
    QString m_requestPath;
    std::unique_ptr<PortalRequest> m_request;
};

} // namespace tickwise
