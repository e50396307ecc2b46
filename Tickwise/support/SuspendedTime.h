#pragma once

#include <chrono>
#include <functional>

namespace tickwise {

/// Tells for how long the machine has been suspended since it was started. Injected like `Clock`.
using SuspendedTime = std::function<std::chrono::nanoseconds()>;

/// The boot clock minus the monotonic clock, which stands still while the machine sleeps.
std::chrono::nanoseconds systemSuspendedTime();

/// True when the machine slept between two readings. A tenth of a second or less is the time that passed between
/// reading the one clock and the other.
bool hasSlept(std::chrono::nanoseconds before, std::chrono::nanoseconds now);

} // namespace tickwise
