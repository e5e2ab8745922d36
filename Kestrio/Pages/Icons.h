// What stands at the head of a row: an application's icon, a site's badge, a picture of a video, or a symbol by its
// name. Plain values; the views draw them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kestrio {

/// The icon of an application; `missingSymbol` where the host has none.
struct AppIcon {
    static constexpr auto missingSymbol = "app.dashed";
    std::string bundleID;
    friend bool operator==(const AppIcon&, const AppIcon&) = default;
};

struct SymbolIcon {
    std::string symbol;
    friend bool operator==(const SymbolIcon&, const SymbolIcon&) = default;
};

/// A colour by hue, saturation and brightness, each from 0 to 1.
struct BadgeColor {
    double hue = 0;
    double saturation = 0.55;
    double brightness = 0.78;
    friend bool operator==(const BadgeColor&, const BadgeColor&) = default;
};

/// A site's letter on a colour of its own, the same from run to run.
struct SiteLetter {
    std::string letter; // "?" for a name without letters and digits
    BadgeColor color;
    friend bool operator==(const SiteLetter&, const SiteLetter&) = default;
};

/// The badge of the video site: its symbol on red.
struct VideoSiteBadge {
    static constexpr auto symbol = "play.fill";
    friend bool operator==(const VideoSiteBadge&, const VideoSiteBadge&) = default;
};

using SiteIcon = std::variant<SiteLetter, VideoSiteBadge>;

SiteIcon siteIcon(const std::string& domain);

/// A number that stays the same for a text on every machine: `hash * 33 + scalar` over its Unicode scalars.
std::uint32_t stableHash(std::string_view text);

/// A picture of a video, 16 to 9. While it loads, when that fails, and when the person does not want pictures, the
/// placeholder shows instead; in the last case nobody is asked for it.
struct VideoThumbnail {
    static constexpr auto placeholderSymbol = "play.fill";
    static constexpr double height(double width) { return width * 9 / 16; }

    std::string videoID;
    std::optional<std::string> url; // absent when no request is to be made

    friend bool operator==(const VideoThumbnail&, const VideoThumbnail&) = default;
};

/// Whether the person lets pictures be fetched.
enum class Thumbnails { off, on };

VideoThumbnail videoThumbnail(std::string videoID, Thumbnails thumbnails);

using RowIcon = std::variant<AppIcon, SymbolIcon, SiteLetter, VideoSiteBadge, VideoThumbnail>;

RowIcon rowIcon(const SiteIcon& icon);

} // namespace kestrio
