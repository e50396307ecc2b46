#pragma once

#include "pipeline/StatusItem.h"

#include <QObject>
#include <QWindow>

#include <cstdint>
#include <memory>

struct xcb_connection_t;

namespace tickwise {

/// The system tray of an X11 screen, `_NET_SYSTEM_TRAY_S0`, on a connection of its own.
class SystemTraySelection : public QObject
{
    Q_OBJECT

public:
    /// Null where there is no X server that `DISPLAY` names.
    static std::unique_ptr<SystemTraySelection> open();
    ~SystemTraySelection() override;

    bool hasOwner() const { return m_owner != 0; }

    /// What the tray's text colour says about its background.
    PanelAppearance appearance() const { return m_appearance; }

    /// Asks the tray to take in one of our windows, which must stay hidden until `docked`: a tray that reparents a
    /// visible window takes it for withdrawn.
    void dock(WId window);

Q_SIGNALS:
    void ownerChanged();
    void appearanceChanged();
    void docked();
    /// The tray has put the window back on the desktop.
    void undocked();

private:
    struct Atoms
    {
        uint32_t selection, manager, opcode, colors, xembedInfo;
    };

    SystemTraySelection(xcb_connection_t *connection, int screen);
    uint32_t atom(const QByteArray &name) const;
    void readEvents();
    void findOwner();
    void readColors();

    xcb_connection_t *m_connection;
    uint32_t m_root = 0;
    Atoms m_atoms = {};
    uint32_t m_owner = 0;
    uint32_t m_window = 0;
    PanelAppearance m_appearance = PanelAppearance::unknown;
};

/// The appearance of a panel that writes in a colour of these 16-bit parts.
PanelAppearance appearanceForText(uint32_t red, uint32_t green, uint32_t blue);

} // namespace tickwise
