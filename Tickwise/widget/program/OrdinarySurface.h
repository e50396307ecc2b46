#pragma once

#include "platform/surfaces/ScreenWatch.h"
#include "platform/surfaces/X11Desktop.h"
#include "widget/views/DesktopSurface.h"

#include <QPointer>
#include <QWidget>

namespace tickwise {

/// An ordinary window without a frame, for a session that has no place for windows on its desktop. It always takes the
/// pointer, and has an empty frame while it is hidden.
class OrdinarySurface : public DesktopSurface
{
public:
    void show(QWidget &window, const QRect &frame) override;
    void hide() override;
    bool isShown() const override { return m_window; }
    void place(const QRect &frame) override;
    QRect frame() const override;
    QPoint pointerPosition(const QMouseEvent &event) const override;
    void setInteractive(bool interactive) override;
    DesktopScreens screens() const override;
    bool isTranslucent() const override { return !m_x11 || m_x11->hasCompositor(); }

private:
    ScreenWatch m_screenWatch{[this] {
        if (onScreensChanged)
            onScreensChanged();
    }};
    std::unique_ptr<X11Desktop> m_x11 = X11Desktop::open(); ///< none on Wayland
    QPointer<QWidget> m_window;
};

} // namespace tickwise
