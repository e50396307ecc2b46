#include "ui/updates/SparkleUpdaterBackend.h"

#include "ui/updates/DownloadFolder.h"
#include "ui/updates/UpdateSignature.h"

namespace tickwise {

bool isUsable(const UpdaterConfiguration &configuration)
{
    return configuration.feed.isValid() && configuration.feed.scheme() == QStringLiteral("https") &&
           !configuration.feed.host().isEmpty() && isPublicKey(configuration.publicKey);
}

SparkleUpdaterBackend::SparkleUpdaterBackend(UpdateController &controller, UpdaterConfiguration configuration,
                                             UpdaterServices services)
    : m_controller(&controller)
    , m_configuration(std::move(configuration))
    , m_services(std::move(services))
    , m_settings(m_services.storage)
    , m_schedule(m_services.clock, [this] { checkOnSchedule(); })
{
    DownloadFolder(m_configuration.downloadDirectory).clear(); // of an earlier run
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
    if (!m_session)
        openSession().check();
    else if (!m_session->isShown())
        m_session->check(); // also instead of one that the network's loss has left without an answer
    m_lastAttempt = m_services.clock();
    planNextCheck();
}

UpdateSession &SparkleUpdaterBackend::openSession()
{
    m_lastAttempt = m_services.clock();
    planNextCheck();
    m_session = std::make_unique<UpdateSession>(m_configuration, m_services, m_settings, m_installedVersion);
    UpdateSession *const session = m_session.get();
    connect(session, &UpdateSession::updateWaits, this, [this] { setUpdateAvailable(true); });
    connect(session, &UpdateSession::userAttentionReceived, this, [this] { setUpdateAvailable(false); });
    connect(session, &UpdateSession::stateChanged, this, [this] { m_canCheckForUpdates = !m_session->isWorking(); });
    connect(session, &UpdateSession::installed, this, [this](const QString &version) { m_installedVersion = version; });
    connect(session, &UpdateSession::finished, this, &SparkleUpdaterBackend::endSession);
    return *session;
}

void SparkleUpdaterBackend::endSession()
{
    setUpdateAvailable(false);
    m_services.driver.dismiss();
    m_session.reset();
    m_canCheckForUpdates = true;
}

void SparkleUpdaterBackend::setUpdateAvailable(bool available)
{
    if (m_controller)
        m_controller->setUpdateAvailable(available);
}

} // namespace tickwise
