#pragma once

#include <QDBusConnection>

namespace tickwise {

/// Tells the desktop widgets, over the session bus, that the snapshot file is worth reading again.
class WidgetCenter
{
public:
    static constexpr char objectPath[] = "/com/pelmo/tickwise/WidgetCenter";
    static constexpr char interfaceName[] = "com.pelmo.tickwise.WidgetCenter";
    static constexpr char reloadSignal[] = "ReloadAllTimelines";

    /// `bus` may be unconnected: then there is nobody to tell.
    explicit WidgetCenter(QDBusConnection bus);

    void reloadAllTimelines();

private:
    QDBusConnection m_bus;
};

} // namespace tickwise
