#pragma once

#include "support/Subscription.h"

#include <QPointer>
#include <QProcess>
#include <QTimer>

namespace tickwise {

/// Opens a file with the program that the desktop has for its type. Fails where there is none; otherwise ends when the
/// handler was started, or has run for a while. Dropping it leaves the handler running.
class PackageOpening : public Operation
{
public:
    PackageOpening(const QString &path, std::chrono::milliseconds handlerTime, Completion<void> done);

private:
    void receiveExit(int code);
    void finish(const Result<void> &result);

    QString m_path;
    Completion<void> m_done;
    QObject m_context;
    QTimer m_timer;
    QPointer<QProcess> m_opener; ///< deletes itself when it has ended
};

} // namespace tickwise
