#include "ui/UpdateSchedule.h"

namespace tickwise {

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
    m_timer.start(timeToNextCheck(m_lastCheck, m_clock()));
}

void UpdateSchedule::stop()
{
    m_timer.stop();
}

void UpdateSchedule::reconsider()
{
    if (m_timer.isActive())
        start(m_lastCheck);
}

void UpdateSchedule::fire()
{
    if (timeToNextCheck(m_lastCheck, m_clock()).count() > 0)
        start(m_lastCheck);
    else
        m_due();
}

} // namespace tickwise
