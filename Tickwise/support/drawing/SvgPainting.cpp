#include "support/drawing/SvgPainting.h"

#include <QCache>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <memory>

namespace tickwise {

namespace {

constexpr int keptBytes = 1024 * 1024;

/// None when the file cannot be read.
std::unique_ptr<QImage> rendered(const QString &path, QSize pixels)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return nullptr;
    auto image = std::make_unique<QImage>(pixels, QImage::Format_ARGB32_Premultiplied);
    image->fill(Qt::transparent);
    QPainter painter(image.get());
    renderer.render(&painter, QRectF(QPointF(), pixels));
    return image;
}

} // namespace

bool paintSvg(QPainter &painter, const QRectF &box, const QString &path)
{
    static QCache<QString, QImage> images(keptBytes);
    const QRectF onDevice = painter.deviceTransform().mapRect(box);
    const QSize pixels = onDevice.size().toSize().expandedTo(QSize(1, 1));
    const QString key = QStringLiteral("%1 %2x%3").arg(path).arg(pixels.width()).arg(pixels.height());
    if (!images.contains(key)) {
        std::unique_ptr<QImage> image = rendered(path, pixels);
        if (!image)
            return false;
        const auto cost = int(std::min<qsizetype>(image->sizeInBytes(), keptBytes));
        images.insert(key, image.release(), cost);
    }
    const QTransform &transform = painter.deviceTransform();
    const QPointF offset(std::round(onDevice.x()) - onDevice.x(), std::round(onDevice.y()) - onDevice.y());
    painter.drawImage(box.translated(offset.x() / transform.m11(), offset.y() / transform.m22()), *images.object(key));
    return true;
}

} // namespace tickwise
