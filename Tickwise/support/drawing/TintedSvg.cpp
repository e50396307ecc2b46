#include "support/drawing/TintedSvg.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace tickwise {

QImage tintedSvg(const QString &path, int pixels, const QColor &color)
{
    if (!QFile::exists(path))
        return {};
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage tintedSymbol(const QString &name, int pixels, const QColor &color)
{
    return name.isEmpty() ? QImage() : tintedSvg(QStringLiteral(":/symbols/%1.svg").arg(name), pixels, color);
}

} // namespace tickwise
