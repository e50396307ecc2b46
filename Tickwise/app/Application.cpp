#include "app/Application.h"

#include "platform/AppGroupContainer.h"
#include "platform/DisplayServer.h"
#include "platform/Log.h"
#include "platform/PanelStatusItem.h"

#include <QApplication>
#include <QDBusConnection>

#include <cstdio>

namespace tickwise {

namespace {

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

} // namespace

bool prepareProcess()
{
    installLogHandler();
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
    , m_httpClient(m_configuration.tls)
    , m_delegate(makeEnvironment())
{
    QGuiApplication::setApplicationDisplayName(QString::fromLatin1(appInfo::displayName));
    QGuiApplication::setDesktopFileName(m_configuration.identifier);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setApplicationVersion(QString::fromLatin1(appInfo::version));

    QObject::connect(&m_signals, &TerminationSignals::received, qApp, &QCoreApplication::quit);
    QObject::connect(&m_delegate, &AppDelegate::quitRequested, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    QObject::connect(&m_singleInstance, &SingleInstance::activated, &m_delegate, &AppDelegate::activate);
    QObject::connect(&m_singleInstance, &SingleInstance::urlsOpened, &m_delegate, &AppDelegate::openUrls);
    QObject::connect(&m_sleepMonitor, &SleepMonitor::willSleep, &m_delegate, &AppDelegate::machineWillSleep);
    QObject::connect(&m_sleepMonitor, &SleepMonitor::didWake, &m_delegate, &AppDelegate::freshPricesNeeded);
    QObject::connect(&m_sleepMonitor, &SleepMonitor::networkReturned, &m_delegate, &AppDelegate::freshPricesNeeded);
}

AppEnvironment Application::makeEnvironment()
{
    return {.defaults = m_defaults,
            .httpClient = m_httpClient,
            .makeStatusItem = [] { return std::make_unique<PanelStatusItem>(QDBusConnection::sessionBus()); },
            .isSecondCopy = [this] { return isSecondCopy(); },
            .container = appGroupContainer(m_configuration.appGroup),
            .endpoints = m_configuration.endpoints};
}

bool Application::isSecondCopy()
{
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    return m_singleInstance.claim(openedUrls(), token) == SingleInstance::Role::alreadyRunning;
}

int Application::run()
{
    m_delegate.applicationDidFinishLaunching();
    m_sleepMonitor.watchNetwork();
    return QCoreApplication::exec();
}

} // namespace tickwise
