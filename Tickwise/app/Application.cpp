#include "app/Application.h"

#include "platform/notifications/PortalNotificationCenter.h"
#include "platform/session/DesktopLoginItem.h"
#include "platform/session/DisplayServer.h"
#include "platform/session/LogHandler.h"
#include "platform/session/ProcessMemory.h"
#include "platform/statusitem/PanelStatusItem.h"
#include "platform/storage/AppGroupContainer.h"
#include "platform/surfaces/DesktopPopoverSurface.h"
#include "support/Localization.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QStandardPaths>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace tickwise {

namespace {

/// When the first price is shown, or slow to come.
constexpr std::chrono::seconds startIsOver{5};

/// The addresses that a launcher started this copy with.
QList<QUrl> openedUrls()
{
    QList<QUrl> urls;
    for (const QString &argument : QCoreApplication::arguments().mid(1)) {
        const QUrl url(argument);
        if (url.isValid() && !url.scheme().isEmpty())
            urls.append(url);
    }
    return urls;
}

bool isFocused()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

void openPackage(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

/// Raises every window that is open; the one inside a panel's tray has no frame. The desktop lets a program raise
/// itself for a token that it gave.
void bringToFront(const QString &token)
{
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || window->windowFlags().testFlag(Qt::FramelessWindowHint))
            continue;
        window->raise();
        window->activateWindow();
    }
}

QString downloadDirectory(const QString &identifier)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QLatin1Char('/') + identifier +
           QStringLiteral("/updates");
}

} // namespace

bool prepareProcess()
{
    installLogHandler();
    keepMemoryOfPolls();
    if (prepareDisplay().backend != DisplayBackend::none)
        return true;
    std::fprintf(stderr, "%s\n", noDisplayMessage);
    return false;
}

Application::Application(ApplicationConfiguration configuration)
    : m_configuration(std::move(configuration))
    , m_singleInstance(m_configuration.identifier, QDBusConnection::sessionBus(),
                       SingleInstance::defaultLockDirectory(m_configuration.identifier))
    , m_sleepMonitor(QDBusConnection::systemBus())
    , m_defaults(m_configuration.defaultsOrganization, m_configuration.defaultsApplication)
    , m_httpClient(m_configuration.authorities)
    , m_soundPlayer(QString::fromLatin1(appInfo::displayName), m_configuration.identifier)
    , m_notificationCenter(makeUserNotificationCenter(
          QDBusConnection::sessionBus(), runsInSandbox(),
          {QString::fromLatin1(appInfo::displayName), m_configuration.identifier, m_configuration.identifier},
          [this] { m_soundPlayer.play(); }))
    , m_loginItem(makeLoginItem(m_configuration.identifier, QDBusConnection::sessionBus(), runsInSandbox(),
                                localized(QStringLiteral("general.launch.atLogin"))))
    , m_widgetCenter(QDBusConnection::sessionBus())
    , m_delegate(makeEnvironment())
{
    QGuiApplication::setApplicationDisplayName(QString::fromLatin1(appInfo::displayName));
    QGuiApplication::setDesktopFileName(m_configuration.identifier);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setApplicationVersion(QString::fromLatin1(appInfo::version));
    connectServices();
}

void Application::connectServices()
{
    QObject::connect(&m_signals, &TerminationSignals::received, qApp, &QCoreApplication::quit);
    QObject::connect(&m_delegate, &AppDelegate::quitRequested, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    QObject::connect(&m_delegate, &AppDelegate::activationRequested, qApp, bringToFront);
    QObject::connect(&m_delegate, &AppDelegate::languageApplied, &m_updateWindow, &UpdateWindowPresenter::retranslate);
    QObject::connect(&m_singleInstance, &SingleInstance::activated, &m_delegate, &AppDelegate::activate);
    QObject::connect(&m_singleInstance, &SingleInstance::urlsOpened, &m_delegate, &AppDelegate::openUrls);
    QObject::connect(&m_sleepMonitor, &SleepMonitor::willSleep, &m_delegate, &AppDelegate::machineWillSleep);
    QObject::connect(&m_sleepMonitor, &SleepMonitor::didWake, &m_delegate, [this] { freshPricesNeeded(); });
    QObject::connect(&m_networkWatch, &NetworkWatch::networkReturned, &m_delegate, [this] { freshPricesNeeded(); });
}

AppEnvironment Application::makeEnvironment()
{
    AppEnvironment environment{
        .defaults = m_defaults,
        .httpClient = m_httpClient,
        .notificationCenter = *m_notificationCenter,
        .loginItem = *m_loginItem,
        .makeStatusItem = [] { return std::make_unique<PanelStatusItem>(QDBusConnection::sessionBus()); },
        .makePopoverSurface = makePopoverSurface,
        .reloadWidgets = [this] { m_widgetCenter.reloadAllTimelines(); },
        .isSecondCopy = [this] { return isSecondCopy(); },
        .container = appGroupContainer(m_configuration.appGroup),
        .endpoints = m_configuration.endpoints,
    };
    if (!m_configuration.feedUrl.isEmpty())
        environment.attachUpdater = [this](UpdateController &controller) { attachUpdater(controller); };
    return environment;
}

bool Application::isSecondCopy()
{
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    return m_singleInstance.claim(openedUrls(), token) == SingleInstance::Role::alreadyRunning;
}

void Application::attachUpdater(UpdateController &controller)
{
    auto backend = std::make_unique<SparkleUpdaterBackend>(
        controller,
        UpdaterConfiguration{QUrl(m_configuration.feedUrl), m_configuration.feedKey,
                             QString::fromLatin1(appInfo::version), QSysInfo::productVersion(),
                             downloadDirectory(m_configuration.identifier)},
        UpdaterServices{m_httpClient, systemClock, m_defaults, m_updateWindow, isFocused, openPackage});
    m_updater = backend.get();
    controller.attach(std::move(backend));
}

void Application::freshPricesNeeded()
{
    m_httpClient.forgetConnections();
    m_delegate.freshPricesNeeded();
    if (m_updater)
        m_updater->reconsiderSchedule();
}

int Application::run()
{
    m_delegate.applicationDidFinishLaunching();
    QTimer::singleShot(startIsOver, qApp, releaseUnusedMemory);
    return QCoreApplication::exec();
}

} // namespace tickwise
