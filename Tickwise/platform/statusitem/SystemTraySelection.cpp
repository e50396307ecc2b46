#include "platform/statusitem/SystemTraySelection.h"
#include "support/MallocPointer.h"

#include <QGuiApplication>
#include <QSocketNotifier>

#include <xcb/xcb.h>

namespace tickwise {

namespace {

constexpr uint32_t requestDock = 0;
constexpr uint32_t xembedVersion = 0;
constexpr uint32_t xembedMapped = 1;
constexpr int mostMoves = 8; // of a window of one size

/// The new parent of the window, if the event tells one.
std::optional<uint32_t> newParent(const xcb_generic_event_t &event, uint32_t window)
{
    const auto &reparent = reinterpret_cast<const xcb_reparent_notify_event_t &>(event);
    if ((event.response_type & 0x7f) != XCB_REPARENT_NOTIFY || reparent.window != window)
        return std::nullopt;
    return reparent.parent;
}

/// Where the window is in its parent.
std::optional<QRect> geometryOf(xcb_connection_t *connection, uint32_t window)
{
    const MallocPointer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!geometry)
        return std::nullopt;
    return QRect(geometry->x, geometry->y, geometry->width, geometry->height);
}

/// Waits until the X server knows the windows that Qt has made: they were made on Qt's connection, not on ours.
void synchronizeOwnWindows()
{
    if (auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        xcb_connection_t *connection = x11->connection();
        MallocPointer<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
}

} // namespace

PanelAppearance appearanceForText(uint32_t red, uint32_t green, uint32_t blue)
{
    return qGray(int(red >> 8), int(green >> 8), int(blue >> 8)) > 127 ? PanelAppearance::dark : PanelAppearance::light;
}

std::unique_ptr<SystemTraySelection> SystemTraySelection::open()
{
    int screen = 0;
    xcb_connection_t *connection = xcb_connect(nullptr, &screen);
    if (!xcb_connection_has_error(connection))
        return std::unique_ptr<SystemTraySelection>(new SystemTraySelection(connection, screen));
    xcb_disconnect(connection);
    return nullptr;
}

SystemTraySelection::SystemTraySelection(xcb_connection_t *connection, int screen)
    : m_connection(connection)
{
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screen; ++i)
        xcb_screen_next(&screens);
    m_root = screens.data->root;
    m_atoms = {atom("_NET_SYSTEM_TRAY_S" + QByteArray::number(screen)), atom("MANAGER"),
               atom("_NET_SYSTEM_TRAY_OPCODE"), atom("_NET_SYSTEM_TRAY_COLORS"), atom("_XEMBED_INFO")};
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
    auto *notifier = new QSocketNotifier(xcb_get_file_descriptor(connection), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        readEvents();
        notifier->setEnabled(!xcb_connection_has_error(m_connection));
    });
    findOwner();
}

SystemTraySelection::~SystemTraySelection()
{
    xcb_disconnect(m_connection);
}

uint32_t SystemTraySelection::atom(const QByteArray &name) const
{
    const auto cookie = xcb_intern_atom(m_connection, 0, uint16_t(name.size()), name.constData());
    const MallocPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : 0;
}

void SystemTraySelection::readEvents()
{
    bool ownerMayDiffer = false;
    bool colorsMayDiffer = false;
    bool wasMoved = false;
    std::optional<uint32_t> parent;
    while (const MallocPointer<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        const int type = event->response_type & 0x7f;
        const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
        ownerMayDiffer |=
            type == XCB_DESTROY_NOTIFY || (type == XCB_CLIENT_MESSAGE && message->type == m_atoms.manager);
        colorsMayDiffer |= type == XCB_PROPERTY_NOTIFY;
        if (const auto told = newParent(*event, m_window))
            parent = told;
        wasMoved |= type == XCB_CONFIGURE_NOTIFY;
    }
    if (parent)
        reportParent(*parent);
    if (m_isDocked && (parent || wasMoved))
        keepInTray();
    if (ownerMayDiffer)
        findOwner();
    else if (colorsMayDiffer)
        readColors();
}

void SystemTraySelection::reportParent(uint32_t parent)
{
    m_isDocked = parent != m_root;
    m_movedSize = QSize();
    if (m_isDocked)
        Q_EMIT docked();
    else
        Q_EMIT undocked();
}

/// Qt takes the tray's window for the screen when it resizes or shows ours, which then lies beside what it is to fill.
void SystemTraySelection::keepInTray()
{
    const MallocPointer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_window), nullptr));
    const std::optional<QRect> tray = tree ? geometryOf(m_connection, tree->parent) : std::nullopt;
    const std::optional<QRect> window = geometryOf(m_connection, m_window);
    const bool isBeside =
        tray && window && !window->topLeft().isNull() && !QRect(QPoint(), tray->size()).contains(*window);
    if (isBeside && mayBeMoved(window->size())) {
        const uint32_t corner[] = {0, 0};
        xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, corner);
        xcb_flush(m_connection);
    }
    readEventsLater();
}

/// A tray that wants its windows elsewhere is not contradicted for ever.
bool SystemTraySelection::mayBeMoved(QSize window)
{
    if (std::exchange(m_movedSize, window) != window)
        m_moves = 0;
    return m_moves++ < mostMoves;
}

void SystemTraySelection::findOwner()
{
    const auto cookie = xcb_get_selection_owner(m_connection, m_atoms.selection);
    const MallocPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(m_connection, cookie, nullptr));
    const uint32_t owner = reply ? reply->owner : 0;
    if (owner) {
        const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection, owner, XCB_CW_EVENT_MASK, &mask);
    }
    const bool changed = std::exchange(m_owner, owner) != owner;
    readColors();
    if (changed)
        Q_EMIT ownerChanged();
}

void SystemTraySelection::readColors()
{
    PanelAppearance appearance = PanelAppearance::unknown;
    if (m_owner) {
        const auto cookie = xcb_get_property(m_connection, 0, m_owner, m_atoms.colors, XCB_ATOM_CARDINAL, 0, 12);
        const MallocPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, nullptr));
        if (reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) >= int(3 * sizeof(uint32_t))) {
            const auto *parts = static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
            appearance = appearanceForText(parts[0], parts[1], parts[2]);
        }
    }
    if (std::exchange(m_appearance, appearance) != appearance)
        Q_EMIT appearanceChanged();
    readEventsLater();
}

/// Events that arrived while an answer was awaited wake no notifier.
void SystemTraySelection::readEventsLater()
{
    QMetaObject::invokeMethod(this, &SystemTraySelection::readEvents, Qt::QueuedConnection);
}

void SystemTraySelection::dock(WId window)
{
    synchronizeOwnWindows();
    m_window = uint32_t(window);
    m_isDocked = false;
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_EVENT_MASK, &mask);
    const uint32_t info[] = {xembedVersion, xembedMapped};
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, m_atoms.xembedInfo, m_atoms.xembedInfo, 32, 2,
                        info);
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = m_owner;
    message.type = m_atoms.opcode;
    message.data.data32[1] = requestDock;
    message.data.data32[2] = m_window;
    xcb_send_event(m_connection, 0, m_owner, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&message));
    xcb_flush(m_connection);
}

// Qt's own idea of the window's position goes stale when the panel moves it.
std::optional<QRect> SystemTraySelection::dockedGeometry()
{
    if (!m_isDocked)
        return std::nullopt;
    const auto sizeCookie = xcb_get_geometry(m_connection, m_window);
    const auto originCookie = xcb_translate_coordinates(m_connection, m_window, m_root, 0, 0);
    const MallocPointer<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(m_connection, sizeCookie, nullptr));
    const MallocPointer<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(m_connection, originCookie, nullptr));
    readEventsLater();
    if (!size || !origin)
        return std::nullopt;
    return QRect(origin->dst_x, origin->dst_y, size->width, size->height);
}

} // namespace tickwise
