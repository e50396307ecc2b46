#include "platform/surfaces/LayerPointer.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>

#include <algorithm>
#include <array>

#include <wayland-client.h>

namespace tickwise {

namespace {

constexpr uint32_t relativeDestroy = 0;

wl_pointer *makePointer()
{
    QPlatformNativeInterface *const native = QGuiApplication::platformNativeInterface();
    // The seat has a pointer when Qt has one; asking a seat without one is an error.
    auto *const seat = static_cast<wl_seat *>(native->nativeResourceForIntegration("wl_seat"));
    return seat && native->nativeResourceForIntegration("wl_pointer") ? wl_seat_get_pointer(seat) : nullptr;
}

QPointF point(wl_fixed_t x, wl_fixed_t y)
{
    return {wl_fixed_to_double(x), wl_fixed_to_double(y)};
}

QPointF inside(const QRectF &area, QPointF point)
{
    return {std::clamp(point.x(), area.left(), std::max(area.right() - 1, area.left())),
            std::clamp(point.y(), area.top(), std::max(area.bottom() - 1, area.top()))};
}

} // namespace

const wl_pointer_listener LayerPointer::listener = {
    .enter = [](void *self, wl_pointer *, uint32_t, wl_surface *surface, wl_fixed_t x,
                wl_fixed_t y) { static_cast<LayerPointer *>(self)->enter(surface, point(x, y)); },
    .leave = [](void *self, wl_pointer *, uint32_t,
                wl_surface *) { static_cast<LayerPointer *>(self)->m_isInside = false; },
    .motion = [](void *self, wl_pointer *, uint32_t, wl_fixed_t x,
                 wl_fixed_t y) { static_cast<LayerPointer *>(self)->move(point(x, y)); },
    .button =
        [](void *self, wl_pointer *, uint32_t, uint32_t, uint32_t, uint32_t state) {
            static_cast<LayerPointer *>(self)->press(state == WL_POINTER_BUTTON_STATE_PRESSED);
        },
    .axis = [](void *, wl_pointer *, uint32_t, uint32_t, wl_fixed_t) {},
    .frame = [](void *self, wl_pointer *) { static_cast<LayerPointer *>(self)->endFrame(); },
    .axis_source = [](void *, wl_pointer *, uint32_t) {},
    .axis_stop = [](void *, wl_pointer *, uint32_t, uint32_t) {},
    .axis_discrete = [](void *, wl_pointer *, uint32_t, int32_t) {},
    .axis_value120 = [](void *, wl_pointer *, uint32_t, int32_t) {},
};

LayerPointer::LayerPointer(const LayerShell &shell, QWindow &window, std::function<QPoint()> origin)
    : m_window(window)
    , m_surface(static_cast<wl_surface *>(
          QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window)))
    , m_origin(std::move(origin))
    , m_position(m_origin())
    , m_pressPosition(m_position)
    , m_pointer(makePointer())
{
    if (!m_pointer)
        return;
    wl_pointer_add_listener(m_pointer.get(), &listener, this);
    m_relative.reset(shell.makeRelativePointer(reinterpret_cast<wl_proxy *>(m_pointer.get())));
    if (!m_relative)
        return;
    using Function = void (*)();
    static std::array<Function, 1> relativeListener = {reinterpret_cast<Function>(&LayerPointer::relativeMotion)};
    wl_proxy_add_listener(m_relative.get(), relativeListener.data(), this);
}

void LayerPointer::enter(wl_surface *surface, QPointF inside)
{
    m_isInside = surface == m_surface;
    m_pressed = 0;
    m_hasNewPress = false;
    move(inside);
}

void LayerPointer::move(QPointF inside)
{
    if (m_isInside && (m_pressed == 0 || !m_relative))
        m_position = m_origin() + inside;
    else
        m_moved = inside;
}

/// Not every compositor tells relative motions of devices that know only places, as those of virtual machines. Where
/// one does, a place without a relative motion may come of the surface that moved under the pointer.
void LayerPointer::endFrame()
{
    const std::optional<QPointF> moved = std::exchange(m_moved, std::nullopt);
    const bool isDragged = m_pressed > 0 && m_tellsRelativeMotion;
    if (!std::exchange(m_movedRelatively, false) && moved && m_isInside && !isDragged)
        m_position = m_origin() + *moved;
}

void LayerPointer::relativeMotion(void *self, wl_proxy *, uint32_t, uint32_t, int32_t x, int32_t y, int32_t, int32_t)
{
    auto &pointer = *static_cast<LayerPointer *>(self);
    pointer.m_movedRelatively = true;
    pointer.m_tellsRelativeMotion = true;
    const QScreen *const screen = pointer.m_window.screen();
    if (pointer.m_isInside && pointer.m_pressed > 0 && screen)
        pointer.m_position = inside(screen->virtualGeometry(), pointer.m_position + point(x, y));
}

void LayerPointer::press(bool pressed)
{
    m_hasNewPress = m_hasNewPress || (pressed && m_isInside);
    if (pressed && m_pressed == 0)
        m_pressPosition = m_position;
    m_pressed = std::max(m_pressed + (pressed ? 1 : -1), 0);
}

void LayerPointer::Release::operator()(wl_pointer *pointer) const
{
    if (wl_pointer_get_version(pointer) >= WL_POINTER_RELEASE_SINCE_VERSION)
        wl_pointer_release(pointer);
    else
        wl_pointer_destroy(pointer);
}

void LayerPointer::Destroy::operator()(wl_proxy *relative) const
{
    wl_proxy_marshal_flags(relative, relativeDestroy, nullptr, wl_proxy_get_version(relative), WL_MARSHAL_FLAG_DESTROY);
}

} // namespace tickwise
