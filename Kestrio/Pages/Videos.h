// A watched video as a row: short in the overview, in full on its own page. Plain values.
#pragma once

#include "Kestrio/Pages/Rows.h"

namespace kestrio {

/// Less alongside than this is not worth a word in the overview.
inline constexpr Seconds notableAlongside{60};

UsageRow overviewVideoRow(const VideoUsage& video, Seconds longest, Thumbnails thumbnails, const Viewpoint& viewpoint);

struct VideoRow {
    static constexpr auto alongsideSymbol = "rectangle.on.rectangle";

    std::string videoID;
    std::string title;
    std::string link;
    VideoThumbnail thumbnail;
    std::optional<std::string> badge; // "Short"
    std::string duration;
    std::string detail;
    std::optional<std::string> alongsideHelp; // of the mark that a video has which played alongside
    friend bool operator==(const VideoRow&, const VideoRow&) = default;
};

VideoRow videoRow(const VideoUsage& video, Thumbnails thumbnails, const Viewpoint& viewpoint);

} // namespace kestrio
