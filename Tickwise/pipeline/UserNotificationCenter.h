#pragma once

#include "support/Subscription.h"

#include <QObject>
#include <QString>

namespace tickwise {

/// One notification for the user, delivered at once.
struct UserNotification
{
    QString identifier; ///< distinct for each notification
    QString title;      ///< plain text
    QString body;       ///< plain text; the center escapes it where the desktop reads markup
    bool operator==(const UserNotification &) const = default;
};

/// The desktop's notification service.
class UserNotificationCenter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Asks once, at start-up, what the service can do. Failure: there is no service, or it does not answer.
    virtual void requestAuthorization(Completion<void> done) = 0;

    /// Hands the notification over; never blocks. The completion reports the delivery's failure.
    virtual void add(const UserNotification &notification, Completion<void> done) = 0;

Q_SIGNALS:
    /// The user clicked a notification; `activationToken` is empty where the desktop gave none.
    void activated(const QString &identifier, const QString &activationToken);
};

} // namespace tickwise
