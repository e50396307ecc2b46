#include "ui/updates/UpdateController.h"

namespace tickwise {

void UpdateController::attach(std::unique_ptr<UpdaterBackend> backend)
{
    m_backend = std::move(backend);
    const auto mirrorCanCheck = [this] { m_canCheckForUpdates = m_backend->bindableCanCheckForUpdates().value(); };
    const auto mirrorAutomaticallyChecks = [this] {
        m_automaticallyChecksForUpdates = m_backend->bindableAutomaticallyChecksForUpdates().value();
    };
    mirrorCanCheck();
    mirrorAutomaticallyChecks();
    m_canCheckObservation = m_backend->bindableCanCheckForUpdates().addNotifier(mirrorCanCheck);
    m_automaticallyChecksObservation =
        m_backend->bindableAutomaticallyChecksForUpdates().addNotifier(mirrorAutomaticallyChecks);
    m_isAvailable = true;
}

void UpdateController::setAutomaticallyChecksForUpdates(bool enabled)
{
    if (m_backend)
        m_backend->setAutomaticallyChecksForUpdates(enabled);
}

void UpdateController::checkForUpdates()
{
    if (m_backend)
        m_backend->checkForUpdates();
}

} // namespace tickwise
