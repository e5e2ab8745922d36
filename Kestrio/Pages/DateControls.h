// The controls above the pages that show a report: which range they show. Plain values.
#pragma once

#include "Kestrio/Reports/RangeMode.h"

#include <vector>

namespace kestrio {

struct ControlButton {
    std::string title;
    std::optional<std::string> symbol = {};
    std::optional<std::string> help = {};
    std::optional<char> key = {}; // with Command
    bool isEnabled = true;
    friend bool operator==(const ControlButton&, const ControlButton&) = default;
};

struct DateControls {
    static constexpr auto rangeLabel = "Range";
    static constexpr auto dateLabel = "Date"; // of the picker

    struct Unit {
        RangeMode mode = RangeMode::day;
        std::string title;
        bool isCurrent = false;
        friend bool operator==(const Unit&, const Unit&) = default;
    };
    std::vector<Unit> units;
    ControlButton previous;
    ControlButton next;
    ControlButton today;
    ControlButton refresh;
    bool hasDatePicker = false;
    std::string title;
    std::string subtitle;
    friend bool operator==(const DateControls&, const DateControls&) = default;
};

/// For the range around `anchor`. Nothing lies after the present range.
DateControls dateControls(RangeMode mode, Date anchor, Date now, const Calendar& calendar);

} // namespace kestrio
