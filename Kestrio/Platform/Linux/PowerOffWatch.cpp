#include "Kestrio/Platform/Linux/PowerOffWatch.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

constexpr auto rule = "type='signal',sender='org.freedesktop.login1',path='/org/freedesktop/login1',"
                      "interface='org.freedesktop.login1.Manager',member='PrepareForShutdown'";

} // namespace

PowerOffWatch::PowerOffWatch(LoopQueue& queue, const std::string& address, std::function<void(bool)> receiver)
    : bus_(BusConnection::open(queue, address)) {
    if (!bus_)
        return;
    auto match = bus_->match(rule, [receiver = std::move(receiver)](sdbus::Message& message) {
        bool isNear = false;
        message >> isNear;
        receiver(isNear);
    });
    if (match)
        rule_ = std::move(*match);
}

PowerOffWatch::~PowerOffWatch() {
    rule_.cancel();
}

} // namespace kestrio
