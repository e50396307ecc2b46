#pragma once

#include "overlay/DesktopOverlayView.h"
#include "widget/views/AccessibleWindow.h"

namespace tickwise {

/// The window of the desktop overlay. While it allows the keyboard it tells what the user does to move it.
class DesktopOverlayWindow : public AccessibleWindow
{
    Q_OBJECT

public:
    /// Takes the view over.
    explicit DesktopOverlayWindow(DesktopOverlayView *view);

    bool allowsKey() const { return m_allowsKey; }
    void setAllowsKey(bool allows) { m_allowsKey = allows; }
    /// Where the desktop cannot be seen through the window, its corners are cut off.
    void setTranslucent(bool translucent);

    DesktopOverlayView &view() { return *m_view; }

Q_SIGNALS:
    void grabbed(const QMouseEvent &event);
    void dragged(const QMouseEvent &event);
    /// An arrow key: by how many points, y growing downwards.
    void nudged(QPoint step);
    void confirmed();
    void canceled();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void cut();

    DesktopOverlayView *m_view;
    bool m_allowsKey = false;
    bool m_isTranslucent = true;
};

} // namespace tickwise
