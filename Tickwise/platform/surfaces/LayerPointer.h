#pragma once

#include "platform/surfaces/LayerShell.h"

#include <QPointF>

#include <utility>

struct wl_pointer;
struct wl_pointer_listener;
struct wl_surface;

namespace tickwise {

/// Where the pointer is on the screen, for a window that is dragged with it. While a button is pressed compositors
/// count the positions inside a moving window from where it is, or from where it was; only their relative motions are
/// clear.
class LayerPointer
{
public:
    /// The window has a surface; `origin` tells where it is on the screen.
    LayerPointer(const LayerShell &shell, QWindow &window, std::function<QPoint()> origin);
    LayerPointer(const LayerPointer &) = delete;
    LayerPointer &operator=(const LayerPointer &) = delete;

    /// Whether a button was pressed since this was asked last. A touch is no button, and neither is that of a mouse
    /// that came after this.
    bool takePress() { return std::exchange(m_hasNewPress, false); }

    QPointF position() const { return m_position; }
    /// Where the first button was pressed that is pressed now.
    QPointF pressPosition() const { return m_pressPosition; }

private:
    struct Release
    {
        void operator()(wl_pointer *pointer) const;
    };
    struct Destroy
    {
        void operator()(wl_proxy *relative) const;
    };

    static const wl_pointer_listener listener;
    static void relativeMotion(void *self, wl_proxy *, uint32_t, uint32_t, int32_t x, int32_t y, int32_t, int32_t);
    void enter(wl_surface *surface, QPointF inside);
    void move(QPointF inside);
    void endFrame();
    void press(bool pressed);

    const QWindow &m_window;
    wl_surface *m_surface;
    std::function<QPoint()> m_origin;
    QPointF m_position;
    QPointF m_pressPosition;
    std::optional<QPointF> m_moved; ///< to there in the window, since the last frame
    bool m_movedRelatively = false; ///< since the last frame
    bool m_tellsRelativeMotion = false;
    bool m_isInside = false;
    bool m_hasNewPress = false;
    int m_pressed = 0;                              ///< buttons
    std::unique_ptr<wl_pointer, Release> m_pointer; ///< none without a pointing device
    std::unique_ptr<wl_proxy, Destroy> m_relative;  ///< none where the compositor does not tell them
};

} // namespace tickwise
