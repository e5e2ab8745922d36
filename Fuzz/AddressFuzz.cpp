#include "Fuzz/Fuzz.h"
#include "Kestrio/Activity/MediaDomains.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"
#include "Kestrio/Classification/URLComponents.h"

#include <algorithm>

namespace kestrio {
namespace {

bool isText(std::string_view bytes) {
    return text::fromUntrustedBytes(bytes) == bytes;
}

void takeApart(std::string_view url) {
    const auto domain = URLTools::domain(url);
    require(!domain || (!domain->empty() && isText(*domain) && text::lowercased(*domain) == *domain));
    const auto video = YouTube::videoID(url);
    require(!video || (!video->empty() && isText(*video)));
    const auto query = YouTube::searchQuery(url);
    require(!query || (!query->empty() && isText(*query) && text::trimmedOfBlanks(*query) == *query));
    require(!video || isMediaPage(url));
}

/// The address that stands for a video leads to the same video, for any identifier that needs no encoding.
void comeBack(std::string_view id) {
    const bool isPlain = std::all_of(id.begin(), id.end(), [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
    });
    if (id.empty() || !isPlain)
        return;
    for (const bool isShort : {false, true})
        require(YouTube::videoID(YouTube::canonicalURL(id, isShort)) == id);
    require(YouTube::isYouTube(URLTools::domain(YouTube::canonicalURL(id, false))));
}

} // namespace
} // namespace kestrio

/// Whatever stands in an address bar has a domain, a video and words searched for, or has none.
void kestrio::fuzz(std::string_view input) {
    takeApart(input);
    for (const std::string_view front : {"https://", "https://www.youtube.com/", "https://youtu.be/", "/results?"})
        takeApart(std::string(front).append(input));
    comeBack(input);
    const auto encoded = addingPercentEncoding(input);
    require(encoded.has_value() == isText(input));
    if (encoded)
        require(removingPercentEncoding(*encoded) == input);
}
