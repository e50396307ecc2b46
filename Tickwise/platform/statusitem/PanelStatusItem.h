#pragma once

#include "pipeline/StatusItem.h"
#include "pipeline/StatusItemPainter.h"
#include "platform/dbus/ColorSchemePortal.h"
#include "platform/statusitem/LocalMenu.h"
#include "platform/statusitem/StatusItemHostWatcher.h"
#include "platform/statusitem/StatusItemWidth.h"
#include "platform/statusitem/StatusNotifierItem.h"
#include "platform/statusitem/SystemTraySelection.h"
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
        bool onX11 = false;     ///< our own windows are X11 windows
        MenuPresenter showMenu = showLocalMenu;
        StatusItemHostWatcher::ProcessLookup process = watcherProcess;
    };

    /// The environment of this process.
    static Environment currentEnvironment();

    explicit PanelStatusItem(const QDBusConnection &bus, Environment environment = currentEnvironment());

    void setContent(const StatusItemContent &content) override;
    void setMenu(std::function<Menu()> menu) override;
    PanelAppearance appearance() const override { return m_appearance; }
    bool isShown() const override { return m_presentation != StatusItemPresentation::nothing; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectSources();
    void hostChanged(StatusItemHost host, const WatcherProcess &process);
    void trayChanged();
    void settle();
    void build(StatusItemPresentation presentation);
    void buildNotifierItem();
    void buildTrayWindow(XEmbedStatusWindow::Shape shape);
    void updateAppearance();
    void redraw();
    Menu notifierMenu() const;
    void showMenuAt(QPoint position) const;

    Environment m_environment;
    QDBusConnection m_bus;
    StatusItemHostWatcher m_watcher;
    ColorSchemePortal m_colorScheme;
    std::unique_ptr<SystemTraySelection> m_tray;
    QTimer m_settling;

    StatusItemContent m_content;
    std::function<Menu()> m_menu;
    StatusItemWidth m_widths;
    StatusItemHost m_host = StatusItemHost::none;
    PixmapFormat m_format;
    StatusItemPresentation m_presentation = StatusItemPresentation::nothing;
    PanelAppearance m_appearance = PanelAppearance::unknown;
    bool m_isNewHost = false;
    bool m_toldOfNoHost = false;

    std::unique_ptr<StatusNotifierItem> m_item;
    std::unique_ptr<XEmbedStatusWindow> m_window;
};

} // namespace tickwise
