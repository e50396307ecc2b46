#pragma once

#include "catalog/CoinCatalog.h"
#include "settings/SettingsDataStorage.h"
#include "settings/SettingsViewModel.h"
#include "ui/settings/AboutView.h"
#include "ui/settings/GeneralSettingsView.h"
#include "ui/settings/SettingsWindow.h"

#include <QObject>
#include <QPointer>

#include <functional>

namespace tickwise {

class CoinLogoStore;
class MotionPreference;
class UpdateController;
class WatchlistViewModel;

/// What the settings window shows and edits. All of it outlives the controller.
struct SettingsWindowContext
{
    SettingsViewModel &settings;
    SettingsDataStorage &storage;
    CoinCatalog &catalog;
    UpdateController &updates;
    /// Asked for when a window is built.
    std::function<WatchlistViewModel &()> watchlist;
    std::function<CoinLogoStore &()> logos;
    std::function<const MotionPreference &()> motion;
    AboutInformation about;
    /// Whether this desktop shows the overlay; asked when a window is built, and when the status item's availability
    /// changes while it is open.
    std::function<bool()> hasOverlay;
    /// Lets the user move the overlay.
    std::function<void()> adjustOverlay;
};

/// Opens the settings window: a new one at each opening, the open one brought to the front. Main thread only.
class SettingsWindowController : public QObject
{
    Q_OBJECT

public:
    explicit SettingsWindowController(SettingsWindowContext context, QObject *parent = nullptr);
    ~SettingsWindowController() override;

    /// Shows the window on that tab.
    void open(SettingsTab tab);
    /// None while it is closed.
    SettingsWindow *window() { return m_window; }
    /// Takes the language anew.
    void retranslate();
    /// Whether a panel shows the status item; the open window shows the change too.
    void setStatusItemAvailability(StatusItemAvailability availability);

private:
    void build();
    DesktopAbilities abilities() const;

    SettingsWindowContext m_context;
    QPointer<SettingsWindow> m_window;
    QPointer<GeneralSettingsView> m_general; ///< the window's
    StatusItemAvailability m_statusItem = StatusItemAvailability::unknown;
};

} // namespace tickwise
