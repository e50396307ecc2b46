#include "ui/controls/ProminentButton.h"

#include "support/drawing/Contrast.h"
#include "ui/controls/Look.h"

#include <QPainter>

namespace tickwise {

namespace {

constexpr int buttonHeight = 32;
constexpr int prominentPadding = 16;
constexpr double focusGap = 3;
constexpr int hoverLightness = 108;  // percent
constexpr int pressedDarkness = 112; // percent

QColor ground(const QAbstractButton &button)
{
    const QColor accent = look::accent(button.palette());
    if (button.isDown())
        return accent.darker(pressedDarkness);
    return button.underMouse() ? accent.lighter(hoverLightness) : accent;
}

} // namespace

ProminentButton::ProminentButton(QWidget *parent)
    : FlatButton(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ProminentButton::sizeHint() const
{
    const QFontMetrics metrics(look::font(look::bodySize, QFont::DemiBold));
    return {metrics.horizontalAdvance(text()) + 2 * look::scaled(prominentPadding), look::scaled(buttonHeight)};
}

void ProminentButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = look::scaled(look::rowRadius);
    const QRectF box = hasFocus() ? QRectF(rect()).adjusted(focusGap, focusGap, -focusGap, -focusGap) : QRectF(rect());
    painter.setPen(Qt::NoPen);
    const QColor filling = ground(*this);
    painter.setBrush(filling);
    painter.drawRoundedRect(box, radius, radius);
    painter.setFont(look::font(look::bodySize, QFont::DemiBold));
    painter.setPen(readableOn(filling, palette().color(QPalette::HighlightedText)));
    painter.drawText(rect(), int(Qt::AlignCenter), text());
    if (hasFocus())
        look::drawFocusRing(painter, rect(), radius, palette());
}

} // namespace tickwise
