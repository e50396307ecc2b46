#pragma once

#include "pipeline/StatusItem.h"
#include "pipeline/StatusItemPainter.h"
#include "platform/dbus/ColorSchemePortal.h"
#include "platform/statusitem/LocalMenu.h"
#include "platform/statusitem/StatusItemHostWatcher.h"
#include "platform/statusitem/StatusItemWidth.h"
#include "platform/statusitem/StatusNotifierItem.h"
#include "platform/statusitem/SystemTray.h"
#include "platform/statusitem/XEmbedStatusWindow.h"

#include <QTimer>

#include <memory>

namespace tickwise {

/// The status item in whatever panel the desktop has: it finds the host, shows the item in the way that host can, and
/// changes over when the host does.
class PanelStatusItem : public StatusItem
{
    Q_OBJECT

public:
    /// Shows the menu at a position on the screen, for hosts that leave it to the program.
    using MenuPresenter = std::function<void(const Menu &menu, QPoint position)>;

    struct Environment
    {
        QString currentDesktop; ///< `XDG_CURRENT_DESKTOP`
        /// Opens the desktop's system tray; null, and none of it, where our windows are no X11 windows.
        std::function<std::unique_ptr<SystemTray>()> openTray;
        MenuPresenter showMenu = showLocalMenu;
        StatusItemHostWatcher::ProcessLookup process = watcherProcess;
    };

    /// The environment of this process.
    static Environment currentEnvironment();

    /// The bus outlives the item; it may have no connection, now or later.
    explicit PanelStatusItem(SessionBus &bus, Environment environment = currentEnvironment());

    void setContent(const StatusItemContent &content) override;
    void setMenu(std::function<Menu()> menu) override;
    void menuChanged() override;
    PanelAppearance appearance() const override { return m_appearance; }
    StatusItemAvailability availability() const override { return m_availability; }
    /// Known for a docked window only.
    std::optional<QRect> geometry() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectSources();
    void hostChanged(StatusItemHost host, const WatcherProcess &process);
    void trayChanged();
    void applyHost();
    void busEnded();
    void build(StatusItemPresentation presentation);
    void buildNotifierItem();
    void buildTrayWindow(XEmbedStatusWindow::Shape shape);
    void updateAppearance();
    void updateAvailability();
    void redraw();
    Menu notifierMenu();
    void showMenuAt(QPoint position) const;

    Environment m_environment;
    SessionBus &m_bus;
    StatusItemHostWatcher m_watcher;
    ColorSchemePortal m_colorScheme;
    std::unique_ptr<SystemTray> m_tray;
    QTimer m_hostDelay; ///< runs while a host is given time to start or to return

    StatusItemContent m_content;
    std::function<Menu()> m_menu;
    StatusItemWidth m_widths;
    StatusItemHost m_host = StatusItemHost::none;
    ItemFormat m_format;
    StatusItemPresentation m_presentation = StatusItemPresentation::nothing;
    PanelAppearance m_appearance = PanelAppearance::unknown;
    StatusItemAvailability m_availability = StatusItemAvailability::unknown;
    bool m_isNewHost = false; ///< the item has yet to be announced to it
    bool m_hasLoggedNoHost = false;

    std::unique_ptr<StatusNotifierItem> m_item;
    std::unique_ptr<XEmbedStatusWindow> m_window;
};

} // namespace tickwise
