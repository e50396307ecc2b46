#include "widget/program/FileWatcher.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace tickwise {

namespace {

constexpr std::chrono::milliseconds settleTime{20};
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
}

/// The folder, or the nearest one above it that is there.
QString nearestFolder(QString path)
{
    while (!QFileInfo(path).isDir() && folderOf(path) != path)
        path = folderOf(path);
    return path;
}

} // namespace

FileWatcher::FileWatcher(QString path, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_state(stateOf(m_path))
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, this, &FileWatcher::look);
    const auto settle = [this] {
        if (!m_settle.isActive())
            m_settle.start();
    };
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, settle);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, settle);
    watch();
}

FileWatcher::State FileWatcher::stateOf(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_ino, status.st_size, status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec};
}

/// The file for what is written into it, its folder for what replaces it, and the folder above for what replaces that.
QStringList FileWatcher::wantedPaths() const
{
    const QString folder = nearestFolder(folderOf(m_path));
    QStringList paths{folder};
    if (folder == folderOf(m_path))
        paths.append(folderOf(folder));
    if (QFileInfo::exists(m_path))
        paths.append(m_path);
    return paths;
}

// Watches anew each time: a watch stays with a file or folder that was renamed or replaced. A folder that is made
// between the look and the watch is found by the second round.
void FileWatcher::watch()
{
    QStringList wanted;
    do {
        if (const QStringList old = m_watcher.files() + m_watcher.directories(); !old.isEmpty())
            m_watcher.removePaths(old);
        wanted = wantedPaths();
        m_watcher.addPaths(wanted);
    } while (wanted != wantedPaths());
}

void FileWatcher::look()
{
    watch();
    if (const State state = stateOf(m_path); std::exchange(m_state, state) != state)
        Q_EMIT changed();
}

} // namespace tickwise
