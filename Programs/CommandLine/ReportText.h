// A report for a terminal, or one section of it in full. A pure function of its arguments.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"
#include "Programs/CommandLine/SessionTable.h"

#include <string>

namespace kestrio {

enum class ReportSection { overview, apps, websites, youtube, projects, timeline };
inline constexpr std::array allReportSections{ReportSection::overview, ReportSection::apps,
                                              ReportSection::websites, ReportSection::youtube,
                                              ReportSection::projects, ReportSection::timeline};
std::string_view rawValue(ReportSection section);
std::optional<ReportSection> reportSection(std::string_view rawValue);

/// What the report is of, in words.
struct ReportHeading {
    std::string title;
    std::string subtitle;
};

/// Ends with a line feed.
std::string reportText(const ActivityReport& report, const ReportHeading& heading, ReportSection section, Date now,
                       const Calendar& calendar, const TableStyle& style);

} // namespace kestrio
