#include "app/PopoverController.h"

#include "pipeline/CoinListViewModel.h"

namespace tickwise {

namespace {

using namespace std::chrono_literals;

// A panel tells of a click after the press of that click has closed the popover. Waybar tells twice of the second of
// two quick clicks: GTK reports it as a press and as a double press.
constexpr auto sameClick = 250ms;
constexpr auto launchRetryInterval = 200ms;

} // namespace

PopoverController::PopoverController(CoinPopoverContext context, std::unique_ptr<PopoverSurface> surface,
                                     MonotonicClock clock, QObject *parent)
    : QObject(parent)
    , m_context(std::move(context))
    , m_surface(std::move(surface))
    , m_clock(std::move(clock))
{
    // The settings window comes to where the popover was.
    m_context.navigate = [this, navigate = m_context.navigate](SettingsTab tab) {
        close();
        navigate(tab);
    };
    m_surface->onTakenAway = [this] { close(); };
    m_surface->onPlaced = [this](const PopoverPlace &place) { m_window->place(place); };
    connect(&m_context.coinList, &CoinListViewModel::coinsChanged, this, &PopoverController::fit);
}

PopoverController::~PopoverController()
{
    close();
}

void PopoverController::build()
{
    m_view = new CoinPopoverView(m_context);
    m_window = std::make_unique<PopoverWindow>(m_view);
    connect(m_window.get(), &PopoverWindow::dismissed, this, &PopoverController::close);
}

void PopoverController::toggle(const PopoverAnchor &anchor)
{
    if (m_changed && m_clock() - *m_changed < sameClick)
        return;
    if (m_isShown)
        return close();
    Q_EMIT activationRequested();
    open(anchor);
}

void PopoverController::open(const PopoverAnchor &anchor)
{
    if (m_isShown)
        return;
    if (m_window)
        m_view->refresh();
    else
        build();
    m_view->rewind();
    m_fittedCoins = m_context.coinList.coins().size();
    m_isShown =
        m_surface->show(*m_window, CoinPopoverView::sizeFor(m_fittedCoins), PopoverWindow::shadowMargin(), anchor);
    if (!m_isShown)
        return;
    m_changed = m_clock();
    Q_EMIT isShownChanged(true);
}

void PopoverController::openAfterLaunch(const std::function<PopoverAnchor()> &anchor, int retries)
{
    if (m_isShown)
        return;
    Q_EMIT activationRequested();
    open(anchor());
    if (m_isShown || retries <= 0)
        return;
    QTimer::singleShot(launchRetryInterval, this, [this, anchor, retries] { openAfterLaunch(anchor, retries - 1); });
}

void PopoverController::close()
{
    if (!std::exchange(m_isShown, false))
        return;
    m_changed = m_clock();
    m_window->unplace();
    m_surface->hide();
    Q_EMIT isShownChanged(false);
}

void PopoverController::fit()
{
    const std::size_t coins = m_context.coinList.coins().size();
    if (!m_isShown || std::exchange(m_fittedCoins, coins) == coins)
        return;
    m_surface->resize(CoinPopoverView::sizeFor(coins));
}

void PopoverController::retranslate()
{
    if (m_view)
        m_view->refresh();
}

} // namespace tickwise
