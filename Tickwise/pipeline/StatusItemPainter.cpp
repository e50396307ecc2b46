#include "pipeline/StatusItemPainter.h"

#include "pipeline/CompactPrice.h"
#include "support/drawing/TabularText.h"
#include "support/drawing/TintedSvg.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QPainter>

#include <cmath>

namespace tickwise {

namespace {

constexpr double logoSize = 18.0;    // points
constexpr double usualHeight = 22.0; // points; the panel height that radius and logo are meant for
constexpr double pillHeight = 20.0;  // points, at most
constexpr double plainPadding = 2.0; // points on each side of a text without a pill
constexpr double textPart = 0.8;     // of the panel's height, for the font's pixel size
constexpr double narrowest = 0.62;   // how far compact text may be squeezed before it is made smaller

QColor textColorOf(const StatusItemContent &content, const StatusItemStyle &style)
{
    return content.textColor.value_or(style.foreground);
}

QImage transparentImage(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// The system's font at its own size, or as large as the height allows, in device pixels.
QFont fittedFont(const QFont &font, double height, int scale)
{
    QFont fitted = font;
    const double points = std::min<double>(QFontInfo(font).pixelSize(), height * textPart);
    fitted.setPixelSize(std::max(1, int(std::round(points * scale))));
    return fitted;
}

void fillRounded(QPainter &painter, const QRectF &rect, double radius, const QColor &color)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect, radius, radius);
}

void drawLogo(QImage &image, const QColor &color, double scale)
{
    const int side = std::min({int(std::round(logoSize * scale)), image.width(), image.height()});
    const QImage logo = tintedSvg(QStringLiteral(":/menubar-logo.svg"), side, color);
    QPainter painter(&image);
    painter.drawImage((image.width() - side) / 2, (image.height() - side) / 2, logo);
}

double baselineFor(double top, double bottom, double capHeight)
{
    return std::round((top + bottom + capHeight) / 2);
}

/// One line of compact text, squeezed into the width and centered, its capitals between `top` and `bottom`.
void drawCompactLine(QPainter &painter, QFont font, const QRectF &line, const QString &text)
{
    TabularText tabular(font);
    double width = tabular.width(text);
    if (line.width() < narrowest * width) {
        font.setPixelSize(std::max(1, int(font.pixelSize() * line.width() / width / narrowest)));
        tabular = TabularText(font);
        width = tabular.width(text);
    }
    const double squeeze = std::min(line.width() / width, 1.0);
    const double left = line.center().x() - width * squeeze / 2;
    painter.save();
    painter.translate(left, baselineFor(line.top(), line.bottom(), tabular.capHeight()));
    painter.scale(squeeze, 1);
    tabular.draw(painter, 0, 0, text);
    painter.restore();
}

void drawArrow(QPainter &painter, const QRectF &box, StatusTrend trend, const QColor &color)
{
    const double side = trend == StatusTrend::up ? 1 : -1;
    const double halfHeight = box.height() * 0.3 * side;
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{QPointF(box.left(), box.center().y() + halfHeight),
                                  QPointF(box.right(), box.center().y() + halfHeight),
                                  QPointF(box.center().x(), box.center().y() - halfHeight)});
}

/// The coin's initial, ringed where no pill holds it together.
void drawInitial(QPainter &painter, QFont font, const QRectF &box, const StatusItemContent &content,
                 const QColor &color)
{
    const double line = std::max(1.0, std::round(box.width() / 14));
    painter.setPen(QPen(color, line));
    painter.setBrush(Qt::NoBrush);
    if (!content.pillColor)
        painter.drawEllipse(box.marginsRemoved(QMarginsF(line, line, line, line) / 2));
    font.setBold(true);
    font.setPixelSize(std::max(1, int(box.height() * 0.7)));
    drawCompactLine(painter, font, box, content.symbol.left(1));
}

} // namespace

StatusItemStyle statusItemStyle(PanelAppearance appearance)
{
    return {QFontDatabase::systemFont(QFontDatabase::GeneralFont),
            appearance == PanelAppearance::light ? QColor(0x20, 0x20, 0x20) : QColor(0xf2, 0xf2, 0xf2)};
}

double statusItemWidth(const StatusItemContent &content, const QFont &font, double height)
{
    if (content.logo)
        return StatusItemContent::logoLength;
    const double text = TabularText(fittedFont(font, height, 1)).width(content.text);
    return std::ceil(content.pillColor ? text : text + 2 * plainPadding);
}

QImage paintStatusItem(const StatusItemContent &content, const StatusItemStyle &style, double width, double height,
                       int scale)
{
    QImage image = transparentImage(int(std::ceil(width * scale)), int(std::round(height * scale)));
    if (content.logo) {
        drawLogo(image, style.foreground, scale * std::min(1.0, height / usualHeight));
        return image;
    }
    QPainter painter(&image);
    if (content.pillColor) {
        const double pill = std::min(pillHeight * scale, double(image.height()));
        fillRounded(painter, QRectF(0, std::floor((image.height() - pill) / 2), image.width(), pill),
                    StatusItemContent::pillRadius * scale, *content.pillColor);
    }
    const TabularText tabular(fittedFont(style.font, height, scale));
    const double left = std::round((image.width() - tabular.width(content.text)) / 2);
    painter.setPen(textColorOf(content, style));
    tabular.draw(painter, left, baselineFor(0, image.height(), tabular.capHeight()), content.text);
    return image;
}

QImage paintCompactStatusItem(const StatusItemContent &content, const StatusItemStyle &style, int pixels)
{
    QImage image = transparentImage(pixels, pixels);
    if (content.logo) {
        drawLogo(image, style.foreground, pixels / usualHeight);
        return image;
    }
    QPainter painter(&image);
    const double unit = pixels / usualHeight;
    if (content.pillColor)
        fillRounded(painter, image.rect(), StatusItemContent::pillRadius * unit, *content.pillColor);
    const double margin = content.pillColor ? unit : 0;
    QFont font = style.font;
    font.setWeight(QFont::DemiBold);
    font.setPixelSize(std::max(1, pixels / 2));
    painter.setPen(textColorOf(content, style));
    const QRectF inner = QRectF(image.rect()).adjusted(margin, unit, -margin, -unit);
    const double half = inner.height() / 2;
    drawCompactLine(painter, font, QRectF(inner.left(), inner.top(), inner.width(), half), content.symbol);
    drawCompactLine(painter, font, QRectF(inner.left(), inner.top() + half, inner.width(), half),
                    compactPrice(content.price));
    return image;
}

QImage paintStatusBadge(const StatusItemContent &content, const StatusItemStyle &style, int pixels)
{
    QImage image = transparentImage(pixels, pixels);
    if (content.logo) {
        drawLogo(image, style.foreground, pixels / usualHeight);
        return image;
    }
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = std::round(pixels / usualHeight * 2);
    const QRectF inner = QRectF(image.rect()).adjusted(inset, inset, -inset, -inset);
    const QColor color = textColorOf(content, style);
    if (content.pillColor)
        fillRounded(painter, inner, StatusItemContent::pillRadius * pixels / usualHeight, *content.pillColor);
    if (content.trend != StatusTrend::none)
        drawArrow(painter, content.pillColor ? inner.marginsRemoved(QMarginsF(inset, inset, inset, inset)) : inner,
                  content.trend, color);
    else
        drawInitial(painter, style.font, inner, content, color);
    return image;
}

} // namespace tickwise
