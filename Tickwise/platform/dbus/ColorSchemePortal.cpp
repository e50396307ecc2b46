#include "platform/dbus/ColorSchemePortal.h"

namespace tickwise {

ColorSchemePortal::ColorSchemePortal(SessionBus &bus)
    : m_setting(bus, QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"))
{
    connect(&m_setting, &PortalSetting::valueChanged, this, &ColorSchemePortal::readScheme);
}

void ColorSchemePortal::readScheme()
{
    const uint number = m_setting.value().toUInt();
    const PanelAppearance scheme = number == 1   ? PanelAppearance::dark
                                   : number == 2 ? PanelAppearance::light
                                                 : PanelAppearance::unknown;
    if (std::exchange(m_scheme, scheme) != scheme)
        Q_EMIT schemeChanged();
}

} // namespace tickwise
