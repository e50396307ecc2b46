#pragma once

namespace tickwise {

class SessionBus;

/// Tells the desktop widgets, over the session bus, that the snapshot file has changed visibly.
class WidgetCenter
{
public:
    static constexpr char objectPath[] = "/com/pelmo/tickwise/WidgetCenter";
    static constexpr char interfaceName[] = "com.pelmo.tickwise.WidgetCenter";
    static constexpr char reloadSignal[] = "ReloadAllTimelines";

    /// `bus` has to outlive it.
    explicit WidgetCenter(const SessionBus &bus);

    /// Emits the signal; without a bus there is nobody to tell.
    void reloadAllTimelines() const;

private:
    const SessionBus &m_bus;
};

} // namespace tickwise
