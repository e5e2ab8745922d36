#include "Programs/CommandLine/ReportText.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Reports/IntervalWalk.h"
#include "Programs/CommandLine/ReportChart.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace kestrio {
namespace {

constexpr std::size_t leastWidth = 40;
constexpr std::size_t durationColumns = 7;
constexpr std::size_t mostNameColumns = 32;
constexpr std::size_t mostBarColumns = 24;
/// A narrower terminal has no room for bars.
constexpr std::size_t leastWidthForBars = 60;
constexpr std::size_t leastDetailColumns = 10;

// How many rows a list of the overview has, and how many details stand below each row of a section.
constexpr std::size_t topRows = 7;
constexpr std::size_t details = 5;

/// One line of a list: a name, a bar in proportion, the time, and something more.
struct Row {
    std::string name;
    Seconds time{};
    SystemColor color = SystemColor::gray;
    std::string more = {};
    std::vector<UsageItem> items = {}; // quiet lines below it
};

struct List {
    const char* title;
    std::vector<Row> rows;
    Seconds full{}; // what a whole bar stands for
};

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string all;
    for (const auto& text : texts)
        if (!text.empty())
            all.append(all.empty() ? "" : separator).append(text);
    return all;
}

template <class Element>
std::vector<Element> first(std::size_t count, const std::vector<Element>& list) {
    return std::vector<Element>(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(std::min(count, list.size())));
}

class Page {
public:
    Page(const ActivityReport& report, Date now, const Calendar& calendar, const TableStyle& style)
        : report_(report),
          now_(now),
          calendar_(calendar),
          style_(style),
          paint_(style.hasColour),
          width_(std::max(style.width, leastWidth)) {}

    std::string text(const ReportHeading& heading, ReportSection section) {
        addHeading(heading);
        switch (section) {
        case ReportSection::overview: addOverview(); break;
        case ReportSection::apps: addApps(report_.apps.size(), details); break;
        case ReportSection::websites: addWebsites(report_.domains.size(), details); break;
        case ReportSection::youtube: addYouTube(); break;
        case ReportSection::projects: addProjects(report_.projects.size(), details); break;
        case ReportSection::timeline: addTimeline(); break;
        }
        addLists();
        return std::move(text_);
    }

private:
    void addHeading(const ReportHeading& heading) {
        if (heading.subtitle.find(heading.title) != std::string::npos) // says the same and more
            return line(paint_.bold(fitted(heading.subtitle, width_ - 2)));
        const auto title = fitted(heading.title, width_ - 2);
        const auto used = 2 + text::columns(title) + 3;
        const auto subtitle = width_ > used ? fitted(heading.subtitle, width_ - used) : "";
        line(paint_.bold(title) + (subtitle.empty() ? "" : "   " + paint_.dim(subtitle)));
    }

    void addOverview() {
        text_ += '\n';
        addFigures();
        if (const auto chart = reportChart(report_, calendar_, style_); !chart.empty())
            text_ += "\n" + chart;
        addCategories();
        addApps(topRows, 0);
        addWebsites(topRows, 0);
        addRows("YouTube", videoRows(first(topRows - 1, report_.videos)), longestVideo());
        addAlongside();
        addProjects(topRows - 1, 0);
    }

    void addFigures() {
        const auto beside = report_.watchingTime + report_.listeningTime;
        const auto onSite = report_.youtubeTime + report_.youtubeAlongsideTime;
        addFigure("Active time", Fmt::duration(report_.total), spanOrAverage());
        addFigure("Productive", Fmt::duration(report_.productivity[Productivity::productive]),
                  ofActiveTime(Productivity::productive));
        addFigure("Distracting", Fmt::duration(report_.productivity[Productivity::distracting]),
                  ofActiveTime(Productivity::distracting));
        if (beside > Seconds(0))
            addFigure("Alongside", Fmt::duration(beside),
                      Fmt::duration(report_.watchingTime) + " video · " + Fmt::duration(report_.listeningTime) +
                          " audio");
        if (onSite > Seconds(0))
            addFigure("YouTube", Fmt::duration(onSite), counted(report_.videos.size(), "video"));
        addFigure("App switches", fmt::format("{}", report_.switches),
                  counted(report_.apps.size(), "app") + " · " + counted(report_.domains.size(), "site"));
    }

    void addFigure(const char* name, const std::string& value, const std::string& more) {
        constexpr std::size_t nameColumns = 13;
        constexpr std::size_t valueColumns = 8;
        line(paint_.dim(padded(name, nameColumns)) + paint_.bold(paddedLeft(value, valueColumns)) + "   " +
             paint_.dim(fitted(more, width_ - 2 - nameColumns - valueColumns - 3)));
    }

    std::string spanOrAverage() const {
        const bool isOneDay = report_.granularity == Granularity::hour;
        if (isOneDay && report_.firstActivity && report_.lastActivity)
            return Fmt::timeRange(*report_.firstActivity, *report_.lastActivity, calendar_);
        const auto days = static_cast<double>(std::max<std::int64_t>(1, report_.activeDays));
        return "avg " + Fmt::duration(report_.total / days) + " / active day";
    }

    std::string ofActiveTime(Productivity productivity) const {
        return Fmt::percent(report_.productivity[productivity].count(), report_.total.count()) + " of active time";
    }

    void addCategories() {
        std::vector<Row> rows;
        for (const auto& usage : report_.categories)
            rows.push_back({std::string(label(usage.category)), usage.duration, color(usage.category),
                            Fmt::percent(usage.duration.count(), report_.total.count())});
        addRows("Categories", rows, report_.total);
    }

    void addApps(std::size_t count, std::size_t itemCount) {
        std::vector<Row> rows;
        for (const auto& app : first(count, report_.apps)) {
            auto items = first(itemCount, app.items);
            if (items.empty())
                items = first(itemCount, app.alongsideItems);
            const auto more = itemCount > 0 ? joined({std::string(label(app.category)), visits(app), split(app)}, " · ")
                                            : splitOrFirst(app, app.items);
            rows.push_back({app.name, app.duration + app.alongside, color(app.category), more, std::move(items)});
        }
        addRows(itemCount > 0 ? "Apps" : "Top apps", rows, longest(report_.apps));
    }

    void addWebsites(std::size_t count, std::size_t itemCount) {
        std::vector<Row> rows;
        for (const auto& site : first(count, report_.domains)) {
            const auto more = itemCount > 0
                                  ? joined({std::string(label(site.category)), visits(site), split(site)}, " · ")
                                  : splitOrFirst(site, site.pages);
            rows.push_back({site.domain, site.duration + site.alongside, color(site.category), more,
                            first(itemCount, site.pages)});
        }
        addRows(itemCount > 0 ? "Websites" : "Top websites", rows, longest(report_.domains));
    }

    void addYouTube() {
        text_ += '\n';
        addFigure("On the site", Fmt::duration(report_.youtubeTime + report_.youtubeAlongsideTime),
                  Fmt::split(report_.youtubeTime, report_.youtubeAlongsideTime).value_or(""));
        addRows("Videos", videoRows(report_.videos), longestVideo());
        std::vector<Row> rows;
        for (const auto& search : report_.youtubeSearches)
            rows.push_back({search.title, search.duration, SystemColor::gray, times(search.count)});
        addRows("Searches", rows, report_.youtubeSearches.empty() ? Seconds(0) : report_.youtubeSearches[0].duration);
    }

    std::vector<Row> videoRows(const std::vector<VideoUsage>& videos) const {
        std::vector<Row> rows;
        for (const auto& video : videos)
            rows.push_back({video.title, video.duration, SystemColor::red,
                            joined({video.isShort ? "Short" : "", times(video.views),
                                    video.alongside >= Seconds(1) ? Fmt::duration(video.alongside) + " alongside" : "",
                                    "last " + Fmt::lastSeen(video.lastWatched, now_, calendar_)},
                                   " · ")});
        return rows;
    }

    void addAlongside() {
        std::vector<Row> rows;
        for (const auto& item : first(topRows - 1, report_.alongsideItems))
            rows.push_back({item.title.empty() ? item.appName : item.title, item.duration, SystemColor::gray,
                            joined({std::string(label(item.kind)), item.appName}, " · ")});
        addRows("Watched & listened alongside", rows,
                report_.alongsideItems.empty() ? Seconds(0) : report_.alongsideItems[0].duration);
    }

    void addProjects(std::size_t count, std::size_t itemCount) {
        std::vector<Row> rows;
        for (const auto& project : first(count, report_.projects)) {
            std::vector<std::string> apps;
            for (const auto& app : first(3, project.apps))
                apps.push_back(app.title);
            rows.push_back({project.name, project.duration, SystemColor::blue, joined(apps, ", "),
                            first(itemCount, project.items)});
        }
        addRows("Projects", rows, report_.projects.empty() ? Seconds(0) : report_.projects[0].duration);
    }

    void addTimeline() {
        const auto active = activePerDay();
        IntervalWalk days(calendar_, Granularity::day);
        std::optional<Date> shown;
        for (const auto& block : report_.blocks) {
            const auto day = days.around(block.start).start;
            if (shown != day) {
                shown = day;
                text_ += '\n';
                line(paint_.bold(Fmt::relativeDay(block.start, now_, calendar_)) + "  " +
                     paint_.dim(Fmt::duration(active.at(day))));
                text_ += '\n';
            }
            addBlock(block);
        }
    }

    /// The active time of the blocks that begin on each day; zero for days with blocks alongside alone.
    std::map<Date, Seconds> activePerDay() const {
        std::map<Date, Seconds> active;
        IntervalWalk days(calendar_, Granularity::day);
        for (const auto& block : report_.blocks)
            active[days.around(block.start).start] += block.kind == SessionKind::focus ? block.active : Seconds(0);
        return active;
    }

    void addBlock(const TimelineBlock& block) {
        const auto times = calendar_.formatted(block.start, "HH:mm") + "–" + calendar_.formatted(block.end, "HH:mm");
        constexpr std::size_t nameColumns = 16;
        const auto name = padded(fitted(block.appName, nameColumns), nameColumns);
        auto more = block.headline == block.appName ? "" : block.headline;
        if (block.entries.size() > 1)
            more += fmt::format("{}+{}", more.empty() ? "" : "  ", block.entries.size() - 1);
        if (block.kind != SessionKind::focus)
            more = joined({std::string(label(block.kind)), more}, ": ");
        const auto used = 2 + 11 + 2 + durationColumns + 2 + nameColumns + 2;
        more = fitted(more, width_ - std::min(width_, used));
        line(paint_.dim(times) + "  " + paddedLeft(Fmt::duration(block.active), durationColumns) + "  " +
             paint_.colour(color(block.category), name) + "  " +
             (block.kind == SessionKind::focus ? more : paint_.dim(more)));
    }

    // The shapes.

    /// The lists stand below everything else, and share their columns.
    void addRows(const char* title, std::vector<Row> rows, Seconds full) {
        if (!rows.empty())
            lists_.push_back({title, std::move(rows), full});
    }

    void addLists() {
        std::size_t nameColumns = 12;
        const auto limit = std::min(mostNameColumns, width_ / 3);
        for (const auto& list : lists_)
            for (const auto& row : list.rows)
                nameColumns = std::max(nameColumns, text::columns(fitted(row.name, limit)));
        for (const auto& list : lists_) {
            text_ += '\n';
            line(paint_.bold(list.title));
            for (const auto& row : list.rows) {
                addRow(row, list.full, nameColumns);
                for (const auto& item : row.items)
                    addItem(item, nameColumns);
            }
        }
    }

    void addRow(const Row& row, Seconds full, std::size_t nameColumns) {
        const auto columns = barColumns(nameColumns);
        const auto bars =
            columns > 0 ? paint_.colour(row.color, bar(full > Seconds(0) ? row.time / full : 0, columns)) + "  " : "";
        const auto used = 2 + nameColumns + 2 + (columns > 0 ? columns + 2 : 0) + durationColumns + 2;
        const auto room = width_ > used ? width_ - used : 0;
        const auto more = room < leastDetailColumns ? "" : fitted(row.more, room);
        line(padded(fitted(row.name, nameColumns), nameColumns) + "  " + bars +
             paddedLeft(Fmt::duration(row.time), durationColumns) + "  " + paint_.dim(more));
    }

    /// A bar takes a third of what the name leaves.
    std::size_t barColumns(std::size_t nameColumns) const {
        if (width_ < leastWidthForBars)
            return 0;
        return std::min(mostBarColumns, (width_ - nameColumns) / 3);
    }

    /// Quietly below its row, with the time in the row's column.
    void addItem(const UsageItem& item, std::size_t nameColumns) {
        constexpr std::size_t indent = 2;
        const auto bars = barColumns(nameColumns);
        const auto room = nameColumns + (bars > 0 ? bars + 2 : 0) - indent;
        line(paint_.dim(std::string(indent, ' ') + padded(fitted(item.title, room), room) + "  " +
                        paddedLeft(Fmt::duration(item.duration), durationColumns)));
    }

    /// A line with the margin, without blanks at its end.
    void line(std::string text) {
        text.erase(text.find_last_not_of(' ') + 1);
        text_ += "  " + text + "\n";
    }

    static std::string fitted(const std::string& text, std::size_t columns) {
        return text::fittedToColumns(text, columns);
    }

    static std::string times(std::int64_t count) { return fmt::format("{}×", count); }

    static std::string counted(auto count, const char* noun) {
        return kestrio::counted(static_cast<std::size_t>(count), noun);
    }

    /// Nothing for what only ran alongside.
    template <class Usage>
    static std::string visits(const Usage& usage) {
        return usage.visits > 0 ? counted(usage.visits, "visit") : "";
    }

    template <class Usage>
    static std::string split(const Usage& usage) {
        return Fmt::split(usage.duration, usage.alongside).value_or("");
    }

    template <class Usage>
    static std::string splitOrFirst(const Usage& usage, const std::vector<UsageItem>& items) {
        return Fmt::split(usage.duration, usage.alongside).value_or(items.empty() ? "" : items[0].title);
    }

    template <class Usage>
    static Seconds longest(const std::vector<Usage>& list) {
        return list.empty() ? Seconds(0) : list[0].duration + list[0].alongside;
    }

    Seconds longestVideo() const { return report_.videos.empty() ? Seconds(0) : report_.videos[0].duration; }

    const ActivityReport& report_;
    const Date now_;
    const Calendar& calendar_;
    const TableStyle style_;
    const Painter paint_;
    const std::size_t width_;
    std::string text_;
    std::vector<List> lists_;
};

} // namespace

std::string_view rawValue(ReportSection section) {
    switch (section) {
    case ReportSection::overview: return "overview";
    case ReportSection::apps: return "apps";
    case ReportSection::websites: return "websites";
    case ReportSection::youtube: return "youtube";
    case ReportSection::projects: return "projects";
    case ReportSection::timeline: return "timeline";
    }
    return {};
}

std::optional<ReportSection> reportSection(std::string_view raw) {
    for (const auto section : allReportSections)
        if (rawValue(section) == raw)
            return section;
    return std::nullopt;
}

std::string reportText(const ActivityReport& report, const ReportHeading& heading, ReportSection section, Date now,
                       const Calendar& calendar, const TableStyle& style) {
    return Page(report, now, calendar, style).text(heading, section);
}

} // namespace kestrio
