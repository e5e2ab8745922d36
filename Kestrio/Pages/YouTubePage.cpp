#include "Kestrio/Pages/YouTubePage.h"

#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

struct Watched {
    std::int64_t count = 0;
    Seconds time{};
};

Watched watched(std::span<const VideoUsage> videos, bool shorts) {
    Watched sum;
    for (const auto& video : videos)
        if (video.isShort == shorts) {
            ++sum.count;
            sum.time += video.duration;
        }
    return sum;
}

StatCard timeCard(const ActivityReport& report) {
    auto detail = Fmt::split(report.youtubeTime, report.youtubeAlongsideTime);
    if (!detail)
        detail = Fmt::percent(report.youtubeTime.count(), report.total.count()) + " of active time";
    return {.title = "Time on YouTube",
            .symbol = "play.rectangle.fill",
            .value = Fmt::duration(report.youtubeTime + report.youtubeAlongsideTime),
            .detail = std::move(detail),
            .tint = SystemColor::red,
            .help = "Time on YouTube in front of you and alongside."};
}

StatCard watchedCard(std::string title, std::string symbol, const Watched& watched, SystemColor tint) {
    return {.title = std::move(title),
            .symbol = std::move(symbol),
            .value = fmt::format("{}", watched.count),
            .detail = "watched " + Fmt::duration(watched.time),
            .tint = tint,
            .help = "How many you opened, and how long they played in front of you or alongside."};
}

StatCard browsingCard(const ActivityReport& report, Seconds allWatch) {
    const auto searches = report.youtubeSearches.size();
    return {.title = "Browsing & Searching",
            .symbol = "magnifyingglass",
            .value = Fmt::duration(std::max(Seconds(0), report.youtubeTime - allWatch)),
            .detail = searches == 1 ? std::string("1 search") : fmt::format("{} searches", searches),
            .tint = SystemColor::blue,
            .help = "What is left of the time with YouTube in front of you without the videos and shorts."};
}

std::optional<ItemCard> searchesCard(const ActivityReport& report, const Viewpoint& viewpoint) {
    if (report.youtubeSearches.empty())
        return std::nullopt;
    return ItemCard{
        .head = {"Searches", "magnifyingglass"},
        .hasFilter = false,
        .initialCount = YouTubePage::initialSearches,
        .rows = itemRows(report.youtubeSearches, {.total = report.youtubeTime, .countLabel = "times"}, viewpoint),
        .message = {}};
}

} // namespace

std::string_view label(VideoSort sort) {
    switch (sort) {
    case VideoSort::watchTime: return "Watch time";
    case VideoSort::recent: return "Recent";
    }
    return {};
}

std::vector<const VideoUsage*> sortedVideos(std::span<const VideoUsage> videos, VideoSort sort,
                                            const ItemFilter& filter) {
    std::vector<const VideoUsage*> kept;
    for (const auto& video : videos)
        if (filter.finds(video.title))
            kept.push_back(&video);
    if (sort == VideoSort::recent)
        std::ranges::stable_sort(kept, std::ranges::greater(), &VideoUsage::lastWatched);
    return kept;
}

std::vector<StatCard> youtubeStats(const ActivityReport& report) {
    const auto others = watched(report.videos, false);
    const auto shorts = watched(report.videos, true);
    return {timeCard(report), watchedCard("Videos", "film", others, SystemColor::purple),
            watchedCard("Shorts", "iphone", shorts, SystemColor::orange),
            browsingCard(report, others.time + shorts.time)};
}

std::variant<EmptyActivity, YouTubePage> youtubePage(const ActivityReport& report, const VideoChoice& choice,
                                                     const Viewpoint& viewpoint) {
    const auto time = report.youtubeTime + report.youtubeAlongsideTime;
    if (report.videos.empty() && time <= Seconds(0))
        return EmptyActivity{"No YouTube activity", "play.rectangle",
                             "Videos you watch on YouTube in Chrome, Safari, Brave, Edge or Arc show up here with how "
                             "long you watched each one."};
    YouTubePage page{.stats = youtubeStats(report),
                     .videosHead = {"Videos", "play.rectangle.on.rectangle"},
                     .videos = {},
                     .message = {},
                     .searches = searchesCard(report, viewpoint)};
    for (const auto* video : sortedVideos(report.videos, choice.sort, choice.filter))
        page.videos.push_back(videoRow(*video, choice.thumbnails, viewpoint));
    if (report.videos.empty())
        page.message = "You browsed YouTube but didn't open a video.";
    else if (page.videos.empty())
        page.message = noMatches;
    return page;
}

} // namespace kestrio
