#include "ui/watchlist/WatchlistRow.h"

#include "pipeline/ReorderGeometry.h"
#include "support/Localization.h"
#include "ui/controls/CoinLogoPixmap.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/Look.h"
#include "ui/watchlist/WatchlistAlertControls.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>

namespace tickwise {

namespace {

constexpr double dragThreshold = 2;
constexpr int rowLogoSide = 24;
constexpr int rowSpacing = 8;
constexpr int watchlistRowInset = 8;
constexpr int textLeft = watchlistRowInset + 28 + rowSpacing + rowLogoSide + rowSpacing;

/// The name, and that nobody trades the coin any more: its alert will never come.
QString nameLine(const CoinMetadata &coin)
{
    if (coin.status != CoinStatus::delisted)
        return coin.name;
    return localized(QStringLiteral("a11y.list")).arg(coin.name, localized(QStringLiteral("coin.status.delisted")));
}

} // namespace

std::vector<WatchlistRowContent> watchlistRows(const AppSettings &settings, const CoinIndex &catalog)
{
    std::vector<WatchlistRowContent> rows;
    rows.reserve(settings.watchlistCoins.size());
    for (const WatchlistCoin &entry : settings.watchlistCoins) {
        CoinMetadata unknown;
        unknown.id = entry.coinId;
        unknown.name = entry.coinId;
        rows.push_back({entry, *catalog.value(entry.coinId, &unknown)});
    }
    return rows;
}

WatchlistRow::WatchlistRow(CoinLogoStore *logos, QWidget *parent)
    : QWidget(parent)
    , m_logos(logos)
    , m_handle(new IconButton(QStringLiteral("line.3.horizontal"), this))
    , m_alert(new WatchlistAlertControls(this))
    , m_delete(new IconButton(QStringLiteral("trash"), this))
{
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(look::scaled(watchlistRowInset), 0, look::scaled(watchlistRowInset), 0);
    row->setSpacing(look::scaled(rowSpacing));
    row->addWidget(m_handle);
    row->addStretch();
    row->addWidget(m_alert);
    row->addWidget(m_delete);
    m_handle->setObjectName(QStringLiteral("watchlist.reorder"));
    m_delete->setObjectName(QStringLiteral("watchlist.delete"));
    m_handle->setCursor(Qt::OpenHandCursor);
    m_handle->installEventFilter(this);
    m_delete->installEventFilter(this);
    connect(m_delete, &QAbstractButton::clicked, this, &WatchlistRow::deleteRequested);
    connect(m_alert, &WatchlistAlertControls::kindChosen, this, &WatchlistRow::kindChosen);
    connect(m_alert, &WatchlistAlertControls::thresholdEdited, this, &WatchlistRow::thresholdEdited);
}

void WatchlistRow::setContent(const WatchlistRowContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    m_alert->setAlert(content.coin.name, content.entry.alertKind, content.entry.notificationThreshold);
    writeTexts();
    update();
}

void WatchlistRow::setFloating(bool floating)
{
    if (std::exchange(m_isFloating, floating) == floating)
        return;
    m_handle->setCursor(floating ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    if (!floating)
        QMetaObject::invokeMethod(this, &WatchlistRow::leavePointer, Qt::QueuedConnection); // when it has its slot
    update();
}

/// A row that goes to a slot may move away from under the pointer, which Qt tells only with the pointer's next move.
void WatchlistRow::leavePointer()
{
    const QPoint pointer = m_handle->mapFromGlobal(m_pointer).toPoint();
    if (!m_handle->underMouse() || m_handle->rect().contains(pointer))
        return;
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(m_handle, &leave);
}

void WatchlistRow::focusHandle()
{
    m_handle->setFocus(Qt::OtherFocusReason);
}

void WatchlistRow::takeFocusFrom(const WatchlistRow &row)
{
    const bool wasDelete = row.window()->focusWidget() == row.m_delete;
    (wasDelete ? m_delete : m_handle)->setFocus(Qt::OtherFocusReason);
}

void WatchlistRow::chainAfter(QWidget &previous)
{
    const auto [kind, number] = m_alert->controls();
    setTabOrder(&previous, m_handle);
    setTabOrder(m_handle, kind);
    setTabOrder(kind, number);
    setTabOrder(number, m_delete);
}

QWidget &WatchlistRow::lastControl() const
{
    return *m_delete;
}

void WatchlistRow::writeTexts()
{
    const QString &name = m_content.coin.name;
    const QString line = nameLine(m_content.coin);
    setAccessibleName(m_content.coin.symbol.isEmpty() ? line : m_content.coin.symbol + QStringLiteral(", ") + line);
    m_handle->setHelp(localized(QStringLiteral("watchlist.reorder")));
    m_handle->setAccessibleName(localized(QStringLiteral("a11y.reorder")).arg(name));
    m_delete->setHelp(localized(QStringLiteral("watchlist.delete")));
    m_delete->setAccessibleName(localized(QStringLiteral("a11y.delete")).arg(name));
}

void WatchlistRow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        writeTexts();
    QWidget::changeEvent(event);
}

bool WatchlistRow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_delete) // the first of two clicks may have deleted the row that was here
        return event->type() == QEvent::MouseButtonDblClick;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        if (handleMouse(static_cast<QMouseEvent &>(*event)))
            return true;
        break;
    case QEvent::KeyPress:
        if (handleKey(static_cast<const QKeyEvent &>(*event)))
            return true;
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

/// The handle's button does not press while it is dragged; true for what belongs to a drag.
bool WatchlistRow::handleMouse(QMouseEvent &event)
{
    const QPointF position = event.globalPosition();
    m_pointer = position;
    const bool isPress = event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
    if (isPress && event.button() == Qt::LeftButton) {
        m_press = position;
        m_isDragging = false; // a row that was hidden during a drag got no release
        return true;
    }
    if (event.type() == QEvent::MouseButtonRelease && event.button() == Qt::LeftButton) {
        if (std::exchange(m_isDragging, false)) {
            Q_EMIT dragged(position); // the list may have scrolled under a pointer at rest
            Q_EMIT released();
        }
        return true;
    }
    if (event.type() != QEvent::MouseMove || !event.buttons().testFlag(Qt::LeftButton))
        return false;
    if (!m_isDragging && QLineF(m_press, position).length() >= dragThreshold) {
        m_isDragging = true;
        Q_EMIT dragStarted(m_press);
    }
    if (m_isDragging)
        Q_EMIT dragged(position);
    return true;
}

bool WatchlistRow::handleKey(const QKeyEvent &event)
{
    if (event.modifiers() != Qt::AltModifier || (event.key() != Qt::Key_Up && event.key() != Qt::Key_Down))
        return false;
    Q_EMIT moveRequested(event.key() == Qt::Key_Up ? -1 : 1);
    return true;
}

void WatchlistRow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_isFloating) {
        const double radius = look::scaled(look::rowRadius);
        painter.setPen(look::separator(palette()));
        painter.setBrush(palette().color(QPalette::Window));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
    const int side = look::scaled(rowLogoSide);
    const int left = look::scaled(watchlistRowInset + rowSpacing) + m_handle->width();
    painter.drawPixmap(left, (height() - side) / 2,
                       coinLogoPixmap(m_content.coin, m_logos, look::accent(palette()), side, devicePixelRatioF()));
    paintTexts(painter);
}

void WatchlistRow::paintTexts(QPainter &painter) const
{
    const int left = look::scaled(textLeft);
    const QRect box(left, 0, m_alert->x() - look::scaled(rowSpacing) - left, height());
    const QFont symbolFont = look::font(look::bodySize, QFont::Medium);
    const QFont nameFont = look::font(look::captionSize);
    const QFontMetrics symbolMetrics(symbolFont);
    const QFontMetrics nameMetrics(nameFont);
    const bool hasSymbol = !m_content.coin.symbol.isEmpty();
    const int total = (hasSymbol ? symbolMetrics.height() : 0) + nameMetrics.height();
    int top = (height() - total) / 2;
    if (hasSymbol) {
        painter.setFont(symbolFont);
        painter.setPen(look::text(palette()));
        painter.drawText(QRect(box.left(), top, box.width(), symbolMetrics.height()), int(Qt::AlignLeft),
                         symbolMetrics.elidedText(m_content.coin.symbol, Qt::ElideRight, box.width()));
        top += symbolMetrics.height();
    }
    painter.setFont(nameFont);
    painter.setPen(look::secondaryText(palette()));
    painter.drawText(QRect(box.left(), top, box.width(), nameMetrics.height()), int(Qt::AlignLeft),
                     nameMetrics.elidedText(nameLine(m_content.coin), Qt::ElideRight, box.width()));
}

} // namespace tickwise
