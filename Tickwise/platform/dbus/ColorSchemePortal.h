#pragma once

#include "pipeline/StatusItem.h"
#include "platform/dbus/PortalSetting.h"

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

private:
    void readScheme();

    PortalSetting m_setting;
    PanelAppearance m_scheme = PanelAppearance::unknown;
};

} // namespace tickwise
