#include "platform/surfaces/LayerUsableArea.h"

#include <QGuiApplication>

#include <qpa/qplatformnativeinterface.h>

#include <wayland-client.h>

namespace tickwise {

namespace {

constexpr char probeName[] = "tickwise-usable-area";

wl_surface *makeBareSurface()
{
    auto *const compositor = static_cast<wl_compositor *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("compositor"));
    return compositor ? wl_compositor_create_surface(compositor) : nullptr;
}

} // namespace

LayerUsableArea::LayerUsableArea(const LayerShell &shell, std::function<void()> changed)
    : m_shell(shell)
    , m_changed(std::move(changed))
{
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &m_context,
                     [this](const QScreen *screen) { m_probes.erase(screen); });
    refresh();
}

void LayerUsableArea::Destroy::operator()(wl_surface *surface) const
{
    wl_surface_destroy(surface);
}

void LayerUsableArea::refresh()
{
    for (QScreen *const screen : QGuiApplication::screens()) {
        if (!m_probes.contains(screen) && hasOutput(*screen))
            add(screen);
    }
}

void LayerUsableArea::add(QScreen *screen)
{
    Probe probe{std::unique_ptr<wl_surface, Destroy>(makeBareSurface()), nullptr, {}};
    if (!probe.surface)
        return;
    const LayerSurfaceRequest request{.name = probeName, .layer = LayerSurfaceRequest::background, .screen = screen};
    probe.layer = m_shell.makeSurface(reinterpret_cast<wl_proxy *>(probe.surface.get()), request);
    probe.layer->onResized = [this, screen](QSize size) { note(screen, size); };
    probe.layer->commit();
    m_probes.emplace(screen, std::move(probe));
}

/// Compositors answer anew whenever they arrange their surfaces.
void LayerUsableArea::note(const QScreen *screen, QSize size)
{
    const auto probe = m_probes.find(screen);
    if (probe != m_probes.end() && std::exchange(probe->second.size, size) != size)
        m_changed();
}

QSize LayerUsableArea::sizeOf(const QScreen &screen) const
{
    const auto probe = m_probes.find(&screen);
    const QSize whole = screen.size();
    return probe == m_probes.end() || probe->second.size.isEmpty() ? whole : probe->second.size.boundedTo(whole);
}

} // namespace tickwise
