// The command of `kestrioctl` that turns what was recorded into a report. Returns the exit status, as those in
// `Commands.h`.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/RangeMode.h"
#include "Programs/CommandLine/ReportText.h"

#include <optional>
#include <string>
#include <variant>

namespace kestrio {

/// As typed. At most one of the day, the week, the month and the free range.
struct ReportOptions {
    std::optional<std::string> day = {};
    std::optional<std::string> week = {};
    std::optional<std::string> month = {};
    std::optional<std::string> from = {};
    std::optional<std::string> to = {};
    std::optional<std::string> section = {};
    bool json = false;
};

/// What a report was asked for.
struct ReportRequest {
    DateInterval interval;
    Granularity granularity;
    ReportHeading heading;
    ReportSection section = ReportSection::overview;
};

/// The request, or what is wrong with the options. Today when none is given.
std::variant<ReportRequest, std::string> reportRequest(const ReportOptions& options, Date now,
                                                       const Calendar& calendar);

int report(const ReportOptions& options);

} // namespace kestrio
