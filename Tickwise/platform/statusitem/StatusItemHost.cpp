#include "platform/statusitem/StatusItemHost.h"

#include <QFile>
#include <QFileInfo>

namespace tickwise {

namespace {

struct NamedHost
{
    const char16_t *name;
    StatusItemHost host;
};

constexpr NamedHost executables[] = {
    {u"waybar", StatusItemHost::waybar},
    {u"mate-notification-area-applet", StatusItemHost::mate},
    {u"notification-area-applet", StatusItemHost::mate},
    {u"mate-panel", StatusItemHost::mate},
    {u"xapp-sn-watcher", StatusItemHost::cinnamon},
    {u"cinnamon", StatusItemHost::cinnamon},
    {u"xfce4-panel", StatusItemHost::xfce},
    {u"gnome-shell", StatusItemHost::gnome},
    {u"ayatana-indicator-application-service", StatusItemHost::ayatana},
    {u"indicator-application-service", StatusItemHost::ayatana},
    {u"kded5", StatusItemHost::plasma},
    {u"kded6", StatusItemHost::plasma},
    {u"plasmashell", StatusItemHost::plasma},
    {u"lxqt-panel", StatusItemHost::lxqt},
    {u"swaybar", StatusItemHost::swaybar},
};

constexpr NamedHost desktops[] = {
    {u"GNOME", StatusItemHost::gnome},       {u"KDE", StatusItemHost::plasma},
    {u"XFCE", StatusItemHost::xfce},         {u"MATE", StatusItemHost::mate},
    {u"LXQt", StatusItemHost::lxqt},         {u"X-Cinnamon", StatusItemHost::cinnamon},
    {u"Cinnamon", StatusItemHost::cinnamon},
};

// The kernel keeps 15 characters of a process's name, and other users' executables cannot be read as links.
constexpr int commLength = 15;
constexpr qint64 mostProcBytes = 64LL * 1024; ///< of a file; a command line may have megabytes

QByteArray procFile(qint64 pid, QLatin1StringView name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(name));
    return file.open(QIODevice::ReadOnly) ? file.read(mostProcBytes) : QByteArray();
}

bool isNamed(const QString &executable, const char16_t *name)
{
    const QStringView full(name);
    return executable == full || (executable.size() == commLength && full.startsWith(executable));
}

bool loadsXfceTray(const WatcherProcess &process)
{
    return process.executable.startsWith(QLatin1StringView("wrapper-")) &&
           !process.arguments.filter(QStringLiteral("/xfce4/")).isEmpty();
}

StatusItemHost hostForDesktop(const QString &currentDesktop)
{
    const QStringList names = currentDesktop.split(u':', Qt::SkipEmptyParts);
    for (const NamedHost &entry : desktops) {
        if (names.contains(QString::fromUtf16(entry.name), Qt::CaseInsensitive))
            return entry.host;
    }
    return StatusItemHost::unknown;
}

} // namespace

WatcherProcess watcherProcess(qint64 pid)
{
    WatcherProcess process;
    const QString link = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(pid));
    process.executable =
        link.isEmpty() ? QString::fromLocal8Bit(procFile(pid, QLatin1StringView("comm")).trimmed())
                       : QFileInfo(link.chopped(link.endsWith(QLatin1StringView(" (deleted)")) ? 10 : 0)).fileName();
    const QList<QByteArray> arguments = procFile(pid, QLatin1StringView("cmdline")).split('\0');
    for (const QByteArray &argument : arguments) {
        if (!argument.isEmpty())
            process.arguments << QString::fromLocal8Bit(argument);
    }
    process.directory = QFile::symLinkTarget(QStringLiteral("/proc/%1/cwd").arg(pid));
    return process;
}

StatusItemHost hostFor(const WatcherProcess &process, const QString &currentDesktop)
{
    if (process.executable.isEmpty())
        return hostForDesktop(currentDesktop);
    if (loadsXfceTray(process))
        return StatusItemHost::xfce;
    for (const NamedHost &entry : executables) {
        if (isNamed(process.executable, entry.name))
            return entry.host;
    }
    return StatusItemHost::unknown;
}

} // namespace tickwise
