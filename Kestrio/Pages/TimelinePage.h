// The blocks of a report, newest first under their days, and the search in them. The sections are made for the whole
// report; a row's texts only for the rows that show, since a month has tens of thousands. Plain values.
#pragma once

#include "Kestrio/Pages/Rows.h"

#include <variant>

namespace kestrio {

struct TimelineSearch {
    static constexpr auto prompt = "Search titles, apps, URLs";
    static constexpr auto hideBriefTitle = "Hide brief";
    static constexpr auto hideBriefSymbol = "line.3.horizontal.decrease.circle";
    static constexpr auto hideBriefHelp = "Hide stretches shorter than one minute";
    static constexpr Seconds brief{60};

    std::string text;
    bool hideBrief = false;

    /// The text as it is looked for: without blanks around it, in lower case.
    std::string query() const;
};

struct TimelineSection {
    static constexpr auto totalHelp = "Everything listed below, with what played alongside";

    Date day;
    std::string title;               // by `Fmt::relativeDay`
    std::string total;               // of its blocks
    std::vector<std::size_t> blocks; // places in the report's list, newest first
    friend bool operator==(const TimelineSection&, const TimelineSection&) = default;
};

struct TimelinePage {
    std::vector<TimelineSection> sections;
    std::optional<std::string> message; // when the search finds nothing
    friend bool operator==(const TimelinePage&, const TimelinePage&) = default;
};

std::variant<EmptyActivity, TimelinePage> timelinePage(const ActivityReport& report, const TimelineSearch& search,
                                                       const Viewpoint& viewpoint);

/// Times as wide as those of rows get, for the width of their columns.
struct TimelineSamples {
    std::vector<std::string> ranges; // of blocks
    std::vector<std::string> times;  // of entries
    friend bool operator==(const TimelineSamples&, const TimelineSamples&) = default;
};

TimelineSamples timelineSamples(const Calendar& calendar);

struct TimelineEntryRow {
    std::int64_t id = 0;
    std::string time;
    std::string title;
    std::string duration;
    friend bool operator==(const TimelineEntryRow&, const TimelineEntryRow&) = default;
};

struct TimelineBlockRow {
    std::int64_t id = 0;
    AppIcon icon;
    std::string headline;
    std::optional<AlongsideBadge> badge; // of what was not in front
    std::string times;
    std::string duration;
    std::string count; // "{n} items"
    std::vector<TimelineEntryRow> entries;
    CategoryPill category;
    friend bool operator==(const TimelineBlockRow&, const TimelineBlockRow&) = default;
};

/// With a query only the entries that it finds, unless it finds the application itself.
TimelineBlockRow timelineBlockRow(const TimelineBlock& block, const std::string& query, const Calendar& calendar);

} // namespace kestrio
