// A line without axes through a short history of values. Pure; any thread.
#pragma once

#include <span>
#include <vector>

namespace kestrio {

/// A point from 0 to 1 across, and from 0 at the bottom to 1 at the top.
struct SparklinePoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const SparklinePoint&, const SparklinePoint&) = default;
};

/// The values, oldest first, spread evenly; `lowest` and `highest` are the bottom and the top, and what lies beyond
/// stays at the edge. With fewer than two values there is no line.
std::vector<SparklinePoint> sparkline(std::span<const double> values, double lowest, double highest);

} // namespace kestrio
