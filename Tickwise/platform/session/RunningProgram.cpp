#include "platform/session/RunningProgram.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace tickwise {

namespace {

/// Whether our own executable lies in a folder below the root.
bool runsInside(const QString &folder)
{
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    const QString executable = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    return canonical.size() > 1 && executable.startsWith(canonical + u'/');
}

} // namespace

QString runningAppImage()
{
    const QFileInfo image(qEnvironmentVariable("APPIMAGE"));
    const bool isImage = image.isAbsolute() && image.isFile();
    return isImage && runsInside(qEnvironmentVariable("APPDIR")) ? image.filePath() : QString();
}

QString runningProgram()
{
    const QString appImage = runningAppImage();
    return appImage.isEmpty() ? QCoreApplication::applicationFilePath() : appImage;
}

bool runsInSandbox()
{
    return QFile::exists(QStringLiteral("/.flatpak-info")) || runsInside(qEnvironmentVariable("SNAP"));
}

} // namespace tickwise
