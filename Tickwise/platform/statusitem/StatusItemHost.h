#pragma once

#include "pipeline/StatusItem.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace tickwise {

/// The programs that show status items, as far as they differ in what they make of one.
enum class StatusItemHost
{
    none,
    unknown,
    waybar,
    mate,
    cinnamon,
    xfce,
    gnome,
    ayatana,
    plasma,
    lxqt,
    swaybar
};

/// How the status item is shown to a host.
enum class StatusItemPresentation
{
    nothing,      ///< nobody would show it
    wideSni,      ///< a wide pixmap with the text, no label property
    xembed,       ///< a docked window at full width
    sniWithLabel, ///< a square coloured icon with the text as its label
    squareSni,    ///< a square icon with a compact two-line text
    xembedSquare  ///< a docked square window, for trays that know nothing else
};

/// The process that owns the watcher's bus name.
struct WatcherProcess
{
    QString executable;    ///< file name of the program, or what the kernel calls the process
    QStringList arguments; ///< its command line
};

/// How a host wants its pixmaps.
struct PixmapFormat
{
    QList<int> heights;         ///< points, of wide and square pixmaps alike
    bool premultiplied = false; ///< against the protocol, which has straight alpha
    bool operator==(const PixmapFormat &) const = default;
};

/// What /proc tells about a process; empty where it tells nothing.
WatcherProcess watcherProcess(qint64 pid);

/// The host that a watcher's process is; where the process is hidden, the one that `XDG_CURRENT_DESKTOP` suggests.
StatusItemHost hostFor(const WatcherProcess &process, const QString &currentDesktop);

/// The presentation for a host; `hasTray` tells whether an X11 system tray can dock windows.
StatusItemPresentation presentationFor(StatusItemHost host, bool hasTray);

/// Whether the item is announced to the host by its connection instead of by its bus name. GNOME's extension watches a
/// name that it is given; what it hears of the name at first makes it forget the properties that it has just read, and
/// it may then give the item up.
bool isAnnouncedByConnection(StatusItemHost host);

/// Whether the positions that the host sends with a click are on the screen; some send them within the item, or none.
bool tellsClickPosition(StatusItemHost host);

/// The pixmaps for a host that runs as that process.
PixmapFormat pixmapFormatFor(StatusItemHost host, const WatcherProcess &process);

/// How dark the panel is: the tray's own colours where it tells them, else the desktop's colour scheme where the host
/// follows it, else what the host usually looks like.
PanelAppearance panelAppearance(StatusItemHost host, PanelAppearance trayColors, PanelAppearance colorScheme,
                                PanelAppearance palette);

} // namespace tickwise
