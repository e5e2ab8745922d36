// From sessions to a report. This is where the meaning of a report is decided: what counts as active time, as a visit,
// a switch, a view, a block. Categories and the person's rules are applied here and stored nowhere, so that changing
// them changes all reports of the past at their next making.
//
// Pure functions of their arguments, callable from any thread; they hold no lock, wait for nothing and never fail. One
// pass, linear in the number of sessions but for sorting.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Classification/ProjectDetection.h"
#include "Kestrio/Reports/Report.h"

#include <span>

namespace kestrio {

/// What the person has decided about categories and projects, as of one moment.
struct Classification {
    Categorizer::Snapshot categories;
    std::vector<ProjectRule> rules;
};

namespace ReportBuilder {

// How many rows detail lists have at most. The lists of applications, sites, videos, projects and things played
// alongside are whole.
inline constexpr std::size_t itemLimit = 300;
inline constexpr std::size_t projectAppLimit = 50;
inline constexpr std::size_t searchLimit = 100;

// Sessions of one application that are less than this apart are one block of the timeline.
inline constexpr Seconds focusGap{10};
inline constexpr Seconds alongsideGap{30};

/// The report of an interval. The sessions may come in any order and are clipped to it; those of equal start keep
/// their order. Their texts are moved into the report, so hand over a list that is not needed any more.
ActivityReport build(std::vector<ActivitySession> sessions, DateInterval interval, Granularity granularity,
                     const Calendar& calendar, const Classification& classification);

/// The seconds of the sessions per hour or day, ascending; none for hours and days without any.
std::vector<SimpleBucket> buckets(std::span<const ClassifiedSession> sessions, Granularity granularity,
                                  const Calendar& calendar);

} // namespace ReportBuilder

} // namespace kestrio
