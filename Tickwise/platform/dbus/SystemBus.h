#pragma once

#include <QDBusConnection>

namespace tickwise {

/// Opens the system bus. Unconnected where there is none, or one that takes a connection and does not answer for
/// `SessionBus::longestSilence`; blocks for that long at most.
QDBusConnection openSystemBus();

} // namespace tickwise
