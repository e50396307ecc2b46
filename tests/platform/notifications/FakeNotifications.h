#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace tickwise::test {

/// A notification service with the capabilities that the test gives it. It has its connection to itself; `die` ends
/// that.
class FakeNotifications : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Call
    {
        QString applicationName;
        uint replaces;
        QString icon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int timeout;
    };

    FakeNotifications(const QDBusConnection &bus, QStringList names)
        : capabilities(std::move(names))
        , m_bus(bus)
    {
        m_bus.registerObject(objectPath(), this, QDBusConnection::ExportScriptableContents);
        if (!m_bus.registerService(QStringLiteral("org.freedesktop.Notifications")))
            qFatal("the notification service's name is taken");
    }

    /// Ends as a crash does: the connection closes.
    void die()
    {
        // QtDBus closes the connection on another thread, which must not find an object that ends meanwhile.
        m_bus.unregisterObject(objectPath());
        QDBusConnection::disconnectFromBus(m_bus.name());
        m_bus = QDBusConnection(QString()); // the last reference
    }

    static QString objectPath() { return QStringLiteral("/org/freedesktop/Notifications"); }

    std::vector<Call> calls;
    QStringList capabilities;
    int questions = 0;    ///< calls of GetCapabilities
    bool hangs = false;   ///< answers nothing any more
    bool refuses = false; ///< answers Notify with an error

public Q_SLOTS:
    Q_SCRIPTABLE QStringList GetCapabilities()
    {
        ++questions;
        setDelayedReply(hangs);
        return capabilities;
    }
    Q_SCRIPTABLE uint Notify(const QString &applicationName, uint replaces, const QString &icon, const QString &summary,
                             const QString &body, const QStringList &actions, const QVariantMap &hints, int timeout)
    {
        setDelayedReply(hangs);
        if (refuses)
            sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("too many"));
        calls.push_back({applicationName, replaces, icon, summary, body, actions, hints, timeout});
        return static_cast<uint>(calls.size());
    }

Q_SIGNALS:
    Q_SCRIPTABLE void ActionInvoked(uint id, const QString &actionKey);
    Q_SCRIPTABLE void ActivationToken(uint id, const QString &token);
    Q_SCRIPTABLE void NotificationClosed(uint id, uint reason);

private:
    QDBusConnection m_bus;
};

} // namespace tickwise::test
