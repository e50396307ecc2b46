#include "ui/SymbolImage.h"

#include <QColor>
#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

namespace tickwise {

namespace {

QPixmap drawSymbol(const QString &path, const QColor &color, int pixels)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    return pixmap;
}

} // namespace

QPixmap symbolPixmap(const QString &name, const QColor &color, int side, qreal devicePixelRatio)
{
    const QString path = QStringLiteral(":/symbols/%1.svg").arg(name);
    const int pixels = int(std::ceil(side * devicePixelRatio));
    if (name.isEmpty() || pixels < 1 || !QFile::exists(path))
        return {};
    const QString key = QStringLiteral("%1 %2 %3").arg(path, color.name(QColor::HexArgb)).arg(pixels);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = drawSymbol(path, color, pixels);
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

} // namespace tickwise
