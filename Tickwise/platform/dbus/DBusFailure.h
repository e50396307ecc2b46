#pragma once

#include "support/Result.h"

#include <QDBusError>

namespace tickwise {

/// A failed call as this program's error; `timedOut` where no answer came.
Error errorFromDBus(const QDBusError &error);

/// The error of a call that has no bus to go to.
Error noMessageBus();

} // namespace tickwise
