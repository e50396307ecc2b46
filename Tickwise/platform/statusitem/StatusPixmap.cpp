#include "platform/statusitem/StatusPixmap.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace tickwise {

StatusPixmap statusPixmap(const QImage &image, bool premultiplied)
{
    const QImage pixels =
        image.convertToFormat(premultiplied ? QImage::Format_ARGB32_Premultiplied : QImage::Format_ARGB32);
    StatusPixmap pixmap{pixels.width(), pixels.height(), {}};
    pixmap.bytes.resize(qsizetype(pixmap.width) * pixmap.height * 4);
    char *out = pixmap.bytes.data();
    for (int y = 0; y < pixmap.height; ++y) {
        qToBigEndian<quint32>(pixels.constScanLine(y), pixmap.width, out);
        out += qsizetype(pixmap.width) * 4;
    }
    return pixmap;
}

QDBusArgument &operator<<(QDBusArgument &argument, const StatusPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const StatusToolTip &toolTip)
{
    argument.beginStructure();
    argument << QString() << QList<StatusPixmap>() << toolTip.title << toolTip.body;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, StatusToolTip &toolTip)
{
    QString iconName;
    QList<StatusPixmap> pixmaps;
    argument.beginStructure();
    argument >> iconName >> pixmaps >> toolTip.title >> toolTip.body;
    argument.endStructure();
    return argument;
}

void registerStatusPixmapTypes()
{
    qDBusRegisterMetaType<StatusPixmap>();
    qDBusRegisterMetaType<QList<StatusPixmap>>();
    qDBusRegisterMetaType<StatusToolTip>();
}

} // namespace tickwise
