#pragma once

#include "support/Clock.h"

namespace tickwise::test {

/// A clock that stands until it is moved. Keep it alive for as long as its `clock()` is used.
class TestClock
{
public:
    /// 2026-01-31T08:15:00Z unless told otherwise; seconds since 1970.
    explicit TestClock(double secondsSince1970 = 1769847300.0)
        : m_now(secondsDuration(secondsSince1970))
    {
    }

    Clock clock()
    {
        return [this] { return m_now; };
    }
    TimePoint now() const { return m_now; }
    void set(TimePoint now) { m_now = now; }
    void advance(double seconds) { m_now += secondsDuration(seconds); }

private:
    TimePoint m_now;
};

} // namespace tickwise::test
