#pragma once

#include <QDBusConnection>
#include <QObject>

#include <memory>

namespace tickwise {

class LoginManager;

/// Tells when the machine sleeps and wakes. Quiet where nobody can tell.
class SleepMonitor : public QObject
{
    Q_OBJECT

public:
    /// `systemBus` is where org.freedesktop.login1 speaks; it may be unconnected.
    explicit SleepMonitor(const QDBusConnection &systemBus, QObject *parent = nullptr);
    ~SleepMonitor() override;

Q_SIGNALS:
    void willSleep();
    void didWake();

private:
    std::unique_ptr<LoginManager> m_loginManager;
};

} // namespace tickwise
