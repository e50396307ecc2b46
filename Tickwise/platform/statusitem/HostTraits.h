#pragma once

#include "pipeline/StatusItem.h"
#include "platform/statusitem/StatusItemHost.h"
#include "support/Markup.h"

#include <QList>

#include <span>

namespace tickwise {

/// How the status item is shown to a host.
enum class StatusItemPresentation
{
    nothing,      ///< nobody would show it
    wideSni,      ///< a wide pixmap with the text, no label property
    xembed,       ///< a docked window at full width
    sniWithLabel, ///< a square colored icon with the text as its label
    squareSni,    ///< a square icon with a compact two-line text
    xembedSquare  ///< a docked square window, for trays that know nothing else
};

/// How the item is announced to the host's watcher.
enum class ItemAnnouncement
{
    byName,      ///< by the item's own bus name
    byConnection ///< by the unique name of our connection
};

/// What tells how dark a host's panel is; later sources stand in for earlier ones that tell nothing.
enum class AppearanceSource
{
    alwaysDark,
    trayThenDark,
    schemeThenDark,
    trayThenSchemeThenPalette,
    schemeThenPalette
};

/// What a host makes of a status item.
struct HostTraits
{
    StatusItemHost host;
    StatusItemPresentation withTray;    ///< where an X11 system tray can dock windows
    StatusItemPresentation withoutTray; ///< where none can
    ItemAnnouncement announcement;
    bool sendsScreenPosition; ///< false: the positions of its clicks are within the item, or meaningless
    AppearanceSource appearance;
    std::span<const int> pixmapHeights; ///< points, of wide and square pixmaps alike; empty: as the host is configured
    bool premultiplied;                 ///< against the protocol, which has straight alpha
    LineBreak toolTipBreak = LineBreak::element;
};

const HostTraits &hostTraits(StatusItemHost host);

/// How a host wants its pixmaps and its tooltip.
struct ItemFormat
{
    QList<int> heights; ///< of the pixmaps, in points
    bool premultiplied = false;
    LineBreak toolTipBreak = LineBreak::element;
    bool operator==(const ItemFormat &) const = default;
};

/// The presentation for a host; `hasTray` tells whether an X11 system tray can dock windows.
StatusItemPresentation presentationFor(StatusItemHost host, bool hasTray);

/// What a desktop that is called so (`XDG_CURRENT_DESKTOP`) lacks when no panel shows the item.
StatusItemAvailability missingHost(const QString &currentDesktop);

/// The format for a host that runs as that process.
ItemFormat itemFormatFor(StatusItemHost host, const WatcherProcess &process);

/// How dark the panel is, from the tray's own colors, the desktop's color scheme and the palette of our windows.
PanelAppearance panelAppearance(StatusItemHost host, PanelAppearance trayColors, PanelAppearance colorScheme,
                                PanelAppearance palette);

} // namespace tickwise
