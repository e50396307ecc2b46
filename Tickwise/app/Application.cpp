#include "app/Application.h"

#include "app/LocalizationManager.h"
#include "app/SystemEvents.h"
#include "platform/dbus/SystemBus.h"
#include "platform/notifications/PortalNotificationCenter.h"
#include "platform/session/DesktopLoginItem.h"
#include "platform/session/DisplayServer.h"
#include "platform/session/LogHandler.h"
#include "platform/session/ProcessMemory.h"
#include "platform/session/RunningProgram.h"
#include "platform/statusitem/PanelStatusItem.h"
#include "platform/storage/AppGroupContainer.h"
#include "platform/surfaces/DesktopPopoverSurface.h"
#include "platform/surfaces/DesktopSurfaceFactory.h"
#include "support/Localization.h"
#include "support/LogCategories.h"
#include "support/files/BaseDirectory.h"
#include "ui/controls/WindowActivation.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

namespace tickwise {

namespace {

/// Not "desktop": KWin stacks a surface of that name with the wallpaper, which covers it at the next click.
constexpr char overlaySurfaceName[] = "tickwise-overlay";

Q_LOGGING_CATEGORY(lcApplication, "com.pelmo.tickwise.Application")

/// After this time the first price is shown, or slow to come.
constexpr std::chrono::seconds startUpDuration{5};

/// The addresses, as they were written, that a launcher started this copy with.
QStringList openedAddresses()
{
    QStringList addresses;
    for (const QString &argument : QCoreApplication::arguments().mid(1)) {
        const QUrl url(argument);
        if (url.isValid() && !url.scheme().isEmpty())
            addresses.append(argument);
    }
    return addresses;
}

bool isFocused()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

QString downloadDirectory(const QString &identifier)
{
    return baseDirectory(QStandardPaths::GenericCacheLocation) + QLatin1Char('/') + identifier +
           QStringLiteral("/updates");
}

} // namespace

bool prepareProcess()
{
    installLogHandler();
    keepMemoryOfPolls();
    shareHeapAmongThreads();
    if (prepareDisplay().backend != DisplayBackend::none)
        return true;
    std::fprintf(stderr, "%s\n", noDisplayMessage);
    return false;
}

Application::Application(ApplicationConfiguration configuration)
    : m_configuration(std::move(configuration))
    , m_singleInstance(m_configuration.identifier, m_sessionBus,
                       SingleInstance::defaultLockDirectory(m_configuration.identifier))
    , m_defaults(m_configuration.identifier)
    , m_httpClient(m_configuration.authorities)
    , m_soundPlayer(QString::fromLatin1(appInfo::displayName), m_configuration.identifier)
    , m_notificationCenter(makeUserNotificationCenter(
          m_sessionBus, runsInSandbox(),
          {QString::fromLatin1(appInfo::displayName), m_configuration.identifier, m_configuration.identifier},
          [this] { m_soundPlayer.play(); }))
    , m_loginItem(
          makeLoginItem(m_configuration.identifier, m_sessionBus, runsInSandbox(), [this] { return portalReason(); }))
    , m_widgetCenter(m_sessionBus)
    , m_packageInstaller(runningAppImage(), &QCoreApplication::quit)
    , m_delegate(makeEnvironment())
    , m_settingsWindow(settingsWindowContext())
{
    QGuiApplication::setApplicationDisplayName(QString::fromLatin1(appInfo::displayName));
    QGuiApplication::setDesktopFileName(m_configuration.identifier);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setApplicationVersion(QString::fromLatin1(appInfo::version));
    restoreEnvironment();
    connectServices();
}

/// The delegate asks for the login item before it applies the stored language.
QString Application::portalReason()
{
    const AppLanguage language = m_delegate.settingsViewModel().settings().language;
    return localized(QStringLiteral("loginItem.portalReason"), LocalizationManager::bundleFor(language));
}

void Application::connectServices()
{
    QObject::connect(&m_signals, &TerminationSignals::received, qApp, &QCoreApplication::quit);
    QObject::connect(&m_delegate, &AppDelegate::quitRequested, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    QObject::connect(&m_delegate, &AppDelegate::activationRequested, qApp, bringOpenWindowsToFront);
    QObject::connect(&m_delegate, &AppDelegate::languageApplied, &m_updateWindow, &UpdateWindowPresenter::retranslate);
    QObject::connect(&m_delegate, &AppDelegate::languageApplied, &m_settingsWindow,
                     &SettingsWindowController::retranslate);
    QObject::connect(&m_delegate, &AppDelegate::settingsWindowRequested, &m_settingsWindow,
                     [this](SettingsTab tab, const QString &token) {
                         m_settingsWindow.open(tab);
                         bringOpenWindowsToFront(token);
                     });
    QObject::connect(&m_singleInstance, &SingleInstance::activated, &m_delegate, &AppDelegate::activate);
    QObject::connect(&m_singleInstance, &SingleInstance::urlsOpened, &m_delegate, &AppDelegate::openUrls);
    QObject::connect(&m_singleInstance, &SingleInstance::actionActivated, &m_delegate, &AppDelegate::performAction);
}

void Application::followSystemEvents()
{
    m_sleepMonitor.emplace(openSystemBus());
    connectSystemEvents(*m_sleepMonitor, m_networkWatch, m_delegate, [this] { networkMayHaveChanged(); });
}

AppEnvironment Application::makeEnvironment()
{
    AppEnvironment environment{
        .defaults = m_defaults,
        .httpClient = m_httpClient,
        .notificationCenter = *m_notificationCenter,
        .loginItem = *m_loginItem,
        .makeStatusItem = [this] { return makeStatusItem(); },
        .makePopoverSurface = makePopoverSurface,
        .makeDesktopSurface = [] { return makeDesktopSurface({.name = overlaySurfaceName}); },
        .reloadWidgets = [this] { m_widgetCenter.reloadAllTimelines(); },
        .isSecondCopy = [this] { return isSecondCopy(); },
        .container = appGroupContainer(m_configuration.appGroup),
        .endpoints = m_configuration.endpoints,
    };
    if (!m_configuration.feedUrl.isEmpty())
        environment.attachUpdater = [this](UpdateController &controller) { attachUpdater(controller); };
    return environment;
}

std::unique_ptr<StatusItem> Application::makeStatusItem()
{
    auto item = std::make_unique<PanelStatusItem>(m_sessionBus);
    QObject::connect(item.get(), &StatusItem::availabilityChanged, &m_settingsWindow,
                     &SettingsWindowController::setStatusItemAvailability);
    return item;
}

SettingsWindowContext Application::settingsWindowContext()
{
    return {
        .settings = m_delegate.settingsViewModel(),
        .storage = m_defaults,
        .catalog = m_delegate.catalog(),
        .updates = m_delegate.updateController(),
        .watchlist = [this]() -> WatchlistViewModel & { return m_delegate.watchlistViewModel(); },
        .logos = [this]() -> CoinLogoStore & { return m_delegate.logoStore(); },
        .motion = [this]() -> const MotionPreference & { return motion(); },
        .about = {.name = QString::fromLatin1(appInfo::displayName),
                  .version = QString::fromLatin1(appInfo::version),
                  .contact = QString::fromLatin1(appInfo::contact),
                  .projectLink = QString::fromLatin1(appInfo::projectLink)},
        .hasOverlay = [this] { return m_delegate.desktopOverlay().isAvailable(); },
        .adjustOverlay = [this] { m_delegate.notificationCenter().post(NotificationCenter::adjustDesktopOverlay); }};
}

/// Asks the desktop when something is shown that moves.
const MotionPreference &Application::motion()
{
    if (!m_motion)
        m_motion = std::make_unique<DesktopMotion>(m_sessionBus);
    return *m_motion;
}

bool Application::isSecondCopy()
{
    const QStringList addresses = openedAddresses();
    const QString token = takeActivationToken();
    if (m_singleInstance.claim(addresses, token) == SingleInstance::Role::alreadyRunning)
        return true;
    // After the start, as with addresses that a launcher opens later.
    QMetaObject::invokeMethod(
        &m_delegate, [this, addresses, token] { m_delegate.openUrls(addresses, token); }, Qt::QueuedConnection);
    return false;
}

void Application::attachUpdater(UpdateController &controller)
{
    const UpdaterConfiguration configuration{QUrl(m_configuration.feedUrl), m_configuration.feedKey,
                                             QString::fromLatin1(appInfo::version), QSysInfo::productVersion(),
                                             downloadDirectory(m_configuration.identifier)};
    if (!isUsable(configuration)) {
        qCWarning(lcApplication, "No updates: the feed is not behind https, or there is no key for it");
        return;
    }
    auto backend = std::make_unique<SparkleUpdaterBackend>(
        controller, configuration,
        UpdaterServices{m_httpClient, systemClock, m_defaults, m_updateWindow, isFocused, m_packageInstaller});
    m_updater = backend.get();
    controller.attach(std::move(backend));
}

void Application::networkMayHaveChanged()
{
    m_httpClient.forgetConnections();
    if (m_updater)
        m_updater->reconsiderSchedule();
}

int Application::run()
{
    m_delegate.applicationDidFinishLaunching();
    // The system bus is opened while the first prices are on their way.
    QTimer::singleShot(0, &m_delegate, [this] { followSystemEvents(); });
    QTimer::singleShot(startUpDuration, &m_delegate, [this] {
        m_delegate.catalog().repack();
        releaseUnusedMemory();
    });
    return QCoreApplication::exec();
}

} // namespace tickwise
