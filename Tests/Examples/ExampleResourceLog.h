// A made-up computer's resource log: days at a desk with editors, browsers and builds, quiet evenings, nights asleep,
// and a few slow moments a day in which memory ran short. The same seed gives the same log on every machine. For
// benchmarks, pictures of the windows, and trying things out.
#pragma once

#include "Kestrio/Base/Calendar.h"

#include <cstdint>
#include <filesystem>

namespace kestrio {

struct ExampleResourceLogOptions {
    std::uint64_t seed = 1;
    int days = 7;
    int detailDays = 7;    // the last so many have seconds too
    std::int64_t pace = 1; // seconds between two of those
    bool hasApps = true;   // whether applications have minutes; they are by far the most of a long log
    bool sleeps = true;    // at night
};

/// Adds to a log, or makes one, so many days up to the last full minute before `end`. Throws `DatabaseError`.
void writeResourceLog(const std::filesystem::path& file, Date end, const Calendar& calendar,
                      const ExampleResourceLogOptions& options = {});

} // namespace kestrio
