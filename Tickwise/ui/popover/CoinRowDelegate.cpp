#include "ui/popover/CoinRowDelegate.h"

#include "ui/controls/CoinLogoPixmap.h"
#include "ui/controls/Look.h"

#include <QPainter>
#include <QWidget>

#include <cmath>

namespace tickwise {

namespace {

constexpr int sideMargin = 8;    // of the ground that hover and focus show
constexpr int groundPadding = 8; // inside that ground
constexpr int popoverLogoSide = 32;
constexpr int columnGap = 10;
constexpr int lineGap = 3;
constexpr double widestNumber = 0.6; // of the row's width

/// Draws right-aligned in the box, or cut where it is too long for it. Returns the width that was used.
int drawNumber(QPainter &painter, const QRect &box, int baseline, const QString &text, const QFont &font,
               const TabularText &tabular)
{
    const double width = tabular.width(text);
    if (width <= box.width()) {
        tabular.draw(painter, box.right() + 1 - width, baseline, text);
        return int(std::ceil(width));
    }
    painter.setFont(font);
    const QString cut = QFontMetrics(font).elidedText(text, Qt::ElideRight, box.width());
    painter.drawText(box.left(), baseline, cut);
    return box.width();
}

} // namespace

CoinRowDelegate::CoinRowDelegate(const CoinRowModel &model, CoinLogoStore *logos, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_model(model)
    , m_logos(logos)
    , m_fonts(currentFonts())
{
}

CoinRowDelegate::Fonts CoinRowDelegate::currentFonts()
{
    const QFont symbol = look::font(look::bodySize, QFont::Medium);
    const QFont price = look::font(look::bodySize, QFont::DemiBold);
    const QFont change = look::font(look::captionSize);
    return {symbol, price, change, TabularText(price), TabularText(change)};
}

void CoinRowDelegate::applyMetrics()
{
    m_fonts = currentFonts();
}

QSize CoinRowDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    // As wide as the list is: a list with a wish for width would scroll sideways.
    return {1, look::scaled(rowHeight)};
}

void CoinRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const CoinRowContent content = m_model.content(index.row());
    painter->save();
    paintGround(*painter, option);
    const int margin = look::scaled(sideMargin + groundPadding);
    const QRect box = option.rect.adjusted(margin, 0, -margin, 0);
    const int side = look::scaled(popoverLogoSide);
    const double ratio = painter->device()->devicePixelRatioF();
    painter->drawPixmap(box.left(), box.top() + (box.height() - side) / 2,
                        coinLogoPixmap(m_model.coin(index.row()), m_logos, look::accent(option.palette), side, ratio));
    const int numbers = paintNumbers(*painter, box, content, option);
    const QRect words = box.adjusted(side + look::scaled(columnGap), 0, -numbers - look::scaled(columnGap), 0);
    painter->setFont(m_fonts.symbol);
    painter->setPen(look::text(option.palette));
    const QString symbol = QFontMetrics(m_fonts.symbol).elidedText(content.symbol, Qt::ElideRight, words.width());
    painter->drawText(words, int(Qt::AlignLeft | Qt::AlignAbsolute) | int(Qt::AlignVCenter), symbol);
    painter->restore();
}

void CoinRowDelegate::paintGround(QPainter &painter, const QStyleOptionViewItem &option) const
{
    const int margin = look::scaled(sideMargin);
    const QRect ground = option.rect.adjusted(margin, 1, -margin, -1);
    const int radius = look::scaled(look::rowRadius);
    if (option.state.testFlag(QStyle::State_MouseOver)) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(look::hover(option.palette));
        painter.drawRoundedRect(ground, radius, radius);
    }
    if (option.state.testFlag(QStyle::State_HasFocus))
        look::drawFocusRing(painter, ground, radius, option.palette);
}

/// Returns the width of the wider line.
int CoinRowDelegate::paintNumbers(QPainter &painter, const QRect &box, const CoinRowContent &content,
                                  const QStyleOptionViewItem &option) const
{
    const QFontMetrics price(m_fonts.price);
    const QFontMetrics change(m_fonts.change);
    const bool hasChange = !content.change.isEmpty();
    const int height = price.ascent() + (hasChange ? look::scaled(lineGap) + change.ascent() : 0);
    const int priceLine = box.top() + (box.height() - height) / 2 + price.ascent() - price.descent() / 2;
    const QRect column = box.adjusted(box.width() - int(box.width() * widestNumber), 0, 0, 0);
    const QColor color = content.priceColor.value_or(look::text(option.palette));
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    const QColor secondary =
        look::secondaryText(option.palette, isHovered ? look::Ground::hovered : look::Ground::plain);
    painter.setPen(content.hasPrice ? color : secondary);
    int width = drawNumber(painter, column, priceLine, content.price, m_fonts.price, m_fonts.priceText);
    if (hasChange) {
        painter.setPen(content.isDelisted ? secondary : color);
        const int changeLine = priceLine + look::scaled(lineGap) + change.ascent();
        width = std::max(width,
                         drawNumber(painter, column, changeLine, content.change, m_fonts.change, m_fonts.changeText));
    }
    return width;
}

} // namespace tickwise
