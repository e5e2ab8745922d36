#include "Kestrio/Base/Clock.h"

#include <ctime>

namespace kestrio {
namespace {

double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

Date SystemClock::now() const {
    return Date(read(CLOCK_REALTIME));
}

Uptime SystemClock::uptime() const {
    return Uptime(read(CLOCK_MONOTONIC));
}

} // namespace kestrio
