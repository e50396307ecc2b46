#include "ui/controls/Look.h"

#include "support/drawing/Contrast.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

#include <cmath>

namespace tickwise::look {

namespace {

constexpr float secondaryOpacity = 0.65F;
constexpr float hoveredSecondaryOpacity = 0.70F;
constexpr float separatorOpacity = 0.12F;
constexpr float hoverOpacity = 0.06F;
constexpr float pressedOpacity = 0.10F;
constexpr double focusWidth = 2;

QColor textAt(const QPalette &palette, float opacity)
{
    QColor color = text(palette);
    color.setAlphaF(opacity);
    return color;
}

} // namespace

int scaled(double points)
{
    return int(std::lround(points * textScale()));
}

QFont font(int points, QFont::Weight weight)
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(scaled(points));
    font.setWeight(weight);
    return font;
}

QColor text(const QPalette &palette)
{
    return palette.color(QPalette::WindowText);
}

QColor secondaryText(const QPalette &palette, Ground ground)
{
    return textAt(palette, ground == Ground::hovered ? hoveredSecondaryOpacity : secondaryOpacity);
}

QColor separator(const QPalette &palette)
{
    return textAt(palette, separatorOpacity);
}

QColor hover(const QPalette &palette)
{
    return textAt(palette, hoverOpacity);
}

QColor pressed(const QPalette &palette)
{
    return textAt(palette, pressedOpacity);
}

QColor accent(const QPalette &palette)
{
    return palette.color(QPalette::Highlight);
}

QColor link(const QPalette &palette)
{
    const QColor color = palette.color(QPalette::Link);
    return contrast(color, palette.color(QPalette::Window)) < readableContrast ? text(palette) : color;
}

void drawFocusRing(QPainter &painter, const QRectF &box, double radius, const QPalette &palette)
{
    constexpr double inset = focusWidth / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(accent(palette), focusWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

} // namespace tickwise::look
