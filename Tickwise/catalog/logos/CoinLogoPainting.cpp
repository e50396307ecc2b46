#include "catalog/logos/CoinLogoPainting.h"

#include "catalog/ShippedImages.h"
#include "support/Graphemes.h"
#include "support/drawing/SvgPainting.h"

#include <QGuiApplication>
#include <QPainter>

namespace tickwise {

namespace {

constexpr int letterCount = 3;
constexpr int letterSize = 8; // device-independent pixels
constexpr float fillOpacity = 0.15F;

} // namespace

bool paintShippedLogo(QPainter &painter, const QRectF &box, const QString &assetName)
{
    if (assetName.isEmpty() || !shippedImageExists(assetName))
        return false;
    return paintSvg(painter, box, shippedImagePath(assetName));
}

void paintLogoImage(QPainter &painter, const QRectF &box, const QImage &image)
{
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(box, image);
    painter.restore();
}

QString placeholderLetters(const QString &symbol)
{
    return firstCharacters(symbol, letterCount);
}

void paintLogoPlaceholder(QPainter &painter, const QRectF &box, const QString &symbol, const QColor &accent)
{
    QColor fill = accent;
    fill.setAlphaF(fillOpacity);
    QFont font = QGuiApplication::font();
    font.setBold(true);
    font.setPixelSize(letterSize);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawEllipse(box);
    painter.setFont(font);
    painter.setPen(accent);
    painter.drawText(box, int(Qt::AlignCenter) | int(Qt::TextDontClip), placeholderLetters(symbol));
    painter.restore();
}

void paintCoinLogo(QPainter &painter, const QRectF &box, const std::optional<QString> &assetName,
                   const std::optional<QImage> &image, const QString &symbol, const QColor &accent)
{
    if (assetName && paintShippedLogo(painter, box, *assetName))
        return;
    if (image)
        paintLogoImage(painter, box, *image);
    else
        paintLogoPlaceholder(painter, box, symbol, accent);
}

} // namespace tickwise
