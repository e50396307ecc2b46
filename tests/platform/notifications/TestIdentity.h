#pragma once

#include "platform/notifications/NotificationText.h"

namespace tickwise::test {

inline const NotificationIdentity tickwiseIdentity{QStringLiteral("Tickwise"), QStringLiteral("icon-name"),
                                                   QStringLiteral("com.pelmo.tickwise")};

} // namespace tickwise::test
