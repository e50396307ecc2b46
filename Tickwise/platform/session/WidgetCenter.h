#pragma once

#include <QObject>

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

/// Hears what `WidgetCenter` tells the widgets, from any sender, also on a bus that ends and returns.
class WidgetReloads : public QObject
{
    Q_OBJECT

public:
    /// `bus` has to outlive it.
    explicit WidgetReloads(const SessionBus &bus, QObject *parent = nullptr);

Q_SIGNALS:
    /// The snapshot has changed visibly. Also emitted when the bus has returned, as something may have been missed.
    void reloadRequested();

private:
    void listen();

    const SessionBus &m_bus;
};

} // namespace tickwise
