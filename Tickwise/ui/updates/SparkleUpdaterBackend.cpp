#include "ui/updates/SparkleUpdaterBackend.h"

#include "ui/updates/ReminderRules.h"
#include "ui/updates/UpdateDownload.h"

namespace tickwise {

SparkleUpdaterBackend::SparkleUpdaterBackend(UpdateController &controller, UpdaterConfiguration configuration,
                                             UpdaterServices services)
    : m_controller(&controller)
    , m_configuration(std::move(configuration))
    , m_services(std::move(services))
    , m_settings(m_services.storage)
    , m_schedule(m_services.clock, [this] { checkOnSchedule(); })
{
    removeDownloads(m_configuration.downloadDirectory); // of an earlier run
    m_canCheckForUpdates = true;
    m_automaticallyChecksForUpdates = m_settings.settings().automaticallyChecks;
    planNextCheck();
}

SparkleUpdaterBackend::~SparkleUpdaterBackend() = default;

void SparkleUpdaterBackend::checkForUpdates()
{
    if (!m_session)
        openSession().check();
    m_session->receiveUserAttention();
}

void SparkleUpdaterBackend::setAutomaticallyChecksForUpdates(bool enabled)
{
    if (enabled == m_automaticallyChecksForUpdates)
        return;
    UpdaterSettings settings = m_settings.settings();
    settings.automaticallyChecks = enabled;
    m_settings.update(settings);
    m_automaticallyChecksForUpdates = enabled;
    planNextCheck();
}

void SparkleUpdaterBackend::reconsiderSchedule()
{
    m_lastAttempt.reset();
    planNextCheck();
}

std::optional<std::chrono::milliseconds> SparkleUpdaterBackend::plannedInterval() const
{
    return m_schedule.isActive() ? std::optional(m_schedule.interval()) : std::nullopt;
}

void SparkleUpdaterBackend::planNextCheck()
{
    if (m_automaticallyChecksForUpdates)
        m_schedule.start(m_lastAttempt ? m_lastAttempt : m_settings.settings().lastCheck);
    else
        m_schedule.stop();
}

void SparkleUpdaterBackend::checkOnSchedule()
{
    const bool remindsOfUpdate = m_controller && m_controller->updateAvailable();
    if (!m_session)
        openSession().check();
    else if (remindsOfUpdate)
        m_session->check();
    m_lastAttempt = m_services.clock();
    planNextCheck();
}

UpdateSession &SparkleUpdaterBackend::openSession()
{
    m_lastAttempt = m_services.clock();
    planNextCheck();
    UpdateSessionDelegate &delegate = *this;
    m_session = std::make_unique<UpdateSession>(m_configuration, m_services, m_settings, delegate);
    return *m_session;
}

void SparkleUpdaterBackend::setUpdateAvailable(bool available)
{
    if (m_controller)
        m_controller->setUpdateAvailable(available);
}

bool SparkleUpdaterBackend::shouldHandleShowingScheduledUpdate(bool inImmediateFocus) const
{
    return tickwise::shouldHandleShowingScheduledUpdate(inImmediateFocus);
}

void SparkleUpdaterBackend::willHandleShowingUpdate(bool handlesShowingUpdate, bool userInitiated)
{
    if (becomesReminder(handlesShowingUpdate, userInitiated))
        setUpdateAvailable(true);
}

void SparkleUpdaterBackend::didReceiveUserAttention()
{
    setUpdateAvailable(false);
}

void SparkleUpdaterBackend::sessionDidChange()
{
    m_canCheckForUpdates = !m_session || !m_session->isWorking();
}

void SparkleUpdaterBackend::willFinishUpdateSession()
{
    setUpdateAvailable(false);
    m_services.driver.dismiss();
    m_session.reset();
    m_canCheckForUpdates = true;
}

} // namespace tickwise
