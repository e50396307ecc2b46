#include "platform/session/packages/DesktopPackageInstaller.h"

#include "platform/session/packages/AppImageReplacement.h"
#include "platform/session/packages/PackageOpening.h"

#include <QCoreApplication>
#include <QProcess>

namespace tickwise {

namespace {

/// A handler that runs so long has opened the package.
constexpr std::chrono::seconds handlerTime{10};

// The next copy must not find this one: it would take itself for a second one and end.
const char startScript[] = R"sh(for i in $(seq 600); do kill -0 "$1" 2>/dev/null || exec "$2"; sleep 0.1; done)sh";

Completion<void> installedAs(PackageInstallation installation, Completion<PackageInstallation> done)
{
    return [installation, done = std::move(done)](const Result<void> &result) {
        if (result)
            done(installation);
        else
            done(tl::unexpected(result.error()));
    };
}

} // namespace

void startAfterProcess(qint64 process, const QString &program)
{
    QProcess::startDetached(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QString::fromLatin1(startScript),
                                                        QStringLiteral("sh"), QString::number(process), program});
}

DesktopPackageInstaller::DesktopPackageInstaller(QString appImage, std::function<void()> quit)
    : m_appImage(std::move(appImage))
    , m_quit(std::move(quit))
{
}

Subscription DesktopPackageInstaller::install(const QString &path, Completion<PackageInstallation> done)
{
    if (!m_appImage.isEmpty() && isAppImage(path))
        return Subscription(std::make_unique<AppImageReplacement>(
            path, m_appImage, installedAs(PackageInstallation::replaced, std::move(done))));
    return Subscription(
        std::make_unique<PackageOpening>(path, handlerTime, installedAs(PackageInstallation::opened, std::move(done))));
}

void DesktopPackageInstaller::restart()
{
    startAfterProcess(QCoreApplication::applicationPid(), m_appImage);
    m_quit();
}

} // namespace tickwise
