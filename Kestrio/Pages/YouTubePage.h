// What was watched on the video site. Plain values.
#pragma once

#include "Kestrio/Pages/Videos.h"

#include <variant>

namespace kestrio {

/// The orders in which videos stand, as the menu "Sort" lists them.
enum class VideoSort { watchTime, recent };
inline constexpr std::array allVideoSorts{VideoSort::watchTime, VideoSort::recent};
std::string_view label(VideoSort sort);

struct YouTubePage {
    static constexpr auto sortTitle = "Sort";
    static constexpr std::size_t initialVideos = 25;
    static constexpr std::size_t initialSearches = 10;

    std::vector<StatCard> stats;
    CardHead videosHead;
    std::vector<VideoRow> videos;
    std::optional<std::string> message; // in place of the videos
    std::optional<ItemCard> searches;   // absent without any
    friend bool operator==(const YouTubePage&, const YouTubePage&) = default;
};

struct VideoChoice {
    VideoSort sort = VideoSort::watchTime;
    ItemFilter filter = {};
    Thumbnails thumbnails = Thumbnails::off;
};

std::variant<EmptyActivity, YouTubePage> youtubePage(const ActivityReport& report, const VideoChoice& choice,
                                                     const Viewpoint& viewpoint);

/// The four figures.
std::vector<StatCard> youtubeStats(const ActivityReport& report);

/// The videos whose title the filter finds: in the report's order, or the one watched last first. They point into the
/// list.
std::vector<const VideoUsage*> sortedVideos(std::span<const VideoUsage> videos, VideoSort sort,
                                            const ItemFilter& filter);

} // namespace kestrio
