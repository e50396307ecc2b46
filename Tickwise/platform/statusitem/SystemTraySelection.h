#pragma once

#include "platform/statusitem/SystemTray.h"

#include <cstdint>
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace tickwise {

/// The system tray of an X11 screen, `_NET_SYSTEM_TRAY_S0`, on a connection of its own.
class SystemTraySelection : public SystemTray
{
    Q_OBJECT

public:
    /// Null where there is no X server that `DISPLAY` names.
    static std::unique_ptr<SystemTraySelection> open();
    ~SystemTraySelection() override;

    bool hasOwner() const override { return m_owner != 0; }
    PanelAppearance appearance() const override { return m_appearance; }
    void dock(WId window) override;
    std::optional<QRect> dockedGeometry() override;

private:
    struct Atoms
    {
        uint32_t selection, manager, opcode, colors, xembedInfo;
    };

    SystemTraySelection(xcb_connection_t *connection, int screen);
    uint32_t atom(const QByteArray &name) const;
    void readEvents();
    void reportParent(uint32_t parent);
    void keepInTray();
    bool mayBeMoved(QSize window);
    void findOwner();
    void readColors();
    void readEventsLater();

    xcb_connection_t *m_connection;
    uint32_t m_root = 0;
    Atoms m_atoms = {};
    uint32_t m_owner = 0;
    uint32_t m_window = 0; ///< the one that was last handed to a tray
    bool m_isDocked = false;
    QSize m_movedSize; ///< of the window when it was last put back into its tray
    int m_moves = 0;   ///< at that size
    PanelAppearance m_appearance = PanelAppearance::unknown;
};

/// The appearance of a panel that writes in a color of these 16-bit parts.
PanelAppearance appearanceForText(uint32_t red, uint32_t green, uint32_t blue);

} // namespace tickwise
