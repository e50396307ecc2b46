#include "platform/notifications/NotificationText.h"

#include "support/Graphemes.h"
#include "support/Localization.h"
#include "support/Markup.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr qsizetype longestLine = 200; ///< characters
constexpr uchar normalUrgency = 1;
constexpr int serviceDecides = -1; ///< how long the notification stays

bool isControl(QChar character)
{
    const QChar::Category category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

QString shortened(const QString &text)
{
    return characterCount(text) > longestLine ? firstCharacters(text, longestLine - 1) + u'…' : text;
}

} // namespace

QString notificationLine(const QString &text)
{
    // Cut before it is looked at: a character may join any number of code points.
    QString line = text.left(longestLine * 16);
    std::ranges::replace_if(line, isControl, QChar(u' '));
    return shortened(line);
}

QVariantList notifyArguments(const UserNotification &notification, const NotificationIdentity &identity,
                             const QStringList &capabilities)
{
    const auto can = [&](const QString &capability) { return capabilities.contains(capability); };
    const QString body = notificationLine(notification.body);
    QStringList actions;
    if (can(QStringLiteral("actions")))
        actions = {QStringLiteral("default"), localized(QStringLiteral("menu.open"))};
    QVariantMap hints{{QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)},
                      {QStringLiteral("desktop-entry"), identity.desktopEntry}};
    if (can(QStringLiteral("sound")))
        hints.insert(QStringLiteral("sound-name"), QStringLiteral("message-new-instant"));
    constexpr uint replacesNothing = 0;
    return {identity.applicationName,
            replacesNothing,
            identity.iconName,
            notificationLine(notification.title),
            can(QStringLiteral("body-markup")) ? plainTextMarkup(body) : body,
            actions,
            hints,
            serviceDecides};
}

} // namespace tickwise
