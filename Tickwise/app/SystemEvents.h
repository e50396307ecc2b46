#pragma once

#include <functional>

namespace tickwise {

class AppDelegate;
class NetworkWatch;
class SleepMonitor;

/// Lets the delegate stop and restart polling with sleep, wake and returns of the network. `networkMayHaveChanged` is
/// called before polling restarts.
void connectSystemEvents(SleepMonitor &sleepMonitor, NetworkWatch &networkWatch, AppDelegate &delegate,
                         const std::function<void()> &networkMayHaveChanged);

} // namespace tickwise
