#pragma once

#include "pipeline/StatusItem.h"
#include "platform/dbus/SessionBus.h"

#include <QDBusMessage>
#include <QObject>

namespace tickwise {

/// Whether the desktop prefers dark or light, as the settings portal tells; `unknown` where it does not.
class ColorSchemePortal : public QObject
{
    Q_OBJECT

public:
    /// The bus outlives the portal.
    explicit ColorSchemePortal(SessionBus &bus);

    PanelAppearance scheme() const { return m_scheme; }

Q_SIGNALS:
    void schemeChanged();

private Q_SLOTS:
    void settingChanged(const QDBusMessage &message);

private:
    void listen();
    void read();
    void setScheme(const QVariant &value);

    SessionBus &m_bus;
    PanelAppearance m_scheme = PanelAppearance::unknown;
};

} // namespace tickwise
