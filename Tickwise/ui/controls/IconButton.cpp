#include "ui/controls/IconButton.h"

#include "ui/controls/Look.h"
#include "ui/controls/SymbolImage.h"

#include <QEvent>
#include <QPainter>

namespace tickwise {

namespace {

constexpr int side = 28;
constexpr int iconSide = 16;
constexpr int textSymbolSide = 14;
constexpr int iconGap = 4;
constexpr int iconPadding = 6;

} // namespace

IconButton::IconButton(const QString &symbol, QWidget *parent)
    : FlatButton(parent)
    , m_symbol(symbol)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void IconButton::setHelp(const QString &help)
{
    setToolTip(help);
    setAccessibleName(text().isEmpty() ? help : text());
    setAccessibleDescription(text().isEmpty() ? QString() : help);
}

QSize IconButton::sizeHint() const
{
    const int height = look::scaled(side);
    if (text().isEmpty())
        return {height, height};
    const int words = QFontMetrics(look::font(look::captionSize)).horizontalAdvance(text());
    return {look::scaled(2 * iconPadding + textSymbolSide + iconGap) + words, height};
}

bool IconButton::event(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)
        updateGeometry();
    return FlatButton::event(event);
}

void IconButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int radius = look::scaled(look::rowRadius);
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() ? look::pressed(palette()) : look::hover(palette()));
        painter.drawRoundedRect(rect(), radius, radius);
    }
    const bool hasText = !text().isEmpty();
    const QColor color = hasText ? look::accent(palette()) : look::text(palette());
    const int symbol = look::scaled(hasText ? textSymbolSide : iconSide);
    const int left = hasText ? look::scaled(iconPadding) : (width() - symbol) / 2;
    painter.drawPixmap(left, (height() - symbol) / 2, symbolPixmap(m_symbol, color, symbol, devicePixelRatioF()));
    if (hasText) {
        const QRect words = rect().adjusted(left + symbol + look::scaled(iconGap), 0, 0, 0);
        painter.setFont(look::font(look::captionSize));
        painter.setPen(look::text(palette()));
        painter.drawText(words, int(Qt::AlignLeft) | int(Qt::AlignVCenter), text());
    }
    if (hasFocus())
        look::drawFocusRing(painter, rect(), radius, palette());
}

} // namespace tickwise
