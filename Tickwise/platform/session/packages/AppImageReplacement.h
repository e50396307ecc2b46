#pragma once

#include "support/Result.h"
#include "support/Subscription.h"

#include <QFutureWatcher>

namespace tickwise {

/// Whether the file is an AppImage, told by its content.
bool isAppImage(const QString &path);

/// Puts the content of `source`, executable, in the place of `target` in one step: `target` is the old file or the
/// whole new one. A program that runs from the old file goes on.
Result<void> replaceProgram(const QString &source, const QString &target);

/// Calls `replaceProgram` in a thread of its own. Dropping it does not stop a replacement that has begun.
class AppImageReplacement : public Operation
{
public:
    AppImageReplacement(const QString &source, const QString &target, Completion<void> done);

private:
    QFutureWatcher<Result<void>> m_watcher;
};

} // namespace tickwise
