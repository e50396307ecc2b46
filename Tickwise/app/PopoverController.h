#pragma once

#include "ui/popover/CoinPopoverView.h"
#include "ui/popover/PopoverSurface.h"
#include "ui/popover/PopoverWindow.h"

#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace tickwise {

/// Time that never goes back.
using MonotonicClock = std::function<std::chrono::steady_clock::time_point()>;

/// The popover of the status item: opens, resizes and closes it. It is built when it is first opened. Main thread only.
class PopoverController : public QObject
{
    Q_OBJECT

public:
    static constexpr int launchRetries = 10;

    PopoverController(CoinPopoverContext context, std::unique_ptr<PopoverSurface> surface,
                      MonotonicClock clock = std::chrono::steady_clock::now, QObject *parent = nullptr);
    ~PopoverController() override;

    bool isShown() const { return m_isShown; }

    /// A click on the status item: closes a shown popover, opens a closed one. Within 250 ms of either it is
    /// the same click and changes nothing.
    void toggle(const PopoverAnchor &anchor);
    /// Opens the popover unless it is shown.
    void open(const PopoverAnchor &anchor);
    /// Opens it as a click does, and tries again for a while where the desktop is not ready for it. The anchor is asked
    /// for at each try: the status item may come in between.
    void openAfterLaunch(const std::function<PopoverAnchor()> &anchor, int retries = launchRetries);
    void close();

    /// Takes the language anew.
    void retranslate();

    PopoverWindow *window() { return m_window.get(); }

Q_SIGNALS:
    /// Comes before a click or the launch opens the popover. A window that is activated later would take the focus from
    /// the popover, which can close it.
    void activationRequested();
    void isShownChanged(bool shown);

private:
    void build();
    void fit();

    CoinPopoverContext m_context;
    std::unique_ptr<PopoverSurface> m_surface;
    MonotonicClock m_clock;
    CoinPopoverView *m_view = nullptr; ///< the window's
    std::unique_ptr<PopoverWindow> m_window;
    std::optional<std::chrono::steady_clock::time_point> m_changed; ///< when it last opened or closed
    std::size_t m_fittedCoins = 0;
    bool m_isShown = false;
};

} // namespace tickwise
