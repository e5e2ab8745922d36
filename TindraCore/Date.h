// A moment of wall-clock time, as the decisions and rules of the optimizer are handed it. A plain value, for any
// thread.
//
// Spans between two dates are plain doubles in seconds. The comparisons are those of doubles: with a NaN on either side
// all of them are false, so that a broken clock or a broken setting never makes the optimizer act. (The comparisons of
// std::chrono are written by negating one another and would let a NaN through.)
#pragma once

#include <compare>

namespace tindra {

struct Date {
    double seconds = 0; // since 1970-01-01 00:00 UTC

    friend constexpr auto operator<=>(Date, Date) = default;

    friend constexpr Date operator+(Date date, double span) { return {date.seconds + span}; }
    friend constexpr Date operator-(Date date, double span) { return {date.seconds - span}; }
    /// Seconds from `earlier` to `later`, negative when they are the other way round.
    friend constexpr double operator-(Date later, Date earlier) { return later.seconds - earlier.seconds; }
};

/// 0001-01-01 in UTC: before everything that ever happened to an application.
inline constexpr Date distantPast{-62'135'769'600.0};

} // namespace tindra
