#include "platform/session/SleepMonitor.h"

#include "platform/dbus/BusCall.h"
#include "platform/session/LoginManager.h"

namespace tickwise {

SleepMonitor::SleepMonitor(const QDBusConnection &systemBus, SuspendedTime suspendedTime, LostWakeLimits limits,
                           QObject *parent)
    : QObject(parent)
    , m_bus(systemBus)
    , m_suspendedTime(std::move(suspendedTime))
    , m_limits(limits)
    , m_serviceWatcher(LoginManager::service(), systemBus, QDBusServiceWatcher::WatchForRegistration)
{
    if (!m_bus.isConnected())
        return;
    m_checkTimer.setInterval(m_limits.checkPeriod);
    connect(&m_checkTimer, &QTimer::timeout, this, &SleepMonitor::checkForLostWake);
    m_loginManager = std::make_unique<LoginManager>(m_bus);
    connect(m_loginManager.get(), &LoginManager::PrepareForSleep, this, &SleepMonitor::prepareForSleep);
    connect(&m_serviceWatcher, &QDBusServiceWatcher::serviceRegistered, this, &SleepMonitor::takeDelayLock);
    takeDelayLock();
}

SleepMonitor::~SleepMonitor() = default;

void SleepMonitor::prepareForSleep(bool start)
{
    if (!start)
        return wake();
    m_suspendedTimeBefore = m_suspendedTime();
    m_awakeTime = std::chrono::milliseconds(0);
    m_checkTimer.start();
    Q_EMIT willSleep();
    m_delayLock = QDBusUnixFileDescriptor();
}

void SleepMonitor::wake()
{
    m_checkTimer.stop();
    takeDelayLock();
    Q_EMIT didWake();
}

// The timer stands still while the machine sleeps, so that it counts the time awake.
void SleepMonitor::checkForLostWake()
{
    m_awakeTime += m_limits.checkPeriod;
    if (hasSlept(m_suspendedTimeBefore, m_suspendedTime()) || m_awakeTime >= m_limits.longestDelay)
        wake();
}

void SleepMonitor::takeDelayLock()
{
    sendCall<QDBusUnixFileDescriptor>(m_bus, LoginManager::delaySleepCall(), this,
                                      [this](const Result<QDBusUnixFileDescriptor> &lock) {
                                          const bool isAwake = !m_checkTimer.isActive();
                                          if (lock && isAwake)
                                              m_delayLock = *lock;
                                      });
}

} // namespace tickwise
