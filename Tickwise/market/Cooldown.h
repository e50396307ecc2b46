#pragma once

#include "support/Clock.h"

namespace tickwise {

/// A period in which a provider is not asked. It does not hold before the moment at which it began: a clock that was
/// set back ends it, so that no jump of the clock makes it long.
struct Cooldown
{
    TimePoint since;
    TimePoint until;

    static Cooldown lasting(double seconds, TimePoint now) { return {now, now + secondsDuration(seconds)}; }
    bool holds(TimePoint now) const { return since <= now && now < until; }
};

} // namespace tickwise
