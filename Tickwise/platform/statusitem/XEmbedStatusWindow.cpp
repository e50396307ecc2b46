#include "platform/statusitem/XEmbedStatusWindow.h"

#include "support/Localization.h"
#include "support/Markup.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <cmath>

namespace tickwise {

namespace {

constexpr int usualHeight = 22; // device pixels: panels do not follow the toolkit's scale
// The tray moves the window into place; until then it must not show on the desktop.
constexpr QPoint beyondTheScreen(-2000, -2000);

} // namespace

XEmbedStatusWindow::XEmbedStatusWindow(Shape shape)
    // A tool: Qt closes every popup, and so an open popover, when a window of another kind is shown.
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint)
    , m_shape(shape)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QStringLiteral("Tickwise"));
    setMinimumSize(leastHeight(), leastHeight());
    setGeometry(QRect(beyondTheScreen, minimumSize()));
}

void XEmbedStatusWindow::setContent(const StatusItemContent &content, const StatusItemStyle &style)
{
    m_content = content;
    m_style = style;
    setAccessibleName(content.title);
    setAccessibleDescription(localized(QStringLiteral("a11y.statusItem")));
    fit();
    update();
}

void XEmbedStatusWindow::fit()
{
    if (m_shape == Shape::square)
        return;
    const double needed = statusItemWidth(m_content, m_style.font, height());
    const int width =
        int(m_content.logo ? needed : m_widths.widthFor(m_style.font, height(), m_content.text.size(), needed));
    setMinimumSize(width, leastHeight());
    resize(width, height());
}

/// Panels make a window narrower in proportion that asks for more height than they have.
int XEmbedStatusWindow::leastHeight() const
{
    return int(usualHeight / devicePixelRatioF());
}

bool XEmbedStatusWindow::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        // Qt's own idea of where this window is goes stale when the panel moves it; the event's is right.
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           toolTipMarkup(m_content.toolTipTitle, m_content.toolTipBody));
        return true;
    }
    return QWidget::event(event);
}

void XEmbedStatusWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const int scale = int(std::ceil(devicePixelRatioF()));
    if (m_shape == Shape::wide) {
        painter.drawImage(rect(), paintStatusItem(m_content, m_style, width(), height(), scale));
        return;
    }
    const int side = std::min(width(), height());
    const QRect square((width() - side) / 2, (height() - side) / 2, side, side);
    painter.drawImage(square, paintCompactStatusItem(m_content, m_style, side * scale));
}

void XEmbedStatusWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (event->size().height() != event->oldSize().height())
        fit();
}

void XEmbedStatusWindow::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void XEmbedStatusWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (!rect().contains(event->position().toPoint()))
        return;
    const QPoint position = event->globalPosition().toPoint();
    if (event->button() == Qt::LeftButton)
        Q_EMIT clicked(position);
    else if (event->button() == Qt::RightButton)
        Q_EMIT menuRequested(position);
}

void XEmbedStatusWindow::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

} // namespace tickwise
