#include "platform/session/packages/PackageOpening.h"

#include <QMimeDatabase>

namespace tickwise {

namespace {

// Without a handler for the type, xdg-open may show the file in a web browser and call that a success.
const char openScript[] = R"sh([ -n "$(xdg-mime query default "$1")" ] && exec xdg-open "$2")sh";

} // namespace

PackageOpening::PackageOpening(const QString &path, std::chrono::milliseconds handlerTime, Completion<void> done)
    : m_path(path)
    , m_done(std::move(done))
    , m_opener(new QProcess)
{
    QObject::connect(m_opener, &QProcess::finished, m_opener, &QObject::deleteLater);
    QObject::connect(m_opener, &QProcess::finished, &m_context, [this](int code, QProcess::ExitStatus status) {
        receiveExit(status == QProcess::NormalExit ? code : -1);
    });
    // A process that cannot start never finishes. It may say so while it is being started.
    QObject::connect(
        m_opener, &QProcess::errorOccurred, &m_context,
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                receiveExit(-1);
        },
        Qt::QueuedConnection);
    QObject::connect(m_opener, &QProcess::errorOccurred, m_opener,
                     [opener = m_opener.data()](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             opener->deleteLater();
                     });
    // xdg-open waits for some handlers until their window is closed.
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(&m_context, [this] { finish({}); });
    m_timer.start(handlerTime);
    m_opener->setStandardInputFile(QProcess::nullDevice());
    m_opener->setStandardOutputFile(QProcess::nullDevice());
    m_opener->setStandardErrorFile(QProcess::nullDevice());
    m_opener->start(QStringLiteral("/bin/sh"),
                    {QStringLiteral("-c"), QString::fromLatin1(openScript), QStringLiteral("sh"),
                     QMimeDatabase().mimeTypeForFile(path).name(), path});
}

void PackageOpening::receiveExit(int code)
{
    if (code == 0)
        finish({});
    else
        finish(failure(
            DesktopServiceError{DesktopServiceError::Kind::noService, QStringLiteral("nothing opens %1").arg(m_path)}));
}

void PackageOpening::finish(const Result<void> &result)
{
    m_timer.stop();
    if (m_opener)
        m_opener->disconnect(&m_context);
    const Completion<void> done = m_done; // the call may end this object
    done(result);
}

} // namespace tickwise
