#include "Kestrio/Pages/TimelinePage.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Pages/SessionWords.h"
#include "Kestrio/Reports/IntervalWalk.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

bool hasQuery(std::string_view text, const std::string& query) {
    return text::lowercased(text).find(query) != std::string::npos;
}

bool isShown(const TimelineBlock& block, bool hideBrief, const std::string& query) {
    if (hideBrief && block.active < TimelineSearch::brief)
        return false;
    return query.empty() || hasQuery(block.searchText(), query);
}

Seconds total(const ActivityReport& report, const TimelineSection& section) {
    Seconds sum{};
    for (const auto place : section.blocks)
        sum += report.blocks[place].active;
    return sum;
}

std::vector<TimelineSection> sections(const ActivityReport& report, const TimelineSearch& search,
                                      const Viewpoint& viewpoint) {
    std::vector<TimelineSection> all;
    IntervalWalk days(viewpoint.calendar, Granularity::day);
    const auto query = search.query();
    for (auto place = report.blocks.size(); place-- > 0;) {
        const auto& block = report.blocks[place];
        if (!isShown(block, search.hideBrief, query))
            continue;
        const auto day = days.around(block.start).start;
        if (all.empty() || all.back().day != day)
            all.push_back({day, Fmt::relativeDay(day, viewpoint.now, viewpoint.calendar), {}, {}});
        all.back().blocks.push_back(place);
    }
    for (auto& section : all)
        section.total = Fmt::duration(total(report, section));
    return all;
}

bool isFound(const TimelineEntry& entry, const std::string& query) {
    return hasQuery(entry.title, query) || (entry.domain && hasQuery(*entry.domain, query));
}

std::vector<TimelineEntryRow> entryRows(const TimelineBlock& block, const std::string& query,
                                        const Calendar& calendar) {
    const bool all = query.empty() || hasQuery(block.appName, query);
    std::vector<TimelineEntryRow> rows;
    for (const auto& entry : block.entries)
        if (all || isFound(entry, query))
            rows.push_back({entry.id, shortTime(entry.start, calendar), titleOrUntitled(entry.title),
                            Fmt::duration(entry.active)});
    return rows;
}

} // namespace

std::string TimelineSearch::query() const {
    return text::lowercased(text::trimmedOfBlanks(text));
}

std::variant<EmptyActivity, TimelinePage> timelinePage(const ActivityReport& report, const TimelineSearch& search,
                                                       const Viewpoint& viewpoint) {
    if (report.blocks.empty())
        return noActivityYet();
    TimelinePage page{sections(report, search, viewpoint), std::nullopt};
    const auto typed = text::trimmedOfBlanks(search.text);
    if (page.sections.empty() && !typed.empty())
        page.message = fmt::format("Nothing matches “{}”.", typed);
    return page;
}

TimelineSamples timelineSamples(const Calendar& calendar) {
    TimelineSamples samples;
    for (const int hour : {10, 22}) { // with two digits, and with either half of the day's name
        const auto moment = calendar.date(2000, 1, 1, hour);
        samples.ranges.push_back(Fmt::timeRange(moment, moment, calendar));
        samples.times.push_back(shortTime(moment, calendar));
    }
    return samples;
}

TimelineBlockRow timelineBlockRow(const TimelineBlock& block, const std::string& query, const Calendar& calendar) {
    TimelineBlockRow row;
    row.id = block.id;
    row.icon = {block.bundleID};
    row.headline = block.headline;
    if (block.kind != SessionKind::focus)
        row.badge = alongsideBadge(block.kind);
    row.times = Fmt::timeRange(block.start, block.end, calendar);
    row.duration = Fmt::duration(block.active);
    row.entries = entryRows(block, query, calendar);
    row.count = fmt::format("{} items", row.entries.size());
    row.category = categoryPill(block.category);
    return row;
}

} // namespace kestrio
