#pragma once

#include "support/Clock.h"

#include <QTimer>

#include <functional>
#include <optional>

namespace tickwise {

/// Time between two scheduled checks.
inline constexpr std::chrono::hours updateCheckInterval{24};

/// How long to wait for the next scheduled check; zero: now. A last check in the future counts as none.
std::chrono::milliseconds timeToNextCheck(std::optional<TimePoint> lastCheck, TimePoint now);

/// Tells when a check is due, at most one wake-up per interval.
class UpdateSchedule
{
public:
    /// `due` is called from the event loop; it must call `start` again for a further check.
    UpdateSchedule(Clock clock, std::function<void()> due);

    /// Plans the next check by the last one; none: as soon as possible.
    void start(std::optional<TimePoint> lastCheck);
    void stop();

    bool isActive() const { return m_timer.isActive(); }
    std::chrono::milliseconds interval() const { return m_timer.intervalAsDuration(); }

private:
    void fire();

    Clock m_clock;
    std::function<void()> m_due;
    std::optional<TimePoint> m_lastCheck;
    QTimer m_timer;
};

} // namespace tickwise
