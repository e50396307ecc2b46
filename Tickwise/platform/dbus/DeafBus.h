#pragma once

#include <QString>

#include <chrono>

namespace tickwise {

/// Whether a bus at the D-Bus address takes a connection and does not answer on it within the time. False for one that
/// answers, where there is none, and for addresses of other kinds. Blocks for that long at most; any thread may call.
bool isDeafBus(const QString &address, std::chrono::microseconds longest);

} // namespace tickwise
