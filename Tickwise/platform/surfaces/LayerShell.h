#pragma once

#include <QMargins>
#include <QSize>

#include <cstdint>
#include <functional>
#include <memory>

class QScreen;
class QWindow;
struct wl_callback;
struct wl_proxy;
struct wl_registry;

namespace tickwise {

/// What a layer surface asks of the compositor; the numbers are the protocol's.
struct LayerSurfaceRequest
{
    static constexpr uint32_t background = 0;
    static constexpr uint32_t bottom = 1;
    static constexpr uint32_t top = 2;
    static constexpr uint32_t overlay = 3;
    static constexpr uint32_t bottomEdge = 2;
    static constexpr uint32_t leftEdge = 4;
    static constexpr uint32_t allEdges = 15;
    static constexpr int overPanels = -1;

    const char *name = "";
    uint32_t layer = top;
    uint32_t anchors = allEdges;
    int exclusiveZone = 0;
    bool takesKeyboard = false;
    QScreen *screen = nullptr; ///< null: the compositor chooses
    QSize size;                ///< empty: as large as the anchors make it
    QMargins margins;
};

/// False for the stand-in that the toolkit has while there is no screen.
bool hasOutput(QScreen &screen);

/// A window's place on one of the compositor's layers. The window has to be created with
/// `Qt::BypassWindowManagerHint`, shown after its surface is made, and hidden and destroyed after it is dropped.
class LayerSurface
{
public:
    LayerSurface(wl_proxy *shell, wl_proxy *surface, const LayerSurfaceRequest &request);
    ~LayerSurface();
    LayerSurface(const LayerSurface &) = delete;
    LayerSurface &operator=(const LayerSurface &) = delete;

    /// Waits for the compositor's answer. False when it gives the surface no place.
    bool configure();
    void setExclusiveZone(int zone);
    void setPlace(QSize size, const QMargins &margins);
    /// False where the compositor cannot change it.
    bool setLayer(uint32_t layer);
    void setTakesKeyboard(bool takes);
    /// Whether clicks on the window are the window's. The toolkit resets it when it shows the window.
    void setTakesPointer(bool takes);
    /// Applies what was set. Calls `applied`, if it is not empty, when the compositor has done so.
    void commit(std::function<void()> applied = {});

    /// What the compositor last gave.
    QSize size() const { return m_size; }

    std::function<void(QSize)> onResized;
    std::function<void()> onClosed;

private:
    static void configured(void *self, wl_proxy *, uint32_t serial, uint32_t width, uint32_t height);
    static void closed(void *self, wl_proxy *);
    static void committed(void *self, wl_callback *, uint32_t);
    void send(uint32_t opcode, int64_t value);
    void awaitNothing();

    wl_proxy *m_surface = nullptr; ///< Qt's wl_surface
    wl_proxy *m_proxy = nullptr;
    wl_callback *m_commit = nullptr; ///< the newest commit, until the compositor has applied it
    std::function<void()> m_applied;
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
    /// A surface that shows nothing, for learning its size. `surface` is a bare wl_surface that outlives it.
    std::unique_ptr<LayerSurface> makeSurface(wl_proxy *surface, const LayerSurfaceRequest &request) const;
    /// A zwp_relative_pointer_v1 for the wl_pointer, which the caller destroys before it; null where the compositor has
    /// none.
    wl_proxy *makeRelativePointer(wl_proxy *pointer) const;

private:
    LayerShell(wl_proxy *shell, wl_proxy *relativePointers)
        : m_shell(shell)
        , m_relativePointers(relativePointers)
    {
    }

    wl_proxy *m_shell;
    wl_proxy *m_relativePointers; ///< null where the compositor has none
};

} // namespace tickwise
