#pragma once

#include "overlay/DesktopOverlayBackdrop.h"
#include "widget/program/WidgetSize.h"
#include "widget/views/AccessibleWindow.h"
#include "widget/views/WidgetListView.h"

namespace tickwise {

/// The widget as a window: the list on its backdrop, which is clicked, dragged and asked for a menu.
class WidgetWindow : public AccessibleWindow
{
    Q_OBJECT

public:
    /// Where the pointer is on the screen during a mouse event.
    using PointerPosition = std::function<QPoint(const QMouseEvent &event)>;

    WidgetWindow(WidgetListView::LogoSource logos, PointerPosition pointerPosition, Clock clock = systemClock);

    WidgetListView &list() { return m_list; }

    /// Whether what is not painted shows the desktop; otherwise the corners are cut from the window.
    void setTranslucent(bool translucent);

    /// Width and height at the desktop's text scale.
    static QSize scaledSize(WidgetSize size);

Q_SIGNALS:
    /// A click, or the same by Return, Enter or the space bar.
    void opened();
    /// The pointer drags the widget; `way` is how far it is from where it took hold.
    void dragged(QPoint way);
    void dropped();
    /// The window has gone while it was dragged.
    void dragCancelled();
    void menuRequested(QPoint position);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void cut();

    DesktopOverlayBackdrop m_backdrop;
    WidgetListView m_list;
    PointerPosition m_pointerPosition;
    bool m_isTranslucent = true;
    std::optional<QPoint> m_hold; ///< where on the screen the pointer took hold
    bool m_isDragged = false;
};

} // namespace tickwise
