#pragma once

#include <QDBusConnection>
#include <QNetworkInformation>
#include <QObject>

#include <memory>

namespace tickwise {

class LoginManager;

/// Tells when the machine sleeps and wakes, and when the network comes back. Quiet where nobody can tell.
class SleepMonitor : public QObject
{
    Q_OBJECT

public:
    /// `systemBus` is where org.freedesktop.login1 speaks; it may be unconnected.
    explicit SleepMonitor(const QDBusConnection &systemBus, QObject *parent = nullptr);
    ~SleepMonitor() override;

    /// Starts watching the network. False when this system has no way to tell.
    bool watchNetwork();

    /// Takes a new state of the network; `watchNetwork` connects it.
    void noteReachability(QNetworkInformation::Reachability reachability);

Q_SIGNALS:
    void willSleep();
    void didWake();
    /// The network can be reached again. A hint only: some systems say so without knowing.
    void networkReturned();

private:
    std::unique_ptr<LoginManager> m_loginManager;
    QNetworkInformation::Reachability m_reachability = QNetworkInformation::Reachability::Unknown;
};

} // namespace tickwise
