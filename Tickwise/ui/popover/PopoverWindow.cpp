#include "ui/popover/PopoverWindow.h"

#include "ui/controls/Look.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace tickwise {

namespace {

constexpr int toolTipOffset = 20;
constexpr int toolTipPadding = 6;

QString toolTipAt(const QWidget &widget, QPoint position)
{
    const auto *const list = qobject_cast<const QAbstractItemView *>(widget.parentWidget());
    if (list && list->viewport() == &widget)
        return list->indexAt(position).data(Qt::ToolTipRole).toString();
    return widget.toolTip();
}

} // namespace

int PopoverWindow::shadowMargin()
{
    return PopoverFrame::shadowMargin();
}

PopoverWindow::PopoverWindow(QWidget *content)
    : m_content(content)
{
    setObjectName(QStringLiteral("popover"));
    setWindowTitle(QStringLiteral("Tickwise"));
    setAttribute(Qt::WA_QuitOnClose, false);
    // The press that closes the popover must not reach the status item a second time.
    setAttribute(Qt::WA_NoMouseReplay);
    content->setParent(this);
    content->hide();
}

void PopoverWindow::place(const PopoverPlace &place)
{
    m_place = place;
    m_content->setGeometry(place.panel);
    m_content->show();
    if (place.isTranslucent) {
        clearMask();
    } else {
        setMask(PopoverFrame::shape(place.panel));
    }
    if (!place.hasChildWindows)
        followToolTips();
    update();
}

void PopoverWindow::unplace()
{
    m_place = {};
    m_isPressedOutside = false;
    m_content->hide();
    if (m_toolTip)
        m_toolTip->hide();
}

void PopoverWindow::followToolTips()
{
    for (QWidget *const widget : m_content->findChildren<QWidget *>())
        widget->installEventFilter(this); // a second time changes nothing
}

bool PopoverWindow::eventFilter(QObject *watched, QEvent *event)
{
    const bool hides =
        event->type() == QEvent::Leave || event->type() == QEvent::MouseButtonPress || event->type() == QEvent::Wheel;
    if (m_toolTip && hides)
        m_toolTip->hide();
    if (event->type() != QEvent::ToolTip || m_place.hasChildWindows)
        return AccessibleWindow::eventFilter(watched, event);
    auto *const widget = static_cast<QWidget *>(watched);
    const QPoint position = static_cast<QHelpEvent *>(event)->pos();
    showToolTip(toolTipAt(*widget, position), widget->mapTo(this, position));
    return true;
}

void PopoverWindow::showToolTip(const QString &text, QPoint position)
{
    if (!m_toolTip) {
        m_toolTip = new QLabel(this);
        m_toolTip->setTextFormat(Qt::PlainText);
        m_toolTip->setAutoFillBackground(true);
        m_toolTip->setFrameShape(QFrame::Box);
        m_toolTip->setMargin(look::scaled(toolTipPadding));
        m_toolTip->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    m_toolTip->setPalette(QToolTip::palette());
    m_toolTip->setBackgroundRole(QPalette::ToolTipBase);
    m_toolTip->setForegroundRole(QPalette::ToolTipText);
    m_toolTip->setFont(look::font(look::captionSize));
    m_toolTip->setText(text);
    m_toolTip->adjustSize();
    QRect box(position + QPoint(0, look::scaled(toolTipOffset)), m_toolTip->size());
    box.moveRight(std::min(box.right(), width() - 1));
    if (box.bottom() >= height())
        box.moveBottom(position.y() - 1);
    m_toolTip->move(box.topLeft());
    m_toolTip->setVisible(!text.isEmpty());
    m_toolTip->raise();
}

bool PopoverWindow::event(QEvent *event)
{
    // A popup window closes by what it grabs; any other by the loss of the focus.
    if (event->type() == QEvent::WindowDeactivate && windowType() == Qt::Tool)
        Q_EMIT dismissed();
    return AccessibleWindow::event(event);
}

void PopoverWindow::closeEvent(QCloseEvent *event)
{
    // An ignored event would keep the application from quitting.
    event->accept();
    Q_EMIT dismissed();
}

void PopoverWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel))
        Q_EMIT dismissed();
    else
        AccessibleWindow::keyPressEvent(event);
}

void PopoverWindow::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (m_place.panel.contains(event->position().toPoint()))
        return;
    // A popup window ends its grab with the press. Any other has to see the release, or Qt takes the button to be down
    // when the window comes again.
    if (windowType() == Qt::Popup)
        Q_EMIT dismissed();
    else
        m_isPressedOutside = true;
}

void PopoverWindow::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    if (std::exchange(m_isPressedOutside, false))
        Q_EMIT dismissed();
}

void PopoverWindow::paintEvent(QPaintEvent *event)
{
    if (m_place.panel.isEmpty())
        return;
    QPainter painter(this);
    m_frame.paint(painter, m_place.panel, event->rect(),
                  {.ground = palette().color(QPalette::Window),
                   .border = look::separator(palette()),
                   .hasShadow = m_place.isTranslucent,
                   .scale = look::textScale(),
                   .devicePixelRatio = painter.device()->devicePixelRatioF()});
}

} // namespace tickwise
