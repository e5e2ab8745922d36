// Points on the two time scales that the program knows, and spans between them.
//
// `Date` is wall-clock time: it jumps when somebody sets the clock and runs on while the machine sleeps.
// `Uptime` is time awake: it never jumps and stands still while the machine sleeps. Timers run on it.
// The two are different types on purpose; only `Clock` asks the system for either.
#pragma once

#include <algorithm>
#include <chrono>
#include <compare>

namespace kestrio {

/// A length of time in seconds, with fractions.
using Seconds = std::chrono::duration<double>;

/// A point on one time scale: seconds, in a double, since the origin of `Scale`.
template <class Scale>
class Instant {
public:
    constexpr Instant() = default;
    constexpr explicit Instant(double secondsSinceOrigin) : seconds_(secondsSinceOrigin) {}

    constexpr double seconds() const { return seconds_; }

    constexpr Instant& operator+=(Seconds span) {
        seconds_ += span.count();
        return *this;
    }

    friend constexpr Instant operator+(Instant point, Seconds span) { return Instant(point.seconds_ + span.count()); }
    friend constexpr Instant operator-(Instant point, Seconds span) { return Instant(point.seconds_ - span.count()); }
    friend constexpr Seconds operator-(Instant later, Instant earlier) {
        return Seconds(later.seconds_ - earlier.seconds_);
    }
    friend constexpr auto operator<=>(Instant, Instant) = default;

private:
    double seconds_ = 0;
};

/// Wall-clock time; the origin is 1970-01-01 00:00 UTC.
using Date = Instant<struct WallTimeScale>;

/// Time awake since an arbitrary origin, in practice the start of the machine.
using Uptime = Instant<struct AwakeTimeScale>;

/// 0001-01-01 and 4001-01-01 in UTC: before and after everything that is ever recorded.
inline constexpr Date distantPast{-62'135'769'600.0};
inline constexpr Date distantFuture{64'092'211'200.0};

/// The half-open span from `start` up to, not including, `end`.
struct DateInterval {
    Date start;
    Date end;

    constexpr Seconds duration() const { return end - start; }
    constexpr bool contains(Date date) const { return start <= date && date < end; }
    friend constexpr bool operator==(const DateInterval&, const DateInterval&) = default;
};

} // namespace kestrio
