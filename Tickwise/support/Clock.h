#pragma once

#include <chrono>
#include <functional>

namespace tickwise {

using TimePoint = std::chrono::system_clock::time_point;

/// Tells the time. Injected wherever time is asked for.
using Clock = std::function<TimePoint()>;

/// The machine's clock.
TimePoint systemClock();

/// `seconds` may have a fraction.
TimePoint::duration secondsDuration(double seconds);

/// Seconds from `earlier` to `later`; negative when the clock went back in between.
double secondsBetween(TimePoint earlier, TimePoint later);

} // namespace tickwise
