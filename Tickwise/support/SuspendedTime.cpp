#include "support/SuspendedTime.h"

#include <ctime>

namespace tickwise {

namespace {

constexpr std::chrono::milliseconds readingTime{100};

std::chrono::nanoseconds reading(clockid_t clock)
{
    std::timespec time = {};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

std::chrono::nanoseconds systemSuspendedTime()
{
    const std::chrono::nanoseconds monotonic = reading(CLOCK_MONOTONIC);
    return reading(CLOCK_BOOTTIME) - monotonic;
}

bool hasSlept(std::chrono::nanoseconds before, std::chrono::nanoseconds now)
{
    return now - before > readingTime;
}

} // namespace tickwise
