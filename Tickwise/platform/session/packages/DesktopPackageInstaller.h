#pragma once

#include "ui/updates/PackageInstaller.h"

#include <chrono>

namespace tickwise {

/// Replaces the AppImage that this program runs from; any other package is opened with the desktop's handler.
class DesktopPackageInstaller : public PackageInstaller
{
public:
    /// `appImage` is the running one, or empty; `quit` ends the program.
    DesktopPackageInstaller(QString appImage, std::function<void()> quit);

    Subscription install(const QString &path, Completion<PackageInstallation> done) override;
    void restart() override;

private:
    QString m_appImage;
    std::function<void()> m_quit;
};

/// Starts the program when the process has ended. Gives up after a minute.
void startAfterProcess(qint64 process, const QString &program);

} // namespace tickwise
