#pragma once

#include "pipeline/StatusItem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace tickwise {

/// Whether the desktop prefers dark or light, as the settings portal tells; `unknown` where it does not.
class ColorSchemePortal : public QObject
{
    Q_OBJECT

public:
    explicit ColorSchemePortal(const QDBusConnection &bus);

    PanelAppearance scheme() const { return m_scheme; }

Q_SIGNALS:
    void schemeChanged();

private Q_SLOTS:
    void settingChanged(const QDBusMessage &message);

private:
    void read();
    void setScheme(const QVariant &value);

    QDBusConnection m_bus;
    PanelAppearance m_scheme = PanelAppearance::unknown;
};

} // namespace tickwise
