#include "ui/LaunchAtLoginService.h"

#include "support/LogCategories.h"
#include "ui/LoginItem.h"

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcLaunchAtLogin, "com.pelmo.tickwise.LaunchAtLogin")

} // namespace

void LaunchAtLoginService::setEnabled(bool enabled)
{
    m_item->setRegistered(enabled, [](const Result<void> &result) {
        if (!result)
            qCWarning(lcLaunchAtLogin, "Failed to update login item: %ls",
                      qUtf16Printable(description(result.error())));
    });
}

} // namespace tickwise
