#include "overlay/DesktopOverlayWindow.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <optional>

namespace tickwise {

namespace {

constexpr int shortStep = 1;
constexpr int longStep = 24;

std::optional<QPoint> direction(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return QPoint(-1, 0);
    case Qt::Key_Right:
        return QPoint(1, 0);
    case Qt::Key_Up:
        return QPoint(0, -1);
    case Qt::Key_Down:
        return QPoint(0, 1);
    default:
        return std::nullopt;
    }
}

} // namespace

DesktopOverlayWindow::DesktopOverlayWindow(DesktopOverlayView *view)
    : m_view(view)
{
    setObjectName(QStringLiteral("desktopOverlay"));
    setWindowTitle(QStringLiteral("Tickwise"));
    setAttribute(Qt::WA_QuitOnClose, false);
    view->setParent(this);
}

void DesktopOverlayWindow::setTranslucent(bool translucent)
{
    m_isTranslucent = translucent;
    m_view->setTranslucent(translucent);
    cut();
}

void DesktopOverlayWindow::cut()
{
    if (m_isTranslucent)
        return clearMask();
    setMask(m_view->backdrop().outline(rect()));
}

void DesktopOverlayWindow::resizeEvent(QResizeEvent *event)
{
    AccessibleWindow::resizeEvent(event);
    m_view->setGeometry(rect());
    cut();
}

void DesktopOverlayWindow::mousePressEvent(QMouseEvent *event)
{
    if (m_allowsKey && event->button() == Qt::LeftButton)
        Q_EMIT grabbed(*event);
}

void DesktopOverlayWindow::mouseMoveEvent(QMouseEvent *event)
{
    if (m_allowsKey && event->buttons().testFlag(Qt::LeftButton))
        Q_EMIT dragged(*event);
}

void DesktopOverlayWindow::keyPressEvent(QKeyEvent *event)
{
    if (!m_allowsKey)
        return AccessibleWindow::keyPressEvent(event);
    const int length = event->modifiers().testFlag(Qt::ShiftModifier) ? longStep : shortStep;
    if (const std::optional<QPoint> way = direction(event->key()))
        Q_EMIT nudged(*way * length);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Q_EMIT confirmed();
    else if (event->key() == Qt::Key_Escape)
        Q_EMIT canceled();
    else
        AccessibleWindow::keyPressEvent(event);
}

/// Window managers offer to close a window that has the focus. The application's own end closes it, too.
void DesktopOverlayWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(!event->spontaneous());
    if (event->isAccepted())
        return;
    if (m_allowsKey)
        Q_EMIT canceled();
}

} // namespace tickwise
