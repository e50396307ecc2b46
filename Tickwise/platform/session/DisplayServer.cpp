#include "platform/session/DisplayServer.h"

#include <wayland-client.h>
#include <xcb/xcb.h>

#include <QDeadlineTimer>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>

namespace tickwise {

namespace {

using namespace std::chrono_literals;

constexpr auto probeTimeout = 2s;
constexpr char platformVariable[] = "QT_QPA_PLATFORM";
constexpr char noSharedMemoryVariable[] = "QT_XCB_NO_MITSHM";
constexpr char bypassVariable[] = "QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT";

/// One connection that lists the compositor's globals.
class GlobalsQuery
{
public:
    GlobalsQuery()
        : m_display(wl_display_connect(nullptr), &wl_display_disconnect)
    {
    }

    /// False when there is no compositor or it does not answer in time.
    bool run()
    {
        if (!m_display)
            return false;
        const std::unique_ptr<wl_registry, decltype(&wl_registry_destroy)> registry(
            wl_display_get_registry(m_display.get()), &wl_registry_destroy);
        static constexpr wl_registry_listener registryListener = {&GlobalsQuery::noteGlobal,
                                                                  &GlobalsQuery::noteRemoval};
        wl_registry_add_listener(registry.get(), &registryListener, this);
        const std::unique_ptr<wl_callback, decltype(&wl_callback_destroy)> callback(wl_display_sync(m_display.get()),
                                                                                    &wl_callback_destroy);
        static constexpr wl_callback_listener callbackListener = {&GlobalsQuery::noteDone};
        wl_callback_add_listener(callback.get(), &callbackListener, this);
        const QDeadlineTimer deadline(probeTimeout);
        while (!m_done && dispatchOnce(deadline)) {
        }
        return m_done;
    }

    bool hasLayerShell() const { return m_layerShell; }

private:
    static void noteGlobal(void *self, wl_registry *, uint32_t, const char *interface, uint32_t)
    {
        if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0)
            static_cast<GlobalsQuery *>(self)->m_layerShell = true;
    }

    static void noteRemoval(void *, wl_registry *, uint32_t) {}
    static void noteDone(void *self, wl_callback *, uint32_t) { static_cast<GlobalsQuery *>(self)->m_done = true; }

    bool dispatchOnce(const QDeadlineTimer &deadline)
    {
        wl_display *const display = m_display.get();
        while (wl_display_prepare_read(display) != 0) {
            if (wl_display_dispatch_pending(display) < 0)
                return false;
        }
        wl_display_flush(display);
        if (!waitForBytes(deadline)) {
            wl_display_cancel_read(display);
            return false;
        }
        return wl_display_read_events(display) >= 0 && wl_display_dispatch_pending(display) >= 0;
    }

    bool waitForBytes(const QDeadlineTimer &deadline) const
    {
        pollfd socket = {wl_display_get_fd(m_display.get()), POLLIN, 0};
        int ready = 0;
        do {
            ready = ::poll(&socket, 1, static_cast<int>(deadline.remainingTime()));
        } while (ready < 0 && errno == EINTR);
        return ready > 0;
    }

    std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> m_display;
    bool m_layerShell = false;
    bool m_done = false;
};

bool connectsToX(const QByteArray &display)
{
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(display.constData(), nullptr), &xcb_disconnect);
    return xcb_connection_has_error(connection.get()) == 0;
}

// Connecting blocks for as long as the server is silent, so it is left to a thread that nobody waits for.
bool answersAsXServer()
{
    const QByteArray display = qgetenv("DISPLAY");
    if (display.isEmpty())
        return false;
    std::promise<bool> promise;
    std::future<bool> answer = promise.get_future();
    std::thread([display, promise = std::move(promise)]() mutable {
        promise.set_value(connectsToX(display));
    }).detach();
    return answer.wait_for(probeTimeout) == std::future_status::ready && answer.get();
}

CompositorAnswer askCompositor()
{
    // The socket that WAYLAND_SOCKET passes serves one connection: it has to be left to the application.
    if (qEnvironmentVariableIsSet("WAYLAND_SOCKET"))
        return {.isThere = true};
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && qgetenv("XDG_SESSION_TYPE") != "wayland")
        return {};
    GlobalsQuery query;
    if (!query.run())
        return {};
    return {.isThere = true, .hasLayerShell = query.hasLayerShell()};
}

/// The variables that are set for the application object alone.
std::vector<const char *> &ownVariables()
{
    static std::vector<const char *> names;
    return names;
}

void setForApplicationObject(const char *variable, const char *value)
{
    if (!qEnvironmentVariableIsEmpty(variable))
        return;
    qputenv(variable, value);
    ownVariables().push_back(variable);
}

void applyDecision(const DisplayDecision &decision)
{
    if (decision.backend == DisplayBackend::xcb) {
        setForApplicationObject(platformVariable, "xcb");
        // What changes all day is the price, a few kilobytes of pixels: sending them costs less than waiting until the
        // X server has read them from shared memory.
        setForApplicationObject(noSharedMemoryVariable, "1");
    } else if (decision.backend == DisplayBackend::wayland) {
        setForApplicationObject(platformVariable, "wayland");
    }
    // Qt reads this one for each window.
    if (decision.layerShell)
        qputenv(bypassVariable, "1");
}

} // namespace

DisplayDecision decideDisplay(const DisplayEnvironment &environment, const DisplayProbes &probes)
{
    if (!environment.chosenPlatform.isEmpty()) {
        const bool isWayland = environment.chosenPlatform.startsWith("wayland");
        return {DisplayBackend::chosenByUser, isWayland && probes.askCompositor().hasLayerShell};
    }
    const bool isX11Session = environment.sessionType == "x11";
    if (isX11Session && probes.askXServer())
        return {DisplayBackend::xcb, false};
    const CompositorAnswer compositor = probes.askCompositor();
    if (compositor.hasLayerShell)
        return {DisplayBackend::wayland, true};
    if (!isX11Session && probes.askXServer())
        return {DisplayBackend::xcb, false};
    return {compositor.isThere ? DisplayBackend::wayland : DisplayBackend::none, false};
}

DisplayProbes displayProbes()
{
    return {.askCompositor = askCompositor, .askXServer = answersAsXServer};
}

DisplayDecision prepareDisplay()
{
    const DisplayDecision decision =
        decideDisplay({qgetenv(platformVariable), qgetenv("XDG_SESSION_TYPE")}, displayProbes());
    applyDecision(decision);
    return decision;
}

void restoreEnvironment()
{
    for (const char *const name : std::exchange(ownVariables(), {}))
        qunsetenv(name);
}

} // namespace tickwise
