#include "ui/controls/AppLogo.h"

#include <QPainter>
#include <QSvgRenderer>

namespace tickwise {

QPixmap appLogo(int side, qreal devicePixelRatio)
{
    QPixmap pixmap(QSize(side, side) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(QStringLiteral(":/app-logo.svg")).render(&painter, QRectF(0, 0, side, side));
    return pixmap;
}

} // namespace tickwise
