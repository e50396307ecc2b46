#pragma once

#include "platform/dbus/SessionBus.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QVariant>

#include <memory>

namespace tickwise {

/// One of the desktop's settings, as the settings portal tells it. A portal that starts later, or anew, is asked again.
class PortalSetting : public QObject
{
    Q_OBJECT

public:
    /// The bus outlives the setting.
    PortalSetting(SessionBus &bus, QString group, QString key);

    /// Invalid where no portal knows the setting, and until it has answered.
    const QVariant &value() const { return m_value; }

Q_SIGNALS:
    void valueChanged();

private Q_SLOTS:
    void settingChanged(const QDBusMessage &message);

private:
    void listen();
    void read();
    void setValue(const QVariant &value);

    SessionBus &m_bus;
    QString m_group;
    QString m_key;
    QVariant m_value;
    std::unique_ptr<QDBusServiceWatcher> m_portal; ///< of the current connection
};

} // namespace tickwise
