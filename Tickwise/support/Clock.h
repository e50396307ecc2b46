#pragma once

#include <chrono>
#include <functional>

namespace tickwise {

using TimePoint = std::chrono::system_clock::time_point;

/// Returns the current time. Injected wherever the time is needed.
using Clock = std::function<TimePoint()>;

/// The machine's clock.
TimePoint systemClock();

/// The duration of that many seconds, with their fraction; at most a hundred years.
TimePoint::duration secondsDuration(double seconds);

/// Seconds from `earlier` to `later`; negative when the clock was set back in between.
double secondsBetween(TimePoint earlier, TimePoint later);

} // namespace tickwise
