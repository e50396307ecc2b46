#pragma once

#include "platform/surfaces/DesktopSurfaceFactory.h"
#include "platform/surfaces/ScreenWatch.h"
#include "platform/surfaces/X11Desktop.h"

#include <QAbstractNativeEventFilter>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace tickwise {

/// A window on the desktop of X11, by hints to the window manager. The window is unmapped and mapped around each change
/// of what it takes, because some window managers look at that when they see a window first.
class X11DesktopSurface : public QObject, public DesktopSurface, public QAbstractNativeEventFilter
{
public:
    X11DesktopSurface(std::unique_ptr<X11Desktop> desktop, const DesktopSurfaceOptions &options);
    ~X11DesktopSurface() override;

    void show(QWidget &window, const QRect &frame) override;
    void hide() override;
    bool isShown() const override { return m_window; }
    void place(const QRect &frame) override;
    QRect frame() const override;
    QPoint pointerPosition(const QMouseEvent &event) const override;
    void setInteractive(bool interactive) override;
    DesktopScreens screens() const override;
    bool isTranslucent() const override { return m_isTranslucent; }

    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

private:
    std::vector<X11Desktop::State> states() const;
    void map();
    void screensMayDiffer();
    void takeKeyboard();
    void unmap();
    void settle();
    void readTranslucency();

    std::unique_ptr<X11Desktop> m_desktop;
    bool m_takesPointer;
    ScreenWatch m_screenWatch;
    QTimer m_wasMapped;
    QTimer m_compositorChanged;
    QPointer<QWidget> m_window; ///< none while hidden
    QRect m_frame;
    double m_ratio = 1; ///< pixels a point, when the window was mapped
    bool m_isInteractive = false;
    bool m_isTranslucent;
};

} // namespace tickwise
