#include "Kestrio/Platform/Linux/SuspendWatch.h"

#include "Kestrio/Base/LoopQueue.h"

#include <cstdint>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace kestrio {
namespace {

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

Seconds timeAsleep() {
    return Seconds(secondsOf(CLOCK_BOOTTIME) - secondsOf(CLOCK_MONOTONIC));
}

bool SleepGauge::slept(Seconds asleepSoFar) {
    return asleepSoFar - std::exchange(asleep_, asleepSoFar) >= shortest;
}

SuspendWatch::SuspendWatch(LoopQueue& queue, std::function<void()> report)
    : report_(std::move(report)),
      gauge_(timeAsleep()),
      timer_(timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {
    if (timer_ && arm())
        watch_ = queue.watch(timer_.number(), [this] { clockWasSet(); });
}

bool SuspendWatch::arm() const {
    // A timer that never fires (in the year 2255): only its being called off, because the clock was set, is of
    // interest.
    itimerspec never{};
    never.it_value.tv_sec = 9'000'000'000;
    constexpr int onSet = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
    return timerfd_settime(timer_.number(), onSet, &never, nullptr) == 0;
}

void SuspendWatch::clockWasSet() {
    std::uint64_t ignored = 0;
    [[maybe_unused]] const auto size = read(timer_.number(), &ignored, sizeof ignored);
    if (!arm())
        watch_.cancel();
    if (gauge_.slept(timeAsleep()))
        report_();
}

} // namespace kestrio
