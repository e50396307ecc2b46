#include "app/SystemEvents.h"

#include "app/AppDelegate.h"
#include "platform/network/NetworkWatch.h"
#include "platform/session/SleepMonitor.h"

namespace tickwise {

void connectSystemEvents(SleepMonitor &sleepMonitor, NetworkWatch &networkWatch, AppDelegate &delegate,
                         const std::function<void()> &networkMayHaveChanged)
{
    QObject::connect(&sleepMonitor, &SleepMonitor::willSleep, &delegate, &AppDelegate::machineWillSleep);
    QObject::connect(&sleepMonitor, &SleepMonitor::didWake, &delegate, networkMayHaveChanged);
    QObject::connect(&sleepMonitor, &SleepMonitor::didWake, &delegate, &AppDelegate::machineDidWake);
    QObject::connect(&networkWatch, &NetworkWatch::networkReturned, &delegate, networkMayHaveChanged);
    QObject::connect(&networkWatch, &NetworkWatch::networkReturned, &delegate, &AppDelegate::networkReturned);
}

} // namespace tickwise
