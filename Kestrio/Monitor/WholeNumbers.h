// Measured figures as whole numbers, for texts. What is not a number is 0.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kestrio {

inline std::int64_t cutToWhole(double value) {
    constexpr double most = 1e15; // far beyond any figure shown, and exact in both types
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, -most, most));
}

/// Halves away from zero.
inline std::int64_t roundedToWhole(double value) {
    return cutToWhole(std::round(value));
}

inline std::uint64_t notNegative(std::int64_t value) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(value, 0));
}

} // namespace kestrio
