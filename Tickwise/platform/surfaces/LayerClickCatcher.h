#pragma once

#include "platform/surfaces/LayerShell.h"

#include <QRasterWindow>

namespace tickwise {

/// A transparent window over all of a screen, panels included, that tells of the pointer.
class LayerClickCatcher : public QRasterWindow
{
public:
    /// Both are called while it handles an event: it must not be destroyed in there.
    struct Events
    {
        std::function<void(QPoint position)> entered; ///< measured from the screen's corner
        std::function<void()> clicked;
    };

    /// `shell` outlives it.
    LayerClickCatcher(const LayerShell &shell, QScreen &screen, Events events);
    ~LayerClickCatcher() override;

protected:
    bool event(QEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    Events m_events;
    std::unique_ptr<LayerSurface> m_surface;
};

} // namespace tickwise
