// What an export holds, and what is said about it.
#pragma once

#include "Kestrio/Reports/ReportBuilder.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// How far back an export reaches. The order is that of menus.
enum class ExportRange { today, week, month, all };
inline constexpr std::array allExportRanges{ExportRange::today, ExportRange::week, ExportRange::month,
                                            ExportRange::all};

/// "today", "week", "month", "all".
std::string_view rawValue(ExportRange range);
/// Absent for a text that is not exactly one of the raw texts.
std::optional<ExportRange> exportRange(std::string_view rawValue);
std::string_view label(ExportRange range);

/// Up to now. `earliest` is the start of the first session that is known.
DateInterval interval(ExportRange range, Date now, const std::optional<Date>& earliest, const Calendar& calendar);

/// The sessions that reach into the interval as they are exported: whole, with the categories and projects that count,
/// those of all kinds in the order of their starts.
std::vector<ClassifiedSession> exportedSessions(std::vector<ActivitySession> sessions, DateInterval interval,
                                                const Calendar& calendar, const Classification& classification);

/// "activity-2026-11-21.csv"
std::string proposedExportName(Date now, const Calendar& calendar);

inline constexpr std::string_view exportingText = "Exporting…";
std::string exportedText(std::size_t count, std::string_view fileName, const Calendar& calendar);
std::string exportFailedText(std::string_view error);

} // namespace kestrio
