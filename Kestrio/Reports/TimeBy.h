// Time per case of a small enumeration. A value; a case without time has no entry.
#pragma once

#include "Kestrio/Base/Date.h"

#include <array>
#include <cstddef>

namespace kestrio {

/// `Case` counts from 0 to below `count`.
template <class Case, std::size_t count>
class TimeBy {
public:
    void add(Case one, Seconds time) { times_[static_cast<std::size_t>(one)] += time; }

    /// Zero for a case without an entry.
    Seconds operator[](Case one) const { return times_[static_cast<std::size_t>(one)]; }

    /// Calls `visit(case, time)` for each entry, in the order of the enumeration.
    template <class Visitor>
    void forEach(Visitor&& visit) const {
        for (std::size_t i = 0; i < count; ++i)
            if (times_[i] > Seconds(0))
                visit(static_cast<Case>(i), times_[i]);
    }

    friend bool operator==(const TimeBy&, const TimeBy&) = default;

private:
    std::array<Seconds, count> times_{};
};

} // namespace kestrio
