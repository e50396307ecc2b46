#include "app/SettingsWindowController.h"

#include "support/MainThread.h"
#include "ui/controls/WindowActivation.h"
#include "ui/watchlist/WatchlistView.h"
#include "ui/watchlist/WatchlistViewModel.h"

#include <QCoreApplication>
#include <QEvent>

namespace tickwise {

SettingsWindowController::SettingsWindowController(SettingsWindowContext context, QObject *parent)
    : QObject(parent)
    , m_context(std::move(context))
{
}

SettingsWindowController::~SettingsWindowController()
{
    delete m_window;
}

void SettingsWindowController::open(SettingsTab tab)
{
    requireMainThread();
    m_context.settings.setSettingsWindowTab(tab);
    if (!m_window)
        build();
    bringToFront(*m_window);
}

void SettingsWindowController::build()
{
    m_general = new GeneralSettingsView(m_context.settings, m_context.catalog);
    m_general->setAbilities(abilities());
    connect(m_general, &GeneralSettingsView::adjustOverlayRequested, this, m_context.adjustOverlay);
    auto *const watchlist = new WatchlistView(
        {m_context.settings, m_context.catalog, m_context.watchlist(), &m_context.logos(), &m_context.motion()});
    auto *const about = new AboutView(m_context.settings, m_context.updates, m_context.about);
    m_window = new SettingsWindow(m_context.settings, m_context.storage, {m_general, watchlist, about});
    connect(m_window, &SettingsWindow::closed, m_window, &QObject::deleteLater);
    connect(m_window, &SettingsWindow::closed, this, [this] { m_window.clear(); });
}

void SettingsWindowController::retranslate()
{
    if (!m_window)
        return;
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(m_window, &change);
}

void SettingsWindowController::setStatusItemAvailability(StatusItemAvailability availability)
{
    m_statusItem = availability;
    if (m_general)
        m_general->setAbilities(abilities());
}

DesktopAbilities SettingsWindowController::abilities() const
{
    return {.hasOverlay = m_context.hasOverlay(), .statusItem = m_statusItem};
}

} // namespace tickwise
