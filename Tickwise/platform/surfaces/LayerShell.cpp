#include "platform/surfaces/LayerShell.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformscreen.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <wayland-client.h>

namespace tickwise {

namespace {

constexpr uint32_t newestVersion = 4;

// The protocol's requests, by their numbers.
constexpr uint32_t shellGetLayerSurface = 0;
constexpr uint32_t relativeManagerDestroy = 0;
constexpr uint32_t relativeManagerGet = 1;
constexpr uint32_t surfaceSetSize = 0;
constexpr uint32_t surfaceSetAnchor = 1;
constexpr uint32_t surfaceSetExclusiveZone = 2;
constexpr uint32_t surfaceSetMargin = 3;
constexpr uint32_t surfaceSetKeyboardInteractivity = 4;
constexpr uint32_t surfaceAckConfigure = 6;
constexpr uint32_t surfaceDestroy = 7;
constexpr uint32_t surfaceSetLayer = 8;
constexpr uint32_t setLayerVersion = 2;

// zwlr_layer_surface_v1 and zwlr_layer_shell_v1 as libwayland wants them described.
const wl_interface *noTypes[] = {nullptr, nullptr, nullptr, nullptr};
const wl_interface *noSixTypes[] = {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

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

// zwp_relative_pointer_v1 and its manager.
const wl_message relativePointerRequests[] = {{"destroy", "", noTypes}};
const wl_message relativePointerEvents[] = {{"relative_motion", "uuffff", noSixTypes}};
const wl_interface relativePointerInterface = {"zwp_relative_pointer_v1", 1, 1,
                                               relativePointerRequests,   1, relativePointerEvents};
const wl_interface *getRelativePointerTypes[] = {&relativePointerInterface, &wl_pointer_interface};
const wl_message relativeManagerRequests[] = {
    {"destroy", "", noTypes},
    {"get_relative_pointer", "no", getRelativePointerTypes},
};
const wl_interface relativeManagerInterface = {"zwp_relative_pointer_manager_v1", 1, std::size(relativeManagerRequests),
                                               relativeManagerRequests,           0, nullptr};

wl_display *display()
{
    QPlatformNativeInterface *const native = QGuiApplication::platformNativeInterface();
    if (!native || !QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        return nullptr;
    return static_cast<wl_display *>(native->nativeResourceForIntegration("wl_display"));
}

/// The wl_output of a screen. Qt's stand-in for a screen, while there is none, has no output that could be asked for.
wl_proxy *outputOf(QScreen *screen)
{
    if (!screen || screen->handle()->isPlaceholder())
        return nullptr;
    return static_cast<wl_proxy *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForScreen("output", screen));
}

struct Global
{
    uint32_t name = 0;
    uint32_t version = 0;
};

struct Globals
{
    Global shell;
    Global relativePointers;
};

void noteGlobal(void *found, wl_registry *, uint32_t name, const char *interface, uint32_t version)
{
    auto &globals = *static_cast<Globals *>(found);
    if (std::strcmp(interface, shellInterface.name) == 0)
        globals.shell = {name, version};
    else if (std::strcmp(interface, relativeManagerInterface.name) == 0)
        globals.relativePointers = {name, version};
}

wl_proxy *bindTo(wl_registry *registry, const Global &global, const wl_interface &interface, uint32_t newest)
{
    if (global.version == 0)
        return nullptr;
    return static_cast<wl_proxy *>(
        wl_registry_bind(registry, global.name, &interface, std::min(global.version, newest)));
}

void noteRemoval(void *, wl_registry *, uint32_t) {}

} // namespace

bool hasOutput(QScreen &screen)
{
    return outputOf(&screen);
}

LayerSurface::LayerSurface(wl_proxy *shell, wl_proxy *surface, const LayerSurfaceRequest &request)
    : m_surface(surface)
{
    m_proxy = wl_proxy_marshal_flags(shell, shellGetLayerSurface, &surfaceInterface, wl_proxy_get_version(shell), 0,
                                     nullptr, m_surface, outputOf(request.screen), request.layer, request.name);
    using Function = void (*)();
    static std::array<Function, 2> listener = {reinterpret_cast<Function>(&LayerSurface::configured),
                                               reinterpret_cast<Function>(&LayerSurface::closed)};
    wl_proxy_add_listener(m_proxy, listener.data(), this);
    send(surfaceSetAnchor, request.anchors);
    send(surfaceSetKeyboardInteractivity, request.takesKeyboard ? 1 : 0);
    send(surfaceSetExclusiveZone, request.exclusiveZone);
    setPlace(request.size, request.margins);
}

LayerSurface::~LayerSurface()
{
    awaitNothing();
    wl_proxy_marshal_flags(m_proxy, surfaceDestroy, nullptr, wl_proxy_get_version(m_proxy), WL_MARSHAL_FLAG_DESTROY);
}

void LayerSurface::send(uint32_t opcode, int64_t value)
{
    wl_proxy_marshal_flags(m_proxy, opcode, nullptr, wl_proxy_get_version(m_proxy), 0, uint32_t(value));
}

bool LayerSurface::configure()
{
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

void LayerSurface::setPlace(QSize size, const QMargins &margins)
{
    const uint32_t version = wl_proxy_get_version(m_proxy);
    wl_proxy_marshal_flags(m_proxy, surfaceSetSize, nullptr, version, 0, uint32_t(std::max(size.width(), 0)),
                           uint32_t(std::max(size.height(), 0)));
    wl_proxy_marshal_flags(m_proxy, surfaceSetMargin, nullptr, version, 0, margins.top(), margins.right(),
                           margins.bottom(), margins.left());
}

bool LayerSurface::setLayer(uint32_t layer)
{
    if (wl_proxy_get_version(m_proxy) < setLayerVersion)
        return false;
    send(surfaceSetLayer, layer);
    return true;
}

void LayerSurface::setTakesKeyboard(bool takes)
{
    send(surfaceSetKeyboardInteractivity, takes ? 1 : 0);
}

void LayerSurface::setTakesPointer(bool takes)
{
    auto *const surface = reinterpret_cast<wl_surface *>(m_surface);
    auto *const compositor = static_cast<wl_compositor *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("compositor"));
    if (takes || !compositor)
        return wl_surface_set_input_region(surface, nullptr);
    wl_region *const nothing = wl_compositor_create_region(compositor);
    wl_surface_set_input_region(surface, nothing);
    wl_region_destroy(nothing);
}

void LayerSurface::commit(std::function<void()> applied)
{
    wl_surface_commit(reinterpret_cast<wl_surface *>(m_surface));
    if (applied) {
        awaitNothing();
        static constexpr wl_callback_listener listener = {&LayerSurface::committed};
        m_applied = std::move(applied);
        m_commit = wl_display_sync(display());
        wl_callback_add_listener(m_commit, &listener, this);
    }
    wl_display_flush(display());
}

void LayerSurface::awaitNothing()
{
    if (m_commit)
        wl_callback_destroy(std::exchange(m_commit, nullptr));
    m_applied = {};
}

void LayerSurface::committed(void *self, wl_callback *, uint32_t)
{
    auto &surface = *static_cast<LayerSurface *>(self);
    const std::function<void()> applied = std::move(surface.m_applied);
    surface.awaitNothing();
    applied();
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
    Globals found;
    wl_registry_add_listener(registry.get(), &listener, &found);
    wl_display_roundtrip(connection);
    wl_proxy *const shell = bindTo(registry.get(), found.shell, shellInterface, newestVersion);
    if (!shell)
        return nullptr;
    return std::unique_ptr<LayerShell>(
        new LayerShell(shell, bindTo(registry.get(), found.relativePointers, relativeManagerInterface, 1)));
}

LayerShell::~LayerShell()
{
    if (m_relativePointers)
        wl_proxy_marshal_flags(m_relativePointers, relativeManagerDestroy, nullptr, 1, WL_MARSHAL_FLAG_DESTROY);
    wl_proxy_destroy(m_shell);
}

wl_proxy *LayerShell::makeRelativePointer(wl_proxy *pointer) const
{
    if (!m_relativePointers)
        return nullptr;
    return wl_proxy_marshal_flags(m_relativePointers, relativeManagerGet, &relativePointerInterface, 1, 0, nullptr,
                                  pointer);
}

std::unique_ptr<LayerSurface> LayerShell::makeSurface(QWindow &window, const LayerSurfaceRequest &request) const
{
    auto *const surface = static_cast<wl_proxy *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window));
    return surface ? makeSurface(surface, request) : nullptr;
}

std::unique_ptr<LayerSurface> LayerShell::makeSurface(wl_proxy *surface, const LayerSurfaceRequest &request) const
{
    return std::make_unique<LayerSurface>(m_shell, surface, request);
}

} // namespace tickwise
