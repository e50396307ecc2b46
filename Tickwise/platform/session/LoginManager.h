#pragma once

#include <QDBusAbstractInterface>
#include <QDBusMessage>

namespace tickwise {

/// What is needed of org.freedesktop.login1.
class LoginManager : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    explicit LoginManager(const QDBusConnection &systemBus);

    /// The bus name.
    static QString service();

    /// The call that takes a delay lock: sleep waits for as long as the returned file descriptor is open.
    static QDBusMessage delaySleepCall();

Q_SIGNALS:
    /// True before the machine sleeps, false after it woke.
    void PrepareForSleep(bool start);
};

} // namespace tickwise
