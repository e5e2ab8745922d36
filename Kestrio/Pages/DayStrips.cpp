#include "Kestrio/Pages/DayStrips.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Pages/SessionWords.h"
#include "Kestrio/Reports/IntervalWalk.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>

namespace kestrio {
namespace {

constexpr auto explanation =
    "Each row is one day, running left to right through the hours. A coloured block is a stretch when you were "
    "actively using something, and its colour is the kind of activity (key below). Empty space means you were away or "
    "idle.";
constexpr auto alongsideExplanation = " The thin line under a row shows media playing next to what you were doing — "
                                      "watching or listening.";

using SessionSpan = std::span<const ClassifiedSession>;

/// Calls `visit(start of day, sessions)` for each day on which one of the sessions begins; they ascend by start.
template <class Visitor>
void forEachDay(SessionSpan sessions, const Calendar& calendar, Visitor&& visit) {
    IntervalWalk days(calendar, Granularity::day);
    for (auto rest = sessions; !rest.empty();) {
        const auto day = days.around(rest.front().start);
        const auto next = std::ranges::find_if(rest, [&](const auto& session) { return !day.contains(session.start); });
        const auto count = static_cast<std::size_t>(std::distance(rest.begin(), next));
        visit(day.start, rest.first(count));
        rest = rest.subspan(std::max<std::size_t>(count, 1));
    }
}

/// On the day's clocks; where they sprang forward, not later than in hours that passed, by which the strip is drawn.
int firstHour(const DayStrips::Day& day, const Calendar& calendar) {
    const auto start = day.sessions.front().start;
    const auto passed = static_cast<int>((start - day.start) / Seconds(3600));
    return std::min(calendar.components(start).hour, passed);
}

int lastHour(const DayStrips::Day& day) {
    const auto latest = std::ranges::max_element(day.sessions, {}, &ClassifiedSession::end)->end;
    return static_cast<int>(std::min(24.0, std::ceil((latest - day.start) / Seconds(3600))));
}

StripCanvas canvas(SessionSpan sessions, const DayStrips& strips, Date day, bool isFaded) {
    return {.sessions = sessions,
            .origin = day + Seconds(strips.hours.lowest * 3600),
            .span = strips.hours.span(),
            .hours = strips.hours.highest - strips.hours.lowest,
            .isFaded = isFaded,
            .cursor = {},
            .highlighted = {}};
}

/// How far a moment is from a session; nothing within it.
Seconds gap(const ClassifiedSession& session, Date time) {
    return std::max({session.start - time, time - session.end, Seconds(0)});
}

const ClassifiedSession* nearest(SessionSpan sessions, Date time, Seconds tolerance) {
    const auto found = std::ranges::min_element(sessions, {}, [&](const auto& session) { return gap(session, time); });
    return found != sessions.end() && gap(*found, time) <= tolerance ? &*found : nullptr;
}

struct StripRow {
    const DayStrips::Day* day = nullptr;
    bool isAlongside = false;
    SessionSpan sessions() const { return isAlongside ? day->alongside : day->sessions; }
};

/// From above to below; those with sessions alone.
std::vector<StripRow> stripRows(const DayStrips& strips) {
    std::vector<StripRow> rows;
    for (const auto& day : strips.days)
        for (const StripRow row : {StripRow{&day, false}, StripRow{&day, true}})
            if (!row.sessions().empty())
                rows.push_back(row);
    return rows;
}

StripHover hoverOf(const ClassifiedSession& session, const StripRow& row, const DayStrips& strips) {
    const auto canvas = row.isAlongside ? strips.mediaLine(*row.day) : strips.strip(*row.day);
    const auto middle = session.start + session.duration() / 2;
    const auto fraction = std::clamp((middle - canvas.origin) / canvas.span, 0.0, 1.0);
    return {.day = row.day->start,
            .isAlongside = row.isAlongside,
            .fraction = fraction,
            .time = canvas.origin + canvas.span * fraction,
            .session = session};
}

/// The session before or after the one that is pointed at, or the moment between sessions; the last one there is at the
/// ends of the row.
const ClassifiedSession& neighbour(SessionSpan sessions, const StripHover& from, StripStep step) {
    const auto moment = from.session ? from.session->start : from.time;
    if (step == StripStep::later) {
        const auto next = std::ranges::upper_bound(sessions, moment, {}, &ClassifiedSession::start);
        return next == sessions.end() ? sessions.back() : *next;
    }
    const auto here = std::ranges::lower_bound(sessions, moment, {}, &ClassifiedSession::start);
    return here == sessions.begin() ? sessions.front() : *std::prev(here);
}

const ClassifiedSession& nearestInDay(const StripRow& row, Date day, Date time) {
    return *nearest(row.sessions(), row.day->start + (time - day), Seconds::max());
}

/// "{n} days: 31h active. Busiest: Friday, 20 Nov with 8h."
std::string stripsWords(const DayStrips& strips, const Calendar& calendar) {
    if (strips.days.empty())
        return "No activity";
    const auto date = [&](const DayStrips::Day& day) { return calendar.localized(day.start, "EEEEdMMM"); };
    if (strips.days.size() == 1)
        return fmt::format("{}: {} active", date(strips.days.front()), Fmt::duration(strips.days.front().active()));
    Seconds sum{};
    for (const auto& day : strips.days)
        sum += day.active();
    const auto busiest = std::ranges::max_element(strips.days, {}, &DayStrips::Day::active);
    return fmt::format("{} days: {} active. Busiest: {} with {}.", strips.days.size(), Fmt::duration(sum),
                       date(*busiest), Fmt::duration(busiest->active()));
}

/// "Fri 20, " where there are several days to tell apart.
std::string dayInFront(Date date, bool manyDays, const Calendar& calendar) {
    return manyDays ? calendar.localized(date, "EEEd") + ", " : "";
}

} // namespace

StripLayout stripLayout(std::size_t days) {
    if (days <= 1)
        return {.strip = 52, .mediaLine = 12, .isDense = false, .manyDays = false};
    if (days <= 8)
        return {.strip = 32, .mediaLine = 8, .isDense = false, .manyDays = true};
    return {.strip = 20, .mediaLine = 5, .isDense = true, .manyDays = true};
}

StripRectangle StripCanvas::rectangle(const ClassifiedSession& session, double width) const {
    constexpr double leastWidth = 2;
    constexpr double inset = 0.5;
    return {.x = (session.start - origin) / span * width + inset,
            .width = std::max(leastWidth, session.duration() / span * width - 2 * inset),
            .opacity = isFaded ? 0.75 : 1};
}

std::vector<double> StripCanvas::hourLines(double width) const {
    std::vector<double> lines;
    for (int hour = 1; hour < hours; ++hour)
        lines.push_back(hour * width / hours - hourLineWidth / 2);
    return lines;
}

std::optional<double> StripCanvas::cursorLine(double width) const {
    return cursor ? std::optional(*cursor * width - cursorWidth / 2) : std::nullopt;
}

bool operator==(const StripCanvas& a, const StripCanvas& b) {
    const bool sameList = a.sessions.data() == b.sessions.data() && a.sessions.size() == b.sessions.size();
    return a.origin == b.origin && a.span == b.span && a.hours == b.hours && a.isFaded == b.isFaded &&
           a.cursor == b.cursor && a.highlighted == b.highlighted &&
           (sameList || std::ranges::equal(a.sessions, b.sessions));
}

Seconds DayStrips::Day::active() const {
    Seconds sum{};
    for (const auto& session : sessions)
        sum += session.duration();
    return sum;
}

StripCanvas DayStrips::strip(const Day& day) const {
    return canvas(day.sessions, *this, day.start, false);
}

StripCanvas DayStrips::mediaLine(const Day& day) const {
    return canvas(day.alongside, *this, day.start, true);
}

std::vector<DayStrips::Day> stripDays(const ActivityReport& report, const Calendar& calendar) {
    std::map<Date, DayStrips::Day> byStart;
    const auto day = [&](Date start) -> DayStrips::Day& {
        return byStart.try_emplace(start, DayStrips::Day{start, {}, {}}).first->second;
    };
    forEachDay(report.sessions, calendar, [&](Date start, SessionSpan sessions) { day(start).sessions = sessions; });
    forEachDay(report.alongsideSessions, calendar,
               [&](Date start, SessionSpan sessions) { day(start).alongside = sessions; });
    std::vector<DayStrips::Day> days;
    for (const auto& [start, one] : byStart)
        days.push_back(one);
    return days;
}

HourRange hourRange(std::span<const DayStrips::Day> days, const Calendar& calendar) {
    HourRange range{.lowest = 24, .highest = 0};
    for (const auto& day : days) {
        if (day.sessions.empty())
            continue;
        range.lowest = std::min(range.lowest, firstHour(day, calendar));
        range.highest = std::max(range.highest, lastHour(day));
    }
    return range.lowest < range.highest ? HourRange{std::max(0, range.lowest), range.highest} : HourRange{};
}

std::vector<DayStrips::HourMark> hourAxis(HourRange hours, const Viewpoint& viewpoint) {
    constexpr int mostMarks = 13;
    constexpr int wideStep = 3;
    const int step = hours.highest - hours.lowest + 1 > mostMarks ? wideStep : 1;
    const auto today = viewpoint.calendar.components(viewpoint.now);
    std::vector<DayStrips::HourMark> marks;
    for (int hour = hours.lowest; hour <= hours.highest; hour += step) {
        const auto moment = viewpoint.calendar.date(today.year, today.month, today.day, hour);
        marks.push_back({hour, viewpoint.calendar.localized(moment, "j")});
    }
    return marks;
}

DayStrips dayStrips(const ActivityReport& report, const Viewpoint& viewpoint) {
    DayStrips strips;
    strips.showsAlongside = !report.alongsideSessions.empty();
    strips.explanation = explanation;
    if (strips.showsAlongside)
        strips.explanation += alongsideExplanation;
    strips.days = stripDays(report, viewpoint.calendar);
    strips.hours = hourRange(strips.days, viewpoint.calendar);
    strips.layout = stripLayout(strips.days.size());
    strips.hourAxis = hourAxis(strips.hours, viewpoint);
    for (const auto& usage : report.categories)
        strips.legend.push_back(categoryPill(usage.category));
    strips.words = stripsWords(strips, viewpoint.calendar);
    return strips;
}

DayLabel dayLabel(const DayStrips::Day& day, bool isDense, const Calendar& calendar) {
    const auto date = calendar.localized(day.start, "EEEEdMMM");
    const auto active = Fmt::duration(day.active()) + " active";
    if (isDense)
        return {calendar.localized(day.start, "EEEd"), std::nullopt, date + ": " + active};
    return {date, active, std::nullopt};
}

StripHover stripHover(const DayStrips& strips, const DayStrips::Day& day, bool isAlongside, double x, double width) {
    constexpr double reach = 4; // points beside a session that still mean it
    // Dates as doubles are good for about a microsecond: without this the last of the four points comes and goes.
    constexpr Seconds rounding{0.001};
    const auto canvas = isAlongside ? strips.mediaLine(day) : strips.strip(day);
    const auto fraction = std::clamp(width < 1 ? x : x / width, 0.0, 1.0);
    const auto time = canvas.origin + canvas.span * fraction;
    const auto* session = nearest(canvas.sessions, time, canvas.span * reach / std::max(width, 1.0) + rounding);
    return {.day = day.start,
            .isAlongside = isAlongside,
            .fraction = fraction,
            .time = time,
            .session = session ? std::optional(*session) : std::nullopt};
}

StripReadout stripReadout(const std::optional<StripHover>& hover, bool manyDays, const Calendar& calendar) {
    if (!hover)
        return ReadoutNote{"cursorarrow.motionlines",
                           "Move the pointer over a bar to see what you were doing at that moment."};
    if (!hover->session)
        return ReadoutNote{"moon.zzz",
                           fmt::format("{}{} — nothing recorded; you were away or idle",
                                       dayInFront(hover->time, manyDays, calendar), shortTime(hover->time, calendar))};
    const auto& session = *hover->session;
    return ReadoutSession{.icon = {session.bundleID},
                          .appName = session.appName,
                          .title = titleOrUntitled(session.title),
                          .category = categoryPill(session.category),
                          .times = fmt::format(" · {}{} · {}", dayInFront(session.start, manyDays, calendar),
                                               Fmt::timeRange(session.start, session.end, calendar),
                                               Fmt::duration(session.duration()))};
}

std::string spoken(const StripReadout& readout) {
    if (const auto* note = std::get_if<ReadoutNote>(&readout))
        return note->text;
    const auto& session = std::get<ReadoutSession>(readout);
    return fmt::format("{}, {}, {}{}", session.appName, session.title, session.category.label, session.times);
}

std::optional<StripHover> steppedHover(const DayStrips& strips, const std::optional<StripHover>& from, StripStep step) {
    const auto rows = stripRows(strips);
    if (rows.empty())
        return std::nullopt;
    const auto at = [&](const StripRow& row) {
        return from && row.day->start == from->day && row.isAlongside == from->isAlongside;
    };
    const auto row = std::ranges::find_if(rows, at);
    if (row == rows.end()) {
        const bool fromTheEnd = step == StripStep::earlier || step == StripStep::above || step == StripStep::last;
        return fromTheEnd ? hoverOf(rows.back().sessions().back(), rows.back(), strips)
                          : hoverOf(rows.front().sessions().front(), rows.front(), strips);
    }
    switch (step) {
    case StripStep::earlier:
    case StripStep::later: return hoverOf(neighbour(row->sessions(), *from, step), *row, strips);
    case StripStep::above:
    case StripStep::below: {
        const auto& edge = step == StripStep::above ? rows.front() : rows.back();
        const auto& next = &*row == &edge ? *row : *(step == StripStep::above ? row - 1 : row + 1);
        return hoverOf(nearestInDay(next, from->day, from->time), next, strips);
    }
    case StripStep::first: return hoverOf(row->sessions().front(), *row, strips);
    case StripStep::last: return hoverOf(row->sessions().back(), *row, strips);
    }
    return std::nullopt;
}

} // namespace kestrio
