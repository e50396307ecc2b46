#include "support/Clock.h"

#include <algorithm>

namespace tickwise {

TimePoint systemClock()
{
    return std::chrono::system_clock::now();
}

TimePoint::duration secondsDuration(double seconds)
{
    // A hundred years: a longer duration has no use and could leave the range of the clock.
    constexpr double longest = 100.0 * 365 * 86400;
    return std::chrono::duration_cast<TimePoint::duration>(
        std::chrono::duration<double>(std::clamp(seconds, -longest, longest)));
}

double secondsBetween(TimePoint earlier, TimePoint later)
{
    return std::chrono::duration<double>(later - earlier).count();
}

} // namespace tickwise
