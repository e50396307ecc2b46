#pragma once

#include "support/SuspendedTime.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QTimer>

#include <memory>

namespace tickwise {

class LoginManager;

/// When a sleep counts as over although nobody announces its end.
struct LostWakeLimits
{
    std::chrono::milliseconds checkPeriod{1000};   ///< how often the clocks are compared after `willSleep`
    std::chrono::milliseconds longestDelay{30000}; ///< awake for so long after `willSleep`: no sleep will follow
};

/// Tells when the machine sleeps and wakes. Holds a delay lock of org.freedesktop.login1 while the machine is awake, so
/// that it does not sleep before everybody has handled `willSleep`. Emits nothing where there is no such service.
class SleepMonitor : public QObject
{
    Q_OBJECT

public:
    /// `systemBus` is where org.freedesktop.login1 is; it may be unconnected.
    explicit SleepMonitor(const QDBusConnection &systemBus, SuspendedTime suspendedTime = systemSuspendedTime,
                          LostWakeLimits limits = {}, QObject *parent = nullptr);
    ~SleepMonitor() override;

Q_SIGNALS:
    void willSleep();
    /// May come twice for one sleep, and without `willSleep`.
    void didWake();

private:
    void prepareForSleep(bool start);
    void wake();
    void checkForLostWake();
    void takeDelayLock();

    QDBusConnection m_bus;
    SuspendedTime m_suspendedTime;
    LostWakeLimits m_limits;
    std::unique_ptr<LoginManager> m_loginManager;
    QDBusServiceWatcher m_serviceWatcher;
    QDBusUnixFileDescriptor m_delayLock; ///< invalid while the machine may sleep
    QTimer m_checkTimer;                 ///< runs from `willSleep` to `didWake`
    std::chrono::nanoseconds m_suspendedTimeBefore{0};
    std::chrono::milliseconds m_awakeTime{0};
};

} // namespace tickwise
