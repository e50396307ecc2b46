#pragma once

#include <QSize>

#include <cstdint>
#include <functional>
#include <memory>

class QWindow;
struct wl_proxy;
struct wl_registry;

namespace tickwise {

/// What a layer surface asks of the compositor; the numbers are the protocol's.
struct LayerSurfaceRequest
{
    static constexpr uint32_t top = 2;
    static constexpr uint32_t allEdges = 15;
    static constexpr int overPanels = -1;

    const char *name = "";
    uint32_t layer = top;
    uint32_t anchors = allEdges;
    int exclusiveZone = 0;
    bool takesKeyboard = false;
};

/// A window's place on one of the compositor's layers. The window has to be created with
/// `Qt::BypassWindowManagerHint`, shown after its surface is made, and hidden and destroyed after it is dropped.
class LayerSurface
{
public:
    LayerSurface(wl_proxy *shell, QWindow &window, const LayerSurfaceRequest &request);
    ~LayerSurface();
    LayerSurface(const LayerSurface &) = delete;
    LayerSurface &operator=(const LayerSurface &) = delete;

    /// Waits for the compositor's answer. False when it gives the surface no place.
    bool configure();
    void setExclusiveZone(int zone);

    /// What the compositor last gave.
    QSize size() const { return m_size; }

    std::function<void(QSize)> onResized;
    std::function<void()> onClosed;

private:
    static void configured(void *self, wl_proxy *, uint32_t serial, uint32_t width, uint32_t height);
    static void closed(void *self, wl_proxy *);
    void send(uint32_t opcode, int64_t value);

    wl_proxy *m_surface = nullptr; ///< Qt's wl_surface
    wl_proxy *m_proxy = nullptr;
    QSize m_size;
    bool m_isClosed = false;
    bool m_isWaiting = false;
};

/// The compositor's zwlr_layer_shell_v1, on Qt's own connection.
class LayerShell
{
public:
    /// None where windows are not Wayland's, or the compositor has no layers.
    static std::unique_ptr<LayerShell> bind();
    ~LayerShell();
    LayerShell(const LayerShell &) = delete;
    LayerShell &operator=(const LayerShell &) = delete;

    /// None when the window has no surface of its own.
    std::unique_ptr<LayerSurface> makeSurface(QWindow &window, const LayerSurfaceRequest &request) const;

private:
    explicit LayerShell(wl_proxy *shell)
        : m_shell(shell)
    {
    }

    wl_proxy *m_shell;
};

} // namespace tickwise
