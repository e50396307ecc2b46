#include "platform/session/DesktopMotion.h"

namespace tickwise {

bool asksForReducedMotion(const MotionSettings &settings)
{
    bool isNumber = false;
    const uint reduced = settings.reducedMotion.toUInt(&isNumber);
    if (isNumber)
        return reduced == 1;
    if (settings.animations.metaType() == QMetaType::fromType<bool>() && !settings.animations.toBool())
        return true;
    const double factor = settings.animationFactor.toDouble(&isNumber);
    return isNumber && factor == 0;
}

DesktopMotion::DesktopMotion(SessionBus &bus)
    : m_reducedMotion(bus, QStringLiteral("org.freedesktop.appearance"), QStringLiteral("reduced-motion"))
    , m_animations(bus, QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations"))
    , m_animationFactor(bus, QStringLiteral("org.kde.kdeglobals.KDE"), QStringLiteral("AnimationDurationFactor"))
{
}

bool DesktopMotion::isReduced() const
{
    return asksForReducedMotion({m_reducedMotion.value(), m_animations.value(), m_animationFactor.value()});
}

} // namespace tickwise
