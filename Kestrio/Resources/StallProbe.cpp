#include "Kestrio/Resources/StallProbe.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrio {

void StallProbe::start() {
    if (std::exchange(running_, true))
        return;
    queue_.sync([this] {
        last_ = clock_.uptime();
        timer_ = queue_.every({.interval = beat}, [this] { noteBeat(); }); // no tolerance: lateness is what it measures
    });
}

void StallProbe::stop() {
    if (!std::exchange(running_, false))
        return;
    queue_.sync([this] {
        timer_.cancel();
        worst_ = 0;
    });
}

std::int64_t StallProbe::takeWorstMilliseconds() {
    return running_ ? queue_.sync([this] { return std::exchange(worst_, 0); }) : 0;
}

void StallProbe::noteBeat() {
    const auto now = clock_.uptime();
    const auto excess = now - std::exchange(last_, now) - beat;
    // By way of whole nanoseconds, or a lateness of one millisecond would be a little less in binary fractions.
    const auto nanoseconds = std::llround(excess.count() * 1e9);
    worst_ = std::max<std::int64_t>(worst_, nanoseconds / 1'000'000);
}

} // namespace kestrio
