// Sessions as lines of comma-separated text, for other programs and for bringing them back. Pure; any thread, with a
// calendar of its own.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace kestrio::CSVExporter {

/// The first line, with its line feed.
inline constexpr std::string_view header =
    "start,end,duration_seconds,kind,app,bundle_id,category,project,title,url,domain\n";

/// The text as a field: in double quotes where a comma, a quote or a line end in it needs them.
std::string escape(std::string_view text);

/// One session as a line with its line feed. Dates stand in the calendar's time zone.
std::string line(const ClassifiedSession& session, const Calendar& calendar);

/// The whole text of a file.
std::string csv(std::span<const ClassifiedSession> sessions, const Calendar& calendar);

/// The same in pieces of whole lines, for files of any length.
void write(std::span<const ClassifiedSession> sessions, const Calendar& calendar,
           const std::function<void(std::string_view)>& receive);

} // namespace kestrio::CSVExporter
