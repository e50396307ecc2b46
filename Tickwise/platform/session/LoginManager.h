#pragma once

#include <QDBusAbstractInterface>
#include <QDBusPendingCall>

namespace tickwise {

/// What is needed of org.freedesktop.login1.
class LoginManager : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    explicit LoginManager(const QDBusConnection &systemBus);

    /// The bus name.
    static QString service();

    /// Asks for a lock that delays sleep for as long as the returned file descriptor is open.
    QDBusPendingCall inhibitSleep();

Q_SIGNALS:
    /// True before the machine sleeps, false after it woke.
    void PrepareForSleep(bool start);
};

} // namespace tickwise
