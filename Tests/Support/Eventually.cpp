#include "Tests/Support/Eventually.h"

#include "Kestrio/Base/Clock.h"

#include <chrono>
#include <thread>

namespace kestrio {

bool eventually(const std::function<bool()>& condition, double deadlineSeconds) {
    const SystemClock clock;
    const auto deadline = clock.uptime() + Seconds(deadlineSeconds);
    while (!condition()) {
        if (clock.uptime() >= deadline)
            return condition();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace kestrio
