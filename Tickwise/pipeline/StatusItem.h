#pragma once

#include "pipeline/Menu.h"

#include <QColor>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QString>

#include <functional>
#include <optional>

namespace tickwise {

/// Whether the panel under the status item is dark or light.
enum class PanelAppearance
{
    unknown,
    light,
    dark
};

/// Whether a panel shows the status item, and what the desktop lacks where none does.
enum class StatusItemAvailability
{
    unknown, ///< still being found out
    shown,
    needsExtension, ///< the GNOME extension that shows status items
    needsTrayBar,   ///< a bar with a tray, on a compositor that brings none
    needsPanel      ///< a panel with a place for status items
};

/// How the 24-hour change points; for presentations that cannot color their text.
enum class StatusTrend
{
    none,
    up,
    down
};

/// What the status item shows; made by `statusItemContent`, drawn by a `StatusItem`.
struct StatusItemContent
{
    static constexpr double logoLength = 28.0; ///< points
    static constexpr double pillRadius = 4.0;  ///< points

    bool logo = true;                ///< logo mode: no text, length `logoLength`
    QString text;                    ///< "BTC 67,432", with one blank on each side inside a pill
    QString symbol;                  ///< "BTC"
    QString price;                   ///< "67,432"
    std::optional<QColor> textColor; ///< none: the panel's own text color
    std::optional<QColor> pillColor; ///< none: no pill
    StatusTrend trend = StatusTrend::none;
    QString title; ///< plain status text, or "Tickwise" in logo mode
    QString toolTipTitle;
    QString toolTipBody; ///< lines separated by "\n", plain text
    bool operator==(const StatusItemContent &) const = default;
};

/// The item in the panel. Implementations find the panel, follow it when it comes, goes and returns, and redraw only
/// when the content changed. Main thread only.
class StatusItem : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void setContent(const StatusItemContent &content) = 0;

    /// The menu is asked for at once and at each `menuChanged`, and when we show it ourselves.
    virtual void setMenu(std::function<Menu()> menu) = 0;

    /// What the menu is made from has changed. Panels have to hear of that before they open the menu.
    virtual void menuChanged() = 0;

    /// Where the item is on the screen, in global device-independent pixels; none where the host does not say.
    virtual std::optional<QRect> geometry() const { return std::nullopt; }

    virtual PanelAppearance appearance() const = 0;

    virtual StatusItemAvailability availability() const { return StatusItemAvailability::shown; }
    bool isShown() const { return availability() == StatusItemAvailability::shown; }

Q_SIGNALS:
    /// A primary click. `position` is in global screen coordinates where the host tells them.
    void clicked(std::optional<QPoint> position);
    void appearanceChanged();
    void availabilityChanged(tickwise::StatusItemAvailability availability);
};

} // namespace tickwise
