#pragma once

#include "pipeline/StatusItem.h"

#include <QObject>
#include <QRect>
#include <QWindow>

#include <optional>

namespace tickwise {

/// A system tray that docks windows of other programs.
class SystemTray : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Whether a tray runs.
    virtual bool hasOwner() const = 0;

    /// What the tray's text color says about its background.
    virtual PanelAppearance appearance() const = 0;

    /// Asks the tray to take in one of our windows, which must stay hidden until `docked`: a tray that reparents a
    /// visible window takes it for withdrawn.
    virtual void dock(WId window) = 0;

    /// Where the docked window is on the screen, in device pixels; none while there is none.
    virtual std::optional<QRect> dockedGeometry() = 0;

Q_SIGNALS:
    void ownerChanged();
    void appearanceChanged();
    void docked();
    /// The tray has put the window back on the desktop.
    void undocked();
};

/// A rectangle in device pixels as Qt counts: from the origin of its screen on in points.
QRect fromDevicePixels(const QRect &pixels, QPoint screenOrigin, double devicePixelRatio);

} // namespace tickwise
