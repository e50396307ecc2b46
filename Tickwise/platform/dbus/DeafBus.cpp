#include "platform/dbus/DeafBus.h"

#include <memory>

#include <cerrno>
#include <systemd/sd-bus.h>

namespace tickwise {

namespace {

using namespace std::chrono_literals;
using Timer = std::chrono::steady_clock;
using BusHandle = std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)>;

/// A connection that is being opened; none where that fails at once.
BusHandle opening(const QString &address, int &error)
{
    sd_bus *bus = nullptr;
    error = sd_bus_new(&bus);
    BusHandle handle(bus, sd_bus_close_unref);
    if (error >= 0)
        error = sd_bus_set_address(bus, address.toUtf8().constData());
    if (error >= 0)
        error = sd_bus_set_bus_client(bus, 1);
    if (error >= 0)
        error = sd_bus_start(bus);
    return handle;
}

} // namespace

bool isDeafBus(const QString &address, std::chrono::microseconds longest)
{
    const Timer::time_point end = Timer::now() + longest;
    int error = 0;
    const BusHandle bus = opening(address, error);
    if (error < 0)
        return error == -EAGAIN; // its queue of connections is full
    while (sd_bus_is_ready(bus.get()) == 0) {
        const int progress = sd_bus_process(bus.get(), nullptr);
        if (progress < 0)
            return false;
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - Timer::now());
        if (left <= 0us)
            return true;
        if (progress == 0)
            sd_bus_wait(bus.get(), static_cast<std::uint64_t>(left.count()));
    }
    return false;
}

} // namespace tickwise
