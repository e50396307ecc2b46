#pragma once

#include <QFileSystemWatcher>
#include <QTimer>

#include <cstdint>

namespace tickwise {

/// Tells when a file has become another: written, replaced by a rename, removed, or there for the first time. Its
/// folder may be missing, come later, and be replaced too.
class FileWatcher : public QObject
{
    Q_OBJECT

public:
    explicit FileWatcher(QString path, QObject *parent = nullptr);

Q_SIGNALS:
    /// Changes that come closely one after the other are told once.
    void changed();

private:
    /// One state of the file; all zero without one.
    struct State
    {
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t modified = 0; ///< nanoseconds
        bool operator==(const State &) const = default;
    };

    static State stateOf(const QString &path);
    QStringList wantedPaths() const;
    void watch();
    void look();

    QString m_path;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    State m_state;
};

} // namespace tickwise
