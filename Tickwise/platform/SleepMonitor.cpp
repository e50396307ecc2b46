#include "platform/SleepMonitor.h"

#include "platform/LoginManager.h"

namespace tickwise {

SleepMonitor::SleepMonitor(const QDBusConnection &systemBus, QObject *parent)
    : QObject(parent)
{
    if (!systemBus.isConnected())
        return;
    m_loginManager = std::make_unique<LoginManager>(systemBus);
    connect(m_loginManager.get(), &LoginManager::PrepareForSleep, this,
            [this](bool start) { start ? Q_EMIT willSleep() : Q_EMIT didWake(); });
}

SleepMonitor::~SleepMonitor() = default;

bool SleepMonitor::watchNetwork()
{
    if (!QNetworkInformation::loadDefaultBackend() && !QNetworkInformation::loadBackendByName(u"glib"))
        return false;
    const QNetworkInformation *const network = QNetworkInformation::instance();
    m_reachability = network->reachability();
    connect(network, &QNetworkInformation::reachabilityChanged, this, &SleepMonitor::noteReachability);
    return true;
}

void SleepMonitor::noteReachability(QNetworkInformation::Reachability reachability)
{
    const bool returned = reachability == QNetworkInformation::Reachability::Online && m_reachability != reachability;
    m_reachability = reachability;
    if (returned)
        Q_EMIT networkReturned();
}

} // namespace tickwise
