#include "platform/surfaces/X11Desktop.h"

#include "platform/surfaces/PanelStrut.h"
#include "support/MallocPointer.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstring>

#include <xcb/xcb.h>

namespace tickwise {

namespace {

constexpr uint32_t everyWorkspace = 0xFFFFFFFF;
constexpr uint32_t addState = 1;
constexpr uint32_t sourceIsApplication = 1;
constexpr uint32_t longestList = 1024; // atoms
constexpr char selectionExtension[] = "XFIXES";

uint32_t rootOf(xcb_connection_t *connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

} // namespace

std::unique_ptr<X11Desktop> X11Desktop::open()
{
    auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection())
        return nullptr;
    return std::unique_ptr<X11Desktop>(new X11Desktop(x11->connection()));
}

X11Desktop::X11Desktop(xcb_connection_t *connection)
    : m_connection(connection)
    , m_root(rootOf(connection))
    , m_desktop(atom("_NET_WM_DESKTOP"))
    , m_state(atom("_NET_WM_STATE"))
    , m_supported(atom("_NET_SUPPORTED"))
    , m_compositor(atom("_NET_WM_CM_S0"))
    , m_clients(atom("_NET_CLIENT_LIST"))
    , m_strut(atom("_NET_WM_STRUT_PARTIAL"))
    , m_workArea(atom("_NET_WORKAREA"))
    , m_states{atom("_NET_WM_STATE_BELOW"), atom("_NET_WM_STATE_ABOVE"), atom("_NET_WM_STATE_STICKY"),
               atom("_NET_WM_STATE_SKIP_TASKBAR"), atom("_NET_WM_STATE_SKIP_PAGER")}
{
    const auto cookie = xcb_query_extension(connection, sizeof selectionExtension - 1, selectionExtension);
    const MallocPointer<xcb_query_extension_reply_t> extension(xcb_query_extension_reply(connection, cookie, nullptr));
    if (extension && extension->present)
        m_selectionEvent = extension->first_event;
}

uint32_t X11Desktop::atom(const char *name) const
{
    const auto cookie = xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name);
    const MallocPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : XCB_NONE;
}

unsigned int X11Desktop::ask(uint32_t window, uint32_t property, uint32_t type) const
{
    return xcb_get_property(m_connection, 0, window, property, type, 0, longestList).sequence;
}

std::vector<uint32_t> X11Desktop::answer(unsigned int question, uint32_t type) const
{
    const MallocPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, {question}, nullptr));
    if (!reply || reply->type != type || reply->format != 32)
        return {};
    const auto *const first = static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

bool X11Desktop::keepsWindowsBelow() const
{
    const std::vector<uint32_t> supported = answer(ask(m_root, m_supported, XCB_ATOM_ATOM), XCB_ATOM_ATOM);
    return supported.empty() || std::find(supported.begin(), supported.end(), m_states[below]) != supported.end();
}

/// All windows are asked at once: each answer that is waited for takes a round trip.
void X11Desktop::takePanelsFrom(std::vector<QRect> &monitors) const
{
    const auto cookie = xcb_get_geometry(m_connection, m_root);
    std::vector<unsigned int> questions;
    for (const uint32_t client : answer(ask(m_root, m_clients, XCB_ATOM_WINDOW), XCB_ATOM_WINDOW))
        questions.push_back(ask(client, m_strut, XCB_ATOM_CARDINAL));
    const MallocPointer<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(m_connection, cookie, nullptr));
    std::vector<QRect> areas = monitors;
    for (const unsigned int question : questions) {
        const std::vector<uint32_t> strut = answer(question, XCB_ATOM_CARDINAL);
        for (std::size_t i = 0; root && i < areas.size(); ++i)
            areas[i] &= withoutStrut(monitors[i], strut, {root->width, root->height});
    }
    for (std::size_t i = 0; i < areas.size(); ++i) {
        if (!areas[i].isEmpty())
            monitors[i] = areas[i];
    }
}

bool X11Desktop::tellsOfPanels(const void *event) const
{
    const auto &change = *static_cast<const xcb_property_notify_event_t *>(event);
    return (change.response_type & 0x7f) == XCB_PROPERTY_NOTIFY && change.window == m_root && change.atom == m_workArea;
}

bool X11Desktop::hasCompositor() const
{
    const auto cookie = xcb_get_selection_owner(m_connection, m_compositor);
    const MallocPointer<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(m_connection, cookie, nullptr));
    return owner && owner->owner != XCB_NONE;
}

void X11Desktop::writeStates(uint32_t window, const std::vector<State> &states) const
{
    std::vector<uint32_t> atoms;
    atoms.reserve(states.size());
    for (const State state : states)
        atoms.push_back(m_states[state]);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, m_state, XCB_ATOM_ATOM, 32, uint32_t(atoms.size()),
                        atoms.data());
}

void X11Desktop::putOnEveryWorkspace(uint32_t window) const
{
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, m_desktop, XCB_ATOM_CARDINAL, 32, 1,
                        &everyWorkspace);
}

void X11Desktop::requestStates(uint32_t window, const std::vector<State> &states) const
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    const auto send = [&](uint32_t type, std::array<uint32_t, 5> data) {
        message.type = type;
        std::copy(data.begin(), data.end(), message.data.data32);
        xcb_send_event(m_connection, 0, m_root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char *>(&message));
    };
    for (const State state : states)
        send(m_state, {addState, m_states[state], 0, sourceIsApplication, 0});
    send(m_desktop, {everyWorkspace, sourceIsApplication, 0, 0, 0});
    xcb_flush(m_connection);
}

} // namespace tickwise
