#include "support/MainThread.h"

#include <QCoreApplication>
#include <QThread>

namespace tickwise {

void requireMainThread(const char *function)
{
    const QCoreApplication *const application = QCoreApplication::instance();
    if (application && application->thread() != QThread::currentThread())
        qFatal("%s must be called on the main thread", function);
}

} // namespace tickwise
