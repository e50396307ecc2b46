#include "platform/session/SleepMonitor.h"

#include "platform/session/LoginManager.h"

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

} // namespace tickwise
