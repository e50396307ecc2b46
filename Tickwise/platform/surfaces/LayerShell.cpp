#include "platform/surfaces/LayerShell.h"

#include <QGuiApplication>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <wayland-client.h>

namespace tickwise {

namespace {

constexpr uint32_t newestVersion = 4;

// The protocol's requests, by their numbers.
constexpr uint32_t shellGetLayerSurface = 0;
constexpr uint32_t surfaceSetAnchor = 1;
constexpr uint32_t surfaceSetExclusiveZone = 2;
constexpr uint32_t surfaceSetKeyboardInteractivity = 4;
constexpr uint32_t surfaceAckConfigure = 6;
constexpr uint32_t surfaceDestroy = 7;

// zwlr_layer_surface_v1 and zwlr_layer_shell_v1 as libwayland wants them described.
const wl_interface *noTypes[] = {nullptr, nullptr, nullptr, nullptr};

const wl_message surfaceRequests[] = {
    {"set_size", "uu", noTypes},
    {"set_anchor", "u", noTypes},
    {"set_exclusive_zone", "i", noTypes},
    {"set_margin", "iiii", noTypes},
    {"set_keyboard_interactivity", "u", noTypes},
    {"get_popup", "o", noTypes},
    {"ack_configure", "u", noTypes},
    {"destroy", "", noTypes},
    {"set_layer", "2u", noTypes},
};

const wl_message surfaceEvents[] = {
    {"configure", "uuu", noTypes},
    {"closed", "", noTypes},
};

const wl_interface surfaceInterface = {
    "zwlr_layer_surface_v1", 4, std::size(surfaceRequests), surfaceRequests, std::size(surfaceEvents), surfaceEvents};

const wl_interface *getSurfaceTypes[] = {&surfaceInterface, &wl_surface_interface, &wl_output_interface, nullptr,
                                         nullptr};

const wl_message shellRequests[] = {
    {"get_layer_surface", "no?ous", getSurfaceTypes},
    {"destroy", "3", noTypes},
};

const wl_interface shellInterface = {"zwlr_layer_shell_v1", 4, std::size(shellRequests), shellRequests, 0, nullptr};

wl_display *display()
{
    QPlatformNativeInterface *const native = QGuiApplication::platformNativeInterface();
    if (!native || !QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        return nullptr;
    return static_cast<wl_display *>(native->nativeResourceForIntegration("wl_display"));
}

struct Global
{
    uint32_t name = 0;
    uint32_t version = 0;
};

void noteGlobal(void *found, wl_registry *, uint32_t name, const char *interface, uint32_t version)
{
    if (std::strcmp(interface, shellInterface.name) == 0)
        *static_cast<Global *>(found) = {name, version};
}

void noteRemoval(void *, wl_registry *, uint32_t) {}

} // namespace

LayerSurface::LayerSurface(wl_proxy *shell, QWindow &window, const LayerSurfaceRequest &request)
    : m_surface(static_cast<wl_proxy *>(
          QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window)))
{
    if (!m_surface)
        return;
    m_proxy = wl_proxy_marshal_flags(shell, shellGetLayerSurface, &surfaceInterface, wl_proxy_get_version(shell), 0,
                                     nullptr, m_surface, nullptr, request.layer, request.name);
    using Function = void (*)();
    static std::array<Function, 2> listener = {reinterpret_cast<Function>(&LayerSurface::configured),
                                               reinterpret_cast<Function>(&LayerSurface::closed)};
    wl_proxy_add_listener(m_proxy, listener.data(), this);
    send(surfaceSetAnchor, request.anchors);
    send(surfaceSetKeyboardInteractivity, request.takesKeyboard ? 1 : 0);
    send(surfaceSetExclusiveZone, request.exclusiveZone);
}

LayerSurface::~LayerSurface()
{
    if (!m_proxy)
        return;
    wl_proxy_marshal_flags(m_proxy, surfaceDestroy, nullptr, wl_proxy_get_version(m_proxy), WL_MARSHAL_FLAG_DESTROY);
}

void LayerSurface::send(uint32_t opcode, int64_t value)
{
    wl_proxy_marshal_flags(m_proxy, opcode, nullptr, wl_proxy_get_version(m_proxy), 0, uint32_t(value));
}

bool LayerSurface::configure()
{
    if (!m_proxy)
        return false;
    m_isWaiting = true;
    wl_surface_commit(reinterpret_cast<wl_surface *>(m_surface));
    const bool answered = wl_display_roundtrip(display()) >= 0;
    m_isWaiting = false;
    return answered && !m_isClosed && m_size.isValid() && !m_size.isEmpty();
}

void LayerSurface::setExclusiveZone(int zone)
{
    send(surfaceSetExclusiveZone, zone);
}

void LayerSurface::configured(void *self, wl_proxy *, uint32_t serial, uint32_t width, uint32_t height)
{
    auto &surface = *static_cast<LayerSurface *>(self);
    surface.m_size = QSize(int(width), int(height));
    surface.send(surfaceAckConfigure, serial);
    if (!surface.m_isWaiting && surface.onResized)
        surface.onResized(surface.m_size);
}

void LayerSurface::closed(void *self, wl_proxy *)
{
    auto &surface = *static_cast<LayerSurface *>(self);
    surface.m_isClosed = true;
    if (!surface.m_isWaiting && surface.onClosed)
        surface.onClosed();
}

std::unique_ptr<LayerShell> LayerShell::bind()
{
    wl_display *const connection = display();
    if (!connection)
        return nullptr;
    static constexpr wl_registry_listener listener = {noteGlobal, noteRemoval};
    const std::unique_ptr<wl_registry, decltype(&wl_registry_destroy)> registry(wl_display_get_registry(connection),
                                                                                &wl_registry_destroy);
    Global found;
    wl_registry_add_listener(registry.get(), &listener, &found);
    wl_display_roundtrip(connection);
    if (found.version == 0)
        return nullptr;
    void *const shell =
        wl_registry_bind(registry.get(), found.name, &shellInterface, std::min(found.version, newestVersion));
    return std::unique_ptr<LayerShell>(new LayerShell(static_cast<wl_proxy *>(shell)));
}

LayerShell::~LayerShell()
{
    wl_proxy_destroy(m_shell);
}

std::unique_ptr<LayerSurface> LayerShell::makeSurface(QWindow &window, const LayerSurfaceRequest &request) const
{
    if (!QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window))
        return nullptr;
    return std::make_unique<LayerSurface>(m_shell, window, request);
}

} // namespace tickwise
