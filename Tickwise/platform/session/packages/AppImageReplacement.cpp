#include "platform/session/packages/AppImageReplacement.h"

#include "support/DetachedWork.h"

#include <QFile>
#include <QSaveFile>

namespace tickwise {

namespace {

constexpr qint64 chunkBytes = 1024LL * 1024;

Result<void> copyContent(QFile &from, QSaveFile &to)
{
    while (!from.atEnd()) {
        const QByteArray chunk = from.read(chunkBytes);
        if (chunk.isEmpty())
            return failure(FileError{from.fileName(), from.errorString()});
        if (to.write(chunk) != chunk.size())
            return failure(FileError{to.fileName(), to.errorString()});
    }
    return {};
}

} // namespace

bool isAppImage(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(11);
    return head.startsWith("\x7f"
                           "ELF") &&
           (head.endsWith("AI\x01") || head.endsWith("AI\x02"));
}

Result<void> replaceProgram(const QString &source, const QString &target)
{
    QFile from(source);
    if (!from.open(QIODevice::ReadOnly))
        return failure(FileError{source, from.errorString()});
    QSaveFile to(target);
    const auto executable = QFile::permissions(target) | QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!to.open(QIODevice::WriteOnly) || !to.setPermissions(executable))
        return failure(FileError{target, to.errorString()});
    if (Result<void> copied = copyContent(from, to); !copied)
        return copied;
    if (!to.commit())
        return failure(FileError{target, to.errorString()});
    return {};
}

AppImageReplacement::AppImageReplacement(const QString &source, const QString &target, Completion<void> done)
{
    QObject::connect(&m_watcher, &QFutureWatcherBase::finished, &m_watcher, [this, done = std::move(done)] {
        const Completion<void> receiver = done; // the call may end this object
        receiver(m_watcher.result());
    });
    m_watcher.setFuture(runDetached([source, target] { return replaceProgram(source, target); }));
}

} // namespace tickwise
