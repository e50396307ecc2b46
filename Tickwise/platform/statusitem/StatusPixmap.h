#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QString>

namespace tickwise {

/// An image as `org.kde.StatusNotifierItem` wants it, D-Bus type (iiay).
struct StatusPixmap
{
    int width = 0;    ///< device pixels
    int height = 0;   ///< device pixels
    QByteArray bytes; ///< ARGB32, network byte order, not premultiplied
    bool operator==(const StatusPixmap &) const = default;
};

/// The tool tip, D-Bus type (sa(iiay)ss).
struct StatusToolTip
{
    QString title;
    QString body; ///< the simple markup that hosts understand
    bool operator==(const StatusToolTip &) const = default;
};

/// The image as a pixmap; `premultiplied` for the hosts that read the alpha so.
StatusPixmap statusPixmap(const QImage &image, bool premultiplied = false);

QDBusArgument &operator<<(QDBusArgument &argument, const StatusPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, StatusPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const StatusToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, StatusToolTip &toolTip);

/// Makes the types above known to QtDBus; may be called again.
void registerStatusPixmapTypes();

} // namespace tickwise

Q_DECLARE_METATYPE(tickwise::StatusPixmap)
Q_DECLARE_METATYPE(tickwise::StatusToolTip)
