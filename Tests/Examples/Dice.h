// Chance for made-up histories: the same seed gives the same draws on every machine.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

namespace kestrio {

/// Draws that come out alike everywhere; the library's distributions do not.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}

    double uniform(double from, double to) {
        return from + (to - from) * static_cast<double>(engine_() >> 11) / 9007199254740992.0;
    }
    bool chance(double probability) { return uniform(0, 1) < probability; }
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(uniform(0, static_cast<double>(count))); }

    /// Mostly the first few: a person's favourites.
    std::size_t favourite(std::size_t count) {
        const auto share = uniform(0, 1);
        return static_cast<std::size_t>(share * share * share * static_cast<double>(count));
    }

    template <class List>
    const auto& one(const List& list) {
        return list[favourite(std::size(list))];
    }

    /// Many short ones, few long ones, with this mean.
    double length(double mean) { return std::clamp(-mean * std::log(1 - uniform(0, 1)), 2.0, 20 * mean); }

private:
    std::mt19937_64 engine_;
};

} // namespace kestrio
