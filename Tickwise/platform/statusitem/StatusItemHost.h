#pragma once

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

/// The process that owns the watcher's bus name.
struct WatcherProcess
{
    QString executable;    ///< file name of the program, or what the kernel calls the process
    QStringList arguments; ///< its command line, of which what lies beyond 64 KiB is cut off
    QString directory;     ///< its working directory, for relative paths in the command line; empty where it is hidden
};

/// What /proc tells about a process; empty where it tells nothing.
WatcherProcess watcherProcess(qint64 pid);

/// The host that a watcher's process is; where the process is hidden, the one that `XDG_CURRENT_DESKTOP` suggests.
StatusItemHost hostFor(const WatcherProcess &process, const QString &currentDesktop);

} // namespace tickwise
