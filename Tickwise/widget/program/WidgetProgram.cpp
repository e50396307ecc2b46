#include "widget/program/WidgetProgram.h"

#include "platform/session/DisplayServer.h"
#include "platform/session/LogHandler.h"
#include "platform/session/ProcessMemory.h"
#include "platform/storage/AppGroupContainer.h"
#include "platform/surfaces/DesktopSurfaceFactory.h"
#include "widget/program/OrdinarySurface.h"
#include "widget/program/ShippedCoins.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

namespace tickwise {

namespace {

constexpr char surfaceName[] = "tickwise-widget";
/// After this time the widget stands on the desktop.
constexpr std::chrono::seconds startUpDuration{2};

QString applicationId()
{
    return QString::fromLatin1(appInfo::bundleIdentifier);
}

QString widgetId()
{
    return applicationId() + QStringLiteral(".widget");
}

/// The application's program, which is installed beside this one.
QString applicationProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/tickwise");
}

} // namespace

bool prepareWidgetProcess()
{
    installLogHandler();
    QGuiApplication::setApplicationDisplayName(QString::fromLatin1(appInfo::displayName));
    QGuiApplication::setDesktopFileName(widgetId());
    QCoreApplication::setApplicationVersion(QString::fromLatin1(appInfo::version));
    if (prepareDisplay().backend != DisplayBackend::none)
        return true;
    std::fprintf(stderr, "%s\n", noDisplayMessage);
    return false;
}

WidgetProgram::WidgetProgram()
    : m_container(appGroupContainerPath(QString::fromLatin1(appInfo::appGroup)))
    , m_singleInstance(widgetId(), m_bus, SingleInstance::defaultLockDirectory(widgetId()))
    , m_storage(widgetId())
    , m_logos(CoinLogoCache::inContainer(m_container))
    , m_model(WidgetSnapshotStore{m_container}, shippedCoins)
    , m_reloads(m_bus)
    , m_opener(m_bus, applicationId(), applicationProgram())
    , m_controller(makeEnvironment())
{
    if (const std::optional<QString> path = WidgetSnapshotStore{m_container}.path())
        m_file.emplace(*path);
    connectServices();
}

WidgetEnvironment WidgetProgram::makeEnvironment()
{
    std::unique_ptr<DesktopSurface> surface =
        makeDesktopSurface({.name = surfaceName, .pointer = DesktopSurfaceOptions::Pointer::isTaken});
    const bool isOnLayer = surface && QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
    if (!surface)
        surface = std::make_unique<OrdinarySurface>();
    return {.model = m_model,
            .storage = m_storage,
            .surface = std::move(surface),
            .logos = [this](const QString &id) { return m_logos.image(id); },
            .openApplication = [this] { m_opener.open(QStringLiteral("tickwise://popover")); },
            .close = [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); },
            .hasChildWindows = !isOnLayer};
}

void WidgetProgram::connectServices()
{
    QObject::connect(&m_signals, &TerminationSignals::received, qApp, &QCoreApplication::quit);
    QObject::connect(&m_singleInstance, &SingleInstance::activated, &m_controller, &WidgetController::show);
    QObject::connect(&m_reloads, &WidgetReloads::reloadRequested, &m_model, [this] { reload(); });
    if (m_file)
        QObject::connect(&*m_file, &FileWatcher::changed, &m_model, [this] { reload(); });
}

void WidgetProgram::reload()
{
    if (m_logos.findMissing())
        m_controller.window().list().update();
    m_model.reload();
}

int WidgetProgram::run()
{
    if (m_singleInstance.claim({}, qEnvironmentVariable("XDG_ACTIVATION_TOKEN")) ==
        SingleInstance::Role::alreadyRunning)
        return 0;
    restoreEnvironment();
    m_model.reload();
    m_controller.show();
    QTimer::singleShot(startUpDuration, qApp, releaseUnusedMemory);
    return QCoreApplication::exec();
}

} // namespace tickwise
