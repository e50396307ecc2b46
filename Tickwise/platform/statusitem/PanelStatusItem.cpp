#include "platform/statusitem/PanelStatusItem.h"

#include "platform/statusitem/NotifierContent.h"
#include "platform/statusitem/SystemTraySelection.h"
#include "support/Localization.h"

#include <QEvent>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPalette>
#include <QScreen>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcStatusItem, "com.pelmo.tickwise.StatusItem", QtInfoMsg)

// A panel that starts takes its bus name and its tray one after the other; one that restarts is gone for a moment.
constexpr std::chrono::milliseconds hostStartTime = 150ms;
constexpr std::chrono::milliseconds hostRestartTime = 1s;

PanelAppearance paletteAppearance()
{
    const QColor text = QGuiApplication::palette().color(QPalette::WindowText);
    return qGray(text.rgb()) > 127 ? PanelAppearance::dark : PanelAppearance::light;
}

/// The screen that shows the point, which is in device pixels: screens keep their origin, and their sizes scale.
const QScreen *screenAt(QPoint point)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const auto found = std::ranges::find_if(screens, [point](const QScreen *screen) {
        const QRect area = screen->geometry();
        return QRect(area.topLeft(), area.size() * screen->devicePixelRatio()).contains(point);
    });
    return found == screens.end() ? nullptr : *found;
}

int largestScale()
{
    return int(std::ceil(qGuiApp->devicePixelRatio()));
}

} // namespace

PanelStatusItem::Environment PanelStatusItem::currentEnvironment()
{
    Environment environment{qEnvironmentVariable("XDG_CURRENT_DESKTOP")};
    // Started from a console, sway does not name itself there.
    if (environment.currentDesktop.isEmpty() && qEnvironmentVariableIsSet("SWAYSOCK"))
        environment.currentDesktop = QStringLiteral("sway");
    if (QGuiApplication::platformName() == QLatin1StringView("xcb"))
        environment.openTray = SystemTraySelection::open;
    return environment;
}

PanelStatusItem::PanelStatusItem(SessionBus &bus, Environment environment)
    : m_environment(std::move(environment))
    , m_bus(bus)
    , m_watcher(bus, m_environment.currentDesktop, m_environment.process)
    , m_colorScheme(bus)
    , m_tray(m_environment.openTray ? m_environment.openTray() : nullptr)
{
    m_hostDelay.setSingleShot(true);
    connectSources();
    updateAppearance();
}

void PanelStatusItem::connectSources()
{
    connect(&m_hostDelay, &QTimer::timeout, this, &PanelStatusItem::applyHost);
    connect(&m_watcher, &StatusItemHostWatcher::hostChanged, this, &PanelStatusItem::hostChanged);
    connect(&m_colorScheme, &ColorSchemePortal::schemeChanged, this, &PanelStatusItem::updateAppearance);
    connect(&m_bus, &SessionBus::disconnected, this, &PanelStatusItem::busEnded);
    if (m_tray) {
        connect(m_tray.get(), &SystemTray::ownerChanged, this, &PanelStatusItem::trayChanged);
        connect(m_tray.get(), &SystemTray::appearanceChanged, this, &PanelStatusItem::updateAppearance);
    }
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &PanelStatusItem::redraw);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &PanelStatusItem::redraw);
    qGuiApp->installEventFilter(this);
}

void PanelStatusItem::setContent(const StatusItemContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    redraw();
}

void PanelStatusItem::setMenu(std::function<Menu()> menu)
{
    m_menu = std::move(menu);
    if (m_item)
        m_item->setMenu([this] { return notifierMenu(); });
}

void PanelStatusItem::menuChanged()
{
    if (m_item)
        m_item->refreshMenu();
}

std::optional<QRect> PanelStatusItem::geometry() const
{
    const std::optional<QRect> pixels = m_window && m_tray ? m_tray->dockedGeometry() : std::nullopt;
    if (!pixels)
        return std::nullopt;
    const QScreen *const screen = screenAt(pixels->center());
    return screen ? fromDevicePixels(*pixels, screen->geometry().topLeft(), screen->devicePixelRatio()) : *pixels;
}

bool PanelStatusItem::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qGuiApp && event->type() == QEvent::ApplicationFontChange)
        redraw();
    else if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange)
        updateAppearance();
    return StatusItem::eventFilter(watched, event);
}

void PanelStatusItem::hostChanged(StatusItemHost host, const WatcherProcess &process)
{
    m_host = host;
    m_format = itemFormatFor(host, process);
    m_widths.clear();
    m_isNewHost = host != StatusItemHost::none;
    m_hostDelay.start(m_isNewHost ? hostStartTime : hostRestartTime);
}

void PanelStatusItem::trayChanged()
{
    // A window whose tray went away would be left alone on the desktop.
    m_window.reset();
    m_hostDelay.start(m_host == StatusItemHost::none ? hostRestartTime : hostStartTime);
}

void PanelStatusItem::applyHost()
{
    const StatusItemPresentation presentation = presentationFor(m_host, m_tray && m_tray->hasOwner());
    updateAppearance();
    if (presentation != m_presentation || (!m_item && !m_window))
        build(presentation);
    if (m_item && m_isNewHost) {
        redraw();
        m_item->registerWithWatcher(hostTraits(m_host).announcement);
    }
    m_isNewHost = false;
    updateAvailability();
    if (presentation == StatusItemPresentation::nothing && !std::exchange(m_hasLoggedNoHost, true))
        qCInfo(lcStatusItem) << "No panel shows status items; the item appears when one starts";
}

void PanelStatusItem::busEnded()
{
    // It belongs to the connection that has ended.
    m_item.reset();
}

void PanelStatusItem::build(StatusItemPresentation presentation)
{
    m_presentation = presentation;
    m_item.reset();
    m_window.reset();
    switch (presentation) {
    case StatusItemPresentation::nothing:
        return;
    case StatusItemPresentation::xembed:
        return buildTrayWindow(XEmbedStatusWindow::Shape::wide);
    case StatusItemPresentation::xembedSquare:
        return buildTrayWindow(XEmbedStatusWindow::Shape::square);
    case StatusItemPresentation::wideSni:
    case StatusItemPresentation::sniWithLabel:
    case StatusItemPresentation::squareSni:
        return buildNotifierItem();
    }
}

void PanelStatusItem::buildNotifierItem()
{
    m_item = std::make_unique<StatusNotifierItem>(m_bus.connection());
    connect(m_item.get(), &StatusNotifierItem::activated, this, [this](QPoint position) {
        Q_EMIT clicked(hostTraits(m_host).sendsScreenPosition ? std::optional(position) : std::nullopt);
    });
    connect(m_item.get(), &StatusNotifierItem::contextMenuRequested, this, &PanelStatusItem::showMenuAt);
    m_item->setMenu([this] { return notifierMenu(); });
    redraw();
    m_isNewHost = true;
}

void PanelStatusItem::buildTrayWindow(XEmbedStatusWindow::Shape shape)
{
    m_window = std::make_unique<XEmbedStatusWindow>(shape);
    connect(m_window.get(), &XEmbedStatusWindow::clicked, this, [this](QPoint position) { Q_EMIT clicked(position); });
    connect(m_window.get(), &XEmbedStatusWindow::menuRequested, this, &PanelStatusItem::showMenuAt);
    redraw();
    connect(m_tray.get(), &SystemTray::docked, m_window.get(), &QWidget::show);
    connect(m_tray.get(), &SystemTray::undocked, m_window.get(), &QWidget::hide);
    m_tray->dock(m_window->winId());
}

void PanelStatusItem::updateAppearance()
{
    const PanelAppearance appearance = panelAppearance(m_host, m_tray ? m_tray->appearance() : PanelAppearance::unknown,
                                                       m_colorScheme.scheme(), paletteAppearance());
    if (std::exchange(m_appearance, appearance) == appearance)
        return;
    redraw();
    Q_EMIT appearanceChanged();
}

void PanelStatusItem::updateAvailability()
{
    const StatusItemAvailability availability = m_presentation == StatusItemPresentation::nothing
                                                    ? missingHost(m_environment.currentDesktop)
                                                    : StatusItemAvailability::shown;
    if (std::exchange(m_availability, availability) != availability)
        Q_EMIT availabilityChanged(availability);
}

void PanelStatusItem::redraw()
{
    const StatusItemStyle style = statusItemStyle(m_appearance);
    if (m_window)
        m_window->setContent(m_content, style);
    if (m_item)
        m_item->setContent(notifierContent(m_content, style, m_presentation, m_format, largestScale(), m_widths));
}

/// Hosts with labels open the menu on a single click, so the menu has to lead to the popover.
Menu PanelStatusItem::notifierMenu()
{
    Menu menu = m_menu ? m_menu() : Menu();
    if (m_presentation != StatusItemPresentation::sniWithLabel)
        return menu;
    MenuEntry open;
    open.text = localized(QStringLiteral("menu.open"));
    open.activate = [this] { Q_EMIT clicked(std::nullopt); };
    menu.insert(menu.begin(), std::move(open));
    return menu;
}

void PanelStatusItem::showMenuAt(QPoint position) const
{
    if (m_menu)
        m_environment.showMenu(m_menu(), position);
}

} // namespace tickwise
