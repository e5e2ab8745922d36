#include "Kestrio/Pages/OverviewPage.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Pages/Videos.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kestrio {
namespace {

std::string shareOfActiveTime(Seconds part, Seconds total) {
    return Fmt::percent(part.count(), total.count()) + " of active time";
}

std::string activeTimeDetail(const ActivityReport& report, RangeMode mode, const Calendar& calendar) {
    if (mode == RangeMode::day && report.firstActivity && report.lastActivity)
        return Fmt::timeRange(*report.firstActivity, *report.lastActivity, calendar);
    const auto days = static_cast<double>(std::max<std::int64_t>(1, report.activeDays));
    return fmt::format("avg {} / active day", Fmt::duration(report.total / days));
}

StatCard activeTimeCard(const ActivityReport& report, RangeMode mode, const Calendar& calendar) {
    return {.title = "Active Time",
            .symbol = "clock",
            .value = Fmt::duration(report.total),
            .detail = activeTimeDetail(report, mode, calendar),
            .tint = SystemColor::blue,
            .help = "Time you were at the Mac using something. Time away, idle or paused is not part of it."};
}

/// "Time in {categories}. You choose what counts as what under Apps and Websites."
std::string productivityHelp(Productivity which) {
    std::vector<std::string_view> categories;
    for (const auto category : allActivityCategories)
        if (productivity(category) == which)
            categories.push_back(label(category));
    return fmt::format("Time in {}. You choose what counts as what under Apps and Websites.",
                       fmt::join(categories, ", "));
}

StatCard productivityCard(const ActivityReport& report, Productivity which, std::string title, std::string symbol,
                          SystemColor tint) {
    const auto time = report.productivity[which];
    return {.title = std::move(title),
            .symbol = std::move(symbol),
            .value = Fmt::duration(time),
            .detail = shareOfActiveTime(time, report.total),
            .tint = tint,
            .help = productivityHelp(which)};
}

StatCard alongsideCard(const ActivityReport& report) {
    const auto time = report.watchingTime + report.listeningTime;
    auto detail = time > Seconds(0) ? fmt::format("{} video · {} audio", Fmt::duration(report.watchingTime),
                                                  Fmt::duration(report.listeningTime))
                                    : std::string("Nothing played on the side");
    return {.title = "Alongside",
            .symbol = "rectangle.on.rectangle",
            .value = Fmt::duration(time),
            .detail = std::move(detail),
            .tint = SystemColor::purple,
            .help = "Video on another screen or audio in the background while you worked. Not part of active time."};
}

StatCard switchesCard(const ActivityReport& report) {
    return {.title = "App Switches",
            .symbol = "arrow.left.arrow.right",
            .value = fmt::format("{}", report.switches),
            .detail = fmt::format("{} apps · {} sites", report.apps.size(), report.domains.size()),
            .tint = SystemColor::brown,
            .help = "How often you went from one app to another."};
}

std::string videoCounts(const std::vector<VideoUsage>& videos) {
    const auto shorts = std::ranges::count_if(videos, &VideoUsage::isShort);
    const auto others = std::ssize(videos) - shorts;
    auto text = others == 1 ? std::string("1 video") : fmt::format("{} videos", others);
    if (shorts > 0)
        text += fmt::format(", {} short{}", shorts, shorts == 1 ? "" : "s");
    return text;
}

StatCard youtubeFigure(const ActivityReport& report) {
    return {.title = "YouTube",
            .symbol = "play.rectangle.fill",
            .value = Fmt::duration(report.youtubeTime + report.youtubeAlongsideTime),
            .detail = videoCounts(report.videos),
            .tint = SystemColor::red,
            .help = "Time on YouTube in front of you and alongside."};
}

TopCard<UsageRow> youtubeCard(const ActivityReport& report, Thumbnails thumbnails, const Viewpoint& viewpoint) {
    TopCard<UsageRow> card{.head = {"YouTube", "play.rectangle"}, .rows = {}};
    const auto& videos = report.videos;
    for (const auto& video : std::span(videos).first(std::min(OverviewPage::furtherLimit, videos.size())))
        card.rows.push_back(overviewVideoRow(video, videos.front().duration, thumbnails, viewpoint));
    const auto time = report.youtubeTime + report.youtubeAlongsideTime;
    if (videos.empty())
        card.message = time > Seconds(0) ? Fmt::duration(time) + " on YouTube, but no videos opened."
                                         : std::string("No YouTube videos watched.");
    return card;
}

TopCard<UsageRow> websitesCard(const ActivityReport& report) {
    TopCard<UsageRow> card{.head = {"Top Websites", "globe"},
                           .rows = domainRows(report.domains, OverviewPage::topLimit),
                           .seeAll = DashboardSection::websites};
    if (report.domains.empty())
        card.message = "No websites yet. Allow browser access in Settings › Permissions to track tabs.";
    return card;
}

std::optional<TopCard<AlongsideRow>> alongsideList(const ActivityReport& report, const Viewpoint& viewpoint) {
    const auto& items = report.alongsideItems;
    if (items.empty())
        return std::nullopt;
    TopCard<AlongsideRow> card{.head = {"Watched & listened alongside", "rectangle.on.rectangle"}, .rows = {}};
    card.note = "Second screen & background audio — not counted in active time";
    for (const auto& item : std::span(items).first(std::min(OverviewPage::furtherLimit, items.size())))
        card.rows.push_back(alongsideRow(item, report.watchingTime + report.listeningTime, viewpoint));
    return card;
}

std::optional<TopCard<UsageRow>> projectsCard(const ActivityReport& report) {
    if (report.projects.empty())
        return std::nullopt;
    return TopCard<UsageRow>{.head = {"Projects", "folder"},
                             .rows = projectRows(report.projects, OverviewPage::furtherLimit),
                             .seeAll = DashboardSection::projects};
}

} // namespace

std::vector<StatCard> overviewStats(const ActivityReport& report, RangeMode mode, const Calendar& calendar) {
    return {
        activeTimeCard(report, mode, calendar),
        productivityCard(report, Productivity::productive, "Productive", "bolt.fill", SystemColor::teal),
        productivityCard(report, Productivity::distracting, "Distracting", "flame.fill", SystemColor::orange),
        alongsideCard(report),
        youtubeFigure(report),
        switchesCard(report),
    };
}

std::variant<EmptyActivity, OverviewPage> overviewPage(const ActivityReport& report, RangeMode mode,
                                                       Thumbnails thumbnails, const Viewpoint& viewpoint) {
    if (report.sessions.empty())
        return noActivityYet();
    return OverviewPage{
        .stats = overviewStats(report, mode, viewpoint.calendar),
        .activity = {{"Activity", "chart.bar.xaxis"}, activityChart(report, viewpoint.calendar)},
        .categories = {{"Categories", "circle.hexagongrid"}, categoryBreakdown(report.categories, report.total)},
        .apps = {.head = {"Top Apps", "macwindow"},
                 .rows = appRows(report.apps, OverviewPage::topLimit),
                 .seeAll = DashboardSection::apps},
        .websites = websitesCard(report),
        .youtube = youtubeCard(report, thumbnails, viewpoint),
        .alongside = alongsideList(report, viewpoint),
        .projects = projectsCard(report)};
}

} // namespace kestrio
