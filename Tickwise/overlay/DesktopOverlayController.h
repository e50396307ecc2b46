#pragma once

#include "catalog/CoinCatalog.h"
#include "catalog/logos/CoinLogoStore.h"
#include "overlay/DesktopOverlayModel.h"
#include "overlay/DesktopOverlayWindow.h"
#include "pipeline/CoinListViewModel.h"
#include "settings/SettingsViewModel.h"
#include "support/drawing/TextScale.h"
#include "widget/views/DesktopSurface.h"

#include <memory>

namespace tickwise {

/// What the desktop overlay follows and writes back. All of it outlives the controller.
struct DesktopOverlayContext
{
    SettingsViewModel &settings;
    CoinListViewModel &coinList;
    const CoinCatalog &catalog;
    CoinLogoStore &logos;
    /// Called when the overlay is first needed; none, or a result of none: this desktop has no place for it.
    std::function<std::unique_ptr<DesktopSurface>()> makeSurface;
    Clock clock = systemClock;
    /// How much larger than usual the desktop draws text.
    std::function<double()> textScale = tickwise::textScale;
};

/// The watchlist on the desktop: shows and hides it as the settings say, keeps its size and place, and lets the user
/// move it. Main thread only.
class DesktopOverlayController : public QObject
{
    Q_OBJECT

public:
    explicit DesktopOverlayController(DesktopOverlayContext context, QObject *parent = nullptr);
    ~DesktopOverlayController() override;

    /// Brings the overlay in line with the settings and shows the content. The frame is set only where it differs.
    /// While the user adjusts the overlay its top left corner stays where it is.
    void apply(const AppSettings &settings, const WidgetEntryContent &content);
    /// Lets the user move the shown overlay. Called again, it gives the overlay the keyboard again.
    void beginAdjusting();
    /// Ends that and saves the position.
    void finishAdjusting();
    /// Ends that and puts the overlay back.
    void cancelAdjusting();
    /// Computes the frame anew, unless the user adjusts it: after the screens or the text scale changed, and after the
    /// machine woke.
    void reposition();
    /// Takes the language anew.
    void retranslate();

    /// Whether this desktop has a place for the overlay.
    bool isAvailable();

    const DesktopOverlayModel &model() const { return m_model; }
    /// None before the overlay is first shown.
    DesktopOverlayWindow *window() { return m_window.get(); }

private:
    void follow();
    void createWindow();
    void leaveAdjusting();
    void place();
    void drag(const QMouseEvent &event);
    void nudge(QPoint step);
    QSize size() const;
    QRect placed(const std::optional<DesktopOverlayOrigin> &topLeft) const;

    DesktopOverlayContext m_context;
    DesktopOverlayModel m_model;
    std::unique_ptr<DesktopOverlayWindow> m_window; ///< outlives the surface
    std::unique_ptr<DesktopSurface> m_surface;
    bool m_wasSurfaceMade = false;
    AppSettings m_settings;
    QPoint m_grip; ///< of a drag, from the window's corner
    QPropertyNotifier m_settingsNotifier;
    QPropertyNotifier m_coinsNotifier;
};

} // namespace tickwise
