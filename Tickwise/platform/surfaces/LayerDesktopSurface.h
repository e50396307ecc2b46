#pragma once

#include "platform/surfaces/DesktopSurfaceFactory.h"
#include "platform/surfaces/LayerPointer.h"
#include "platform/surfaces/LayerUsableArea.h"
#include "platform/surfaces/ScreenWatch.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace tickwise {

/// A window on the desktop of a Wayland compositor with layers. The compositor keeps it out of the panels: its margins
/// count from the part of the screen that they leave free. Compositors tell that part's size alone: panels are assumed
/// to be at the top and at the right.
class LayerDesktopSurface : public QObject, public DesktopSurface
{
public:
    LayerDesktopSurface(std::unique_ptr<LayerShell> shell, DesktopSurfaceOptions options);
    ~LayerDesktopSurface() override;

    void show(QWidget &window, const QRect &frame) override;
    void hide() override;
    bool isShown() const override { return m_window; }
    void place(const QRect &frame) override;
    QRect frame() const override { return m_frame; }
    QPoint pointerPosition(const QMouseEvent &event) const override;
    void setInteractive(bool interactive) override;
    DesktopScreens screens() const override;
    bool isTranslucent() const override { return true; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QRect visibleFrame(const QScreen &screen) const;
    QScreen *screenFor(const QRect &frame) const;
    QMargins margins() const;
    bool takesPointer() const;
    void attach();
    void detach();
    void reattach();
    void appear();
    void sendPlace();
    void followPointer();
    void notePress();
    void screensMayDiffer();

    std::unique_ptr<LayerShell> m_shell;
    DesktopSurfaceOptions m_options;
    LayerUsableArea m_usableArea;
    ScreenWatch m_screenWatch;
    std::unique_ptr<LayerSurface> m_surface; ///< none while hidden, and while there is no screen
    QPointer<QWidget> m_window;              ///< none while hidden
    QPointer<QScreen> m_screen;              ///< of the surface
    QTimer m_reattach;
    QTimer m_appear;
    std::unique_ptr<LayerPointer> m_pointer; ///< where clicks are taken
    bool m_knowsPress = false;               ///< whether that pointer pressed last
    QPoint m_pressOrigin;                    ///< where the compositor had the window then
    QRect m_frame;
    QMargins m_sentMargins;
    QPoint m_applied; ///< where the compositor has the window
    bool m_isInteractive = false;
    bool m_isPlacing = false;  ///< the compositor has not yet applied the last place
    bool m_isPlaceOld = false; ///< and meanwhile there is another
};

} // namespace tickwise
