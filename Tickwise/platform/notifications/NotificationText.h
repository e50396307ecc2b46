#pragma once

#include "pipeline/UserNotificationCenter.h"

#include <QStringList>
#include <QVariant>

#include <functional>

namespace tickwise {

/// Who notifies, in the desktop's terms.
struct NotificationIdentity
{
    QString applicationName; ///< shown to the user
    QString iconName;        ///< of the icon theme
    QString desktopEntry;    ///< the desktop file's name without ".desktop"
};

/// What one line of a notification can carry: control characters become blanks, and a text of more than 200 characters
/// ends in "…".
QString notificationLine(const QString &text);

/// The arguments of org.freedesktop.Notifications.Notify for a service with these capabilities: the body is escaped
/// where the service reads markup, a click's action and the sound are asked for where it knows them.
QVariantList notifyArguments(const UserNotification &notification, const NotificationIdentity &identity,
                             const QStringList &capabilities);

} // namespace tickwise
