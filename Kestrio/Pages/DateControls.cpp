#include "Kestrio/Pages/DateControls.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

std::string unitTitle(RangeMode mode) {
    switch (mode) {
    case RangeMode::day: return "Day";
    case RangeMode::week: return "Week";
    case RangeMode::month: return "Month";
    }
    return {};
}

} // namespace

DateControls dateControls(RangeMode mode, Date anchor, Date now, const Calendar& calendar) {
    const auto stepHelp = fmt::format("Previous / next {}", rawValue(mode));
    const bool isCurrent = interval(mode, anchor, calendar).contains(now);
    DateControls controls;
    for (const auto unit : allRangeModes)
        controls.units.push_back({unit, unitTitle(unit), unit == mode});
    controls.previous = {.title = "Previous", .symbol = "chevron.left", .help = stepHelp, .key = '['};
    controls.next = {.title = "Next", .symbol = "chevron.right", .help = stepHelp, .key = ']', .isEnabled = !isCurrent};
    controls.today = {.title = "Today", .key = 't'};
    controls.refresh = {.title = "Refresh", .symbol = "arrow.clockwise", .key = 'r'};
    controls.hasDatePicker = mode == RangeMode::day;
    controls.title = rangeTitle(mode, anchor, now, calendar);
    controls.subtitle = rangeSubtitle(mode, anchor, calendar);
    return controls;
}

} // namespace kestrio
