#include "ui/controls/SymbolImage.h"

#include "support/drawing/TintedSvg.h"

#include <QColor>
#include <QPixmapCache>

#include <cmath>

namespace tickwise {

QPixmap symbolPixmap(const QString &name, const QColor &color, int side, qreal devicePixelRatio)
{
    const int pixels = int(std::ceil(side * devicePixelRatio));
    if (pixels < 1)
        return {};
    const QString key = QStringLiteral("symbol %1 %2 %3").arg(name, color.name(QColor::HexArgb)).arg(pixels);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = QPixmap::fromImage(tintedSymbol(name, pixels, color));
        if (!pixmap.isNull())
            QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

} // namespace tickwise
