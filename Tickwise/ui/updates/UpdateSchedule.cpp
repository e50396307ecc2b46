#include "ui/updates/UpdateSchedule.h"

namespace tickwise {

namespace {

// A very coarse timer may fire half a second early, and would be set again and again for what is left.
constexpr std::chrono::seconds earlyMargin{1};

std::chrono::milliseconds timerInterval(std::chrono::milliseconds remaining)
{
    return remaining.count() == 0 ? remaining : std::chrono::ceil<std::chrono::seconds>(remaining) + earlyMargin;
}

} // namespace

std::chrono::milliseconds timeToNextCheck(std::optional<TimePoint> lastCheck, TimePoint now)
{
    if (!lastCheck || *lastCheck > now || now - *lastCheck >= updateCheckInterval)
        return std::chrono::milliseconds(0);
    return std::chrono::ceil<std::chrono::milliseconds>(*lastCheck + updateCheckInterval - now);
}

UpdateSchedule::UpdateSchedule(Clock clock, std::function<void()> due)
    : m_clock(std::move(clock))
    , m_due(std::move(due))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    m_timer.callOnTimeout(&m_timer, [this] { fire(); });
}

void UpdateSchedule::start(std::optional<TimePoint> lastCheck)
{
    m_lastCheck = lastCheck;
    m_timer.start(timerInterval(timeToNextCheck(m_lastCheck, m_clock())));
}

void UpdateSchedule::stop()
{
    m_timer.stop();
}

void UpdateSchedule::fire()
{
    if (timeToNextCheck(m_lastCheck, m_clock()).count() > 0)
        start(m_lastCheck);
    else
        m_due();
}

} // namespace tickwise
