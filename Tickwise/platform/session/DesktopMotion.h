#pragma once

#include "platform/dbus/PortalSetting.h"
#include "ui/MotionPreference.h"

namespace tickwise {

/// What desktops say about motion; a value that is not there, or of another type, says nothing.
struct MotionSettings
{
    QVariant reducedMotion;   ///< the portal's own: 1 asks for less
    QVariant animations;      ///< GNOME's, and GTK's: false turns them off
    QVariant animationFactor; ///< KDE's: durations are multiplied by it
};

/// The portal's own setting decides where it is there.
bool asksForReducedMotion(const MotionSettings &settings);

/// The preference of this desktop, as its settings portal tells it; full motion where there is none.
class DesktopMotion : public MotionPreference
{
public:
    /// The bus outlives the preference.
    explicit DesktopMotion(SessionBus &bus);

    bool isReduced() const override;

private:
    PortalSetting m_reducedMotion;
    PortalSetting m_animations;
    PortalSetting m_animationFactor;
};

} // namespace tickwise
