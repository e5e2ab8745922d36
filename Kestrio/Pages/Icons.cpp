#include "Kestrio/Pages/Icons.h"

#include "Kestrio/Base/Initial.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

/// As it stands in a path; an identifier comes from an address that anybody may have written.
std::string percentEncoded(std::string_view text) {
    std::string encoded;
    for (const char c : text) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                             c == '_' || c == '~';
        encoded += isPlain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return encoded;
}

} // namespace

std::uint32_t stableHash(std::string_view text) {
    std::uint32_t hash = 5381;
    while (const auto scalar = text::firstScalar(text)) {
        hash = hash * 33 + static_cast<std::uint32_t>(scalar->value);
        text.remove_prefix(scalar->length);
    }
    return hash;
}

SiteIcon siteIcon(const std::string& domain) {
    if (YouTube::isYouTube(domain))
        return VideoSiteBadge{};
    auto letter = text::initial(domain);
    if (letter.empty())
        letter = "?";
    return SiteLetter{std::move(letter), {.hue = static_cast<double>(stableHash(domain) % 360) / 360}};
}

VideoThumbnail videoThumbnail(std::string videoID, Thumbnails thumbnails) {
    std::optional<std::string> url;
    if (thumbnails == Thumbnails::on)
        url = fmt::format("https://i.ytimg.com/vi/{}/mqdefault.jpg", percentEncoded(videoID));
    return {std::move(videoID), std::move(url)};
}

RowIcon rowIcon(const SiteIcon& icon) {
    return std::visit([](const auto& one) { return RowIcon(one); }, icon);
}

} // namespace kestrio
