// How the resource log keeps numbers: whole ones, in units that leave a row narrow. Pure functions.
#pragma once

#include "Kestrio/Base/Date.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace kestrio::storedValues {

inline constexpr int bitsPerMiB = 20;

/// Towards zero. Beyond 64 bits the nearest there is, and 0 for what is no number.
inline std::int64_t truncated(double value) {
    constexpr double bound = 0x1p63;
    if (std::isnan(value))
        return 0;
    if (value >= bound)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -bound)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

inline std::int64_t wholeSeconds(Date date) {
    return truncated(date.seconds());
}

inline std::int64_t permille(double share) {
    return std::isnan(share) ? 0 : std::llround(std::clamp(share, 0.0, 1.0) * 1000);
}

inline double share(std::int64_t permille) {
    return static_cast<double>(permille) / 1000;
}

inline std::int64_t stored(std::uint64_t value) {
    return static_cast<std::int64_t>(
        std::min(value, static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())));
}

inline std::int64_t mebibytes(std::uint64_t bytes) {
    return static_cast<std::int64_t>(bytes >> bitsPerMiB);
}

inline std::uint64_t fromMebibytes(std::uint64_t mebibytes) {
    return mebibytes << bitsPerMiB;
}

/// An average of counts, as a count.
inline std::uint64_t averageCount(double value) {
    return static_cast<std::uint64_t>(std::max(truncated(value), std::int64_t{0}));
}

inline std::int64_t clampedTo32Bits(std::int64_t value) {
    return std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max());
}

inline std::optional<std::int64_t> flag(std::optional<bool> value) {
    return value ? std::optional(std::int64_t{*value}) : std::nullopt;
}

} // namespace kestrio::storedValues
