#include "Kestrio/Pages/Videos.h"

#include "Kestrio/Base/Formatters.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr Seconds anyAlongside{1};

std::string lastSeen(Date date, const Viewpoint& viewpoint) {
    return Fmt::lastSeen(date, viewpoint.now, viewpoint.calendar);
}

std::string shortDetail(const VideoUsage& video, const Viewpoint& viewpoint) {
    if (video.alongside >= notableAlongside)
        return fmt::format("{} alongside · last {}", Fmt::duration(video.alongside),
                           lastSeen(video.lastWatched, viewpoint));
    if (video.isShort)
        return fmt::format("Short · {}×", video.views);
    return fmt::format("{}× · last {}", video.views, lastSeen(video.lastWatched, viewpoint));
}

std::string fullDetail(const VideoUsage& video, const Viewpoint& viewpoint) {
    auto detail = video.views == 1 ? std::string("Opened once") : fmt::format("Opened {} times", video.views);
    if (video.alongside >= anyAlongside)
        detail += fmt::format(" · {} alongside", Fmt::duration(video.alongside));
    return fmt::format("{} · first {} · last {}", detail, lastSeen(video.firstWatched, viewpoint),
                       lastSeen(video.lastWatched, viewpoint));
}

} // namespace

UsageRow overviewVideoRow(const VideoUsage& video, Seconds longest, Thumbnails thumbnails, const Viewpoint& viewpoint) {
    // A video's duration holds what was alongside already.
    return {.key = video.videoID,
            .icon = videoThumbnail(video.videoID, thumbnails),
            .title = video.title,
            .subtitle = shortDetail(video, viewpoint),
            .duration = Fmt::duration(video.duration),
            .fraction = fraction(video.duration, longest),
            .tint = SystemColor::red};
}

VideoRow videoRow(const VideoUsage& video, Thumbnails thumbnails, const Viewpoint& viewpoint) {
    VideoRow row{.videoID = video.videoID,
                 .title = video.title,
                 .link = video.url,
                 .thumbnail = videoThumbnail(video.videoID, thumbnails),
                 .badge = {},
                 .duration = Fmt::duration(video.duration),
                 .detail = fullDetail(video, viewpoint),
                 .alongsideHelp = {}};
    if (video.isShort)
        row.badge = "Short";
    if (video.alongside >= anyAlongside)
        row.alongsideHelp = "Played on another screen or in the background while you worked";
    return row;
}

} // namespace kestrio
