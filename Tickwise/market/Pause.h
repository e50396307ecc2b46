#pragma once

#include "support/Clock.h"

namespace tickwise {

/// A stretch of time in which somebody is not asked. It holds only once it was made: when the clock goes back behind
/// that moment it does not count, so that no jump of the clock keeps anybody out for long.
struct Pause
{
    TimePoint since;
    TimePoint until;

    static Pause lasting(double seconds, TimePoint now) { return {now, now + secondsDuration(seconds)}; }
    bool holds(TimePoint now) const { return since <= now && now < until; }
};

} // namespace tickwise
