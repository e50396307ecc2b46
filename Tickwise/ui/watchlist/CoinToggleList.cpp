#include "ui/watchlist/CoinToggleList.h"

#include "catalog/logos/CoinLogoStore.h"
#include "settings/AppSettings.h"
#include "settings/HexColor.h"
#include "ui/controls/CoinLogoPixmap.h"
#include "ui/controls/Look.h"
#include "ui/controls/RowNameEvents.h"
#include "ui/controls/SymbolImage.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace tickwise {

namespace {

constexpr int toggleLogoSide = 24;
constexpr int toggleSymbolSide = 14;
constexpr int toggleSpacing = 8;
constexpr int toggleInset = 8;

QColor colorOf(CoinToggleSymbol::Color color, const QPalette &palette)
{
    switch (color) {
    case CoinToggleSymbol::Color::added:
        return colorFromHex(greenPriceHex).value();
    case CoinToggleSymbol::Color::remove:
        return colorFromHex(redPriceHex).value();
    case CoinToggleSymbol::Color::accent:
        break;
    }
    return look::accent(palette);
}

} // namespace

CoinToggleDelegate::CoinToggleDelegate(const CoinToggleModel &model, CoinLogoStore *logos, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_model(model)
    , m_logos(logos)
{
}

QSize CoinToggleDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return {look::scaled(120), look::scaled(rowHeight)};
}

void CoinToggleDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const CoinMetadata &coin = m_model.coin(index);
    Q_EMIT coinSeen(coin.id);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    const double radius = look::scaled(look::rowRadius);
    if (isHovered) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(look::hover(option.palette));
        painter->drawRoundedRect(option.rect, radius, radius);
    }
    const qreal scale = painter->device()->devicePixelRatioF();
    const QRect box = option.rect.adjusted(look::scaled(toggleInset), 0, -look::scaled(toggleInset), 0);
    const int logo = look::scaled(toggleLogoSide);
    painter->drawPixmap(box.left(), box.center().y() - logo / 2,
                        coinLogoPixmap(coin, m_logos, look::accent(option.palette), logo, scale));
    const CoinToggleSymbol symbol = coinToggleSymbol(index.data(CoinToggleModel::isAddedRole).toBool(), isHovered);
    const int side = look::scaled(toggleSymbolSide);
    painter->setOpacity(symbol.opacity);
    painter->drawPixmap(box.right() - side, box.center().y() - side / 2,
                        symbolPixmap(symbol.name, colorOf(symbol.color, option.palette), side, scale));
    painter->setOpacity(1);
    paintTexts(*painter, box.adjusted(logo + look::scaled(toggleSpacing), 0, -side - look::scaled(toggleSpacing), 0),
               coin, option);
    if (isMarked(option, index))
        look::drawFocusRing(*painter, option.rect, radius, option.palette);
    painter->restore();
}

bool CoinToggleDelegate::isMarked(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (option.state.testFlag(QStyle::State_HasFocus))
        return true;
    const auto *const list = qobject_cast<const QAbstractItemView *>(option.widget);
    return m_alwaysMarksCurrent && list && list->currentIndex() == index;
}

void CoinToggleDelegate::paintTexts(QPainter &painter, const QRect &box, const CoinMetadata &coin,
                                    const QStyleOptionViewItem &option) const
{
    const QFont symbolFont = look::font(look::bodySize, QFont::Medium);
    const QFont nameFont = look::font(look::captionSize);
    const QFontMetrics symbolMetrics(symbolFont);
    const QFontMetrics nameMetrics(nameFont);
    const int top = box.center().y() - (symbolMetrics.height() + nameMetrics.height()) / 2;
    painter.setFont(symbolFont);
    painter.setPen(look::text(option.palette));
    painter.drawText(QRect(box.left(), top, box.width(), symbolMetrics.height()), int(Qt::AlignLeft),
                     symbolMetrics.elidedText(coin.symbol, Qt::ElideRight, box.width()));
    painter.setFont(nameFont);
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    painter.setPen(look::secondaryText(option.palette, isHovered ? look::Ground::hovered : look::Ground::plain));
    painter.drawText(QRect(box.left(), top + symbolMetrics.height(), box.width(), nameMetrics.height()),
                     int(Qt::AlignLeft), nameMetrics.elidedText(coin.name, Qt::ElideRight, box.width()));
}

CoinToggleList::CoinToggleList(CoinToggleModel &model, CoinLogoStore *logos, QWidget *parent)
    : QListView(parent)
    , m_model(model)
{
    setModel(&model);
    auto *const delegate = new CoinToggleDelegate(model, logos, this);
    setItemDelegate(delegate);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setMouseTracking(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    new RowNameEvents(*this);
    connect(this, &QListView::clicked, this, &CoinToggleList::toggle);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this](const QItemSelection &selected) {
        if (selected.isEmpty())
            return;
        const QModelIndex index = selected.indexes().front();
        clearSelection();
        toggle(index);
    });
}

/// Pointer and keys select nothing. Assistive programs do: it is the action that Qt offers them for a row.
QItemSelectionModel::SelectionFlags CoinToggleList::selectionCommand(const QModelIndex &, const QEvent *) const
{
    return QItemSelectionModel::NoUpdate;
}

void CoinToggleList::toggle(const QModelIndex &index)
{
    if (index.isValid())
        Q_EMIT toggled(m_model.coin(index).id);
}

void CoinToggleList::toggleCurrent()
{
    toggle(currentIndex());
}

void CoinToggleList::moveCurrent(int rows)
{
    const int count = m_model.rowCount();
    if (count == 0)
        return;
    const int row = currentIndex().isValid() ? currentIndex().row() + rows : 0;
    setCurrentIndex(m_model.index(std::clamp(row, 0, count - 1)));
}

void CoinToggleList::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            toggleCurrent();
        return;
    default:
        QListView::keyPressEvent(event);
    }
}

void CoinToggleList::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        m_model.refresh();
    QListView::changeEvent(event);
}

} // namespace tickwise
