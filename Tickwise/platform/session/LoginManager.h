#pragma once

#include <QDBusAbstractInterface>

namespace tickwise {

/// The one signal that is wanted of org.freedesktop.login1.
class LoginManager : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    explicit LoginManager(const QDBusConnection &systemBus);

Q_SIGNALS:
    /// True before the machine sleeps, false after it woke.
    void PrepareForSleep(bool start);
};

} // namespace tickwise
