#include "ui/controls/CoinLogoPixmap.h"

#include "catalog/logos/CoinLogoPainting.h"
#include "catalog/logos/CoinLogoStore.h"

#include <QPainter>
#include <QPixmapCache>

#include <cmath>

namespace tickwise {

namespace {

/// What tells this picture from every other of the same size.
QString pictureName(const CoinMetadata &coin, const std::optional<QImage> &image, const QColor &accent)
{
    if (coin.logoAssetName && !coin.logoAssetName->isEmpty())
        return *coin.logoAssetName;
    if (image)
        return QStringLiteral("image %1").arg(image->cacheKey());
    return coin.symbol + QLatin1Char(' ') + accent.name(QColor::HexArgb);
}

} // namespace

QPixmap coinLogoPixmap(const CoinMetadata &coin, CoinLogoStore *store, const QColor &accent, int side,
                       qreal devicePixelRatio)
{
    const int pixels = int(std::ceil(side * devicePixelRatio));
    if (pixels < 1)
        return {};
    const bool isShipped = coin.logoAssetName && !coin.logoAssetName->isEmpty();
    const std::optional<QImage> image = store && !isShipped ? store->image(coin.id) : std::nullopt;
    const QString key =
        QStringLiteral("logo %1 %2").arg(pixels).arg(devicePixelRatio) + pictureName(coin, image, accent);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = QPixmap(pixels, pixels);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintCoinLogo(painter, QRectF(0, 0, side, side), coin.logoAssetName, image, coin.symbol, accent);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace tickwise
