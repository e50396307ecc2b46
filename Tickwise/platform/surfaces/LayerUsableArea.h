#pragma once

#include "platform/surfaces/LayerShell.h"

#include <QScreen>

#include <map>

struct wl_surface;

namespace tickwise {

/// The part of each screen that panels leave free, as the size that the compositor gives to a surface that spans it.
/// Compositors do not tell on which edges the panels are.
class LayerUsableArea
{
public:
    /// `changed` is called when `sizeOf` answers otherwise.
    LayerUsableArea(const LayerShell &shell, std::function<void()> changed);

    /// The whole screen until the compositor has answered.
    QSize sizeOf(const QScreen &screen) const;
    /// Follows the screens that have come.
    void refresh();

private:
    struct Destroy
    {
        void operator()(wl_surface *surface) const;
    };
    struct Probe
    {
        std::unique_ptr<wl_surface, Destroy> surface;
        std::unique_ptr<LayerSurface> layer;
        QSize size; ///< empty until the compositor has answered
    };

    void add(QScreen *screen);
    void note(const QScreen *screen, QSize size);

    const LayerShell &m_shell;
    std::function<void()> m_changed;
    std::map<const QScreen *, Probe> m_probes; ///< of the screens that there are
    QObject m_context;
};

} // namespace tickwise
