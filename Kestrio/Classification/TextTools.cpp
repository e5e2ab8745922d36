#include "Kestrio/Classification/TextTools.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/URLComponents.h"

#include <algorithm>
#include <array>
#include <vector>

namespace kestrio {

namespace TitleCleaner {
namespace {

using namespace std::string_view_literals;

struct Alias {
    std::string_view appName;
    std::string_view alsoSignsAs;
};

constexpr Alias appNameAliases[] = {
    {"Code", "Visual Studio Code"},
    {"Code - Insiders", "Visual Studio Code - Insiders"},
    {"iTerm2", "iTerm"},
};

constexpr std::array separators{" — "sv, " – "sv, " - "sv, " | "sv};

/// What editors and terminals put before a title: marks of a modified document, spinners. Plain comparisons, as this
/// runs at every sample.
bool isDecoration(char32_t c) {
    switch (c) {
    case U'*':
    case U'\u00B7': // middle dot
    case U'\u2022': // bullet
    case U'\u2026': // ellipsis
    case U'\u2219': // bullet operator
    case U'\u22C5': // dot operator
        return true;
    default: break;
    }
    return (c >= 0x2800 && c <= 0x28FF) || // braille: terminals' spinners
           (c >= 0x2700 && c <= 0x27BF) || // dingbats
           (c >= 0x2600 && c <= 0x26FF) || // miscellaneous symbols
           (c >= 0x2300 && c <= 0x23FF) || // miscellaneous technical
           (c >= 0x25A0 && c <= 0x25FF) || // geometric shapes
           text::isWhiteSpace(c);
}

/// The text after all scalars in front that `belongs` accepts.
template <class Belongs>
std::string_view skipping(std::string_view text, Belongs belongs) {
    for (auto scalar = text::firstScalar(text); scalar && belongs(scalar->value); scalar = text::firstScalar(text))
        text.remove_prefix(scalar->length);
    return text;
}

/// The text after this character, which it must begin with.
std::optional<std::string_view> after(char c, std::string_view text) {
    return text.starts_with(c) ? std::optional(text.substr(1)) : std::nullopt;
}

/// The text without the count that web applications put in front: ^\(\d[\d,.]*\+?\)\s* as a regular expression. No two
/// neighbours of that accept the same character, so one pass without going back decides.
std::string_view withoutCounter(std::string_view text) {
    const auto inside = after('(', text);
    const auto digit = inside ? text::firstScalar(*inside) : std::nullopt;
    if (!digit || !text::isDecimalDigit(digit->value))
        return text;
    auto rest = skipping(*inside, [](char32_t c) { return c == U',' || c == U'.' || text::isDecimalDigit(c); });
    rest = after('+', rest).value_or(rest);
    const auto title = after(')', rest);
    return title ? skipping(*title, text::isWhiteSpace) : text;
}

/// Where the title's last separator stands whose other side is `name`, however its accents are encoded.
std::optional<std::size_t> signatureStart(std::string_view title, std::string_view separator, std::string_view name) {
    // Composing makes a text at most three times as long in UTF-8, decomposing too: no longer rest can be the name.
    const auto longestRest = 3 * name.size();
    for (auto at = title.rfind(separator); at != std::string_view::npos && at > 0;
         at = title.rfind(separator, at - 1)) {
        const auto rest = title.substr(at + separator.size());
        if (rest.size() > longestRest)
            break;
        if (text::equivalent(rest, name))
            return at;
    }
    return std::nullopt;
}

std::vector<std::string_view> signatures(std::string_view appName) {
    std::vector<std::string_view> names{appName};
    for (const auto& alias : appNameAliases)
        if (alias.appName == appName)
            names.push_back(alias.alsoSignsAs);
    std::erase(names, ""sv);
    return names;
}

} // namespace

std::string clean(std::string_view title) {
    const auto visible = text::withoutInvisibleMarks(title);
    return text::prefix(withoutCounter(skipping(text::trimmed(visible), isDecoration)), longestTitle);
}

std::string removingAppName(std::string_view title, std::string_view appName) {
    for (const auto name : signatures(appName))
        for (const auto separator : separators)
            if (const auto start = signatureStart(title, separator, name))
                return std::string(title.substr(0, *start));
    return std::string(title);
}

} // namespace TitleCleaner

namespace URLTools {
namespace {

/// Browsers show addresses with blanks and with letters of any script in them, which the grammar does not allow.
std::optional<URLComponents> components(std::string_view url) {
    if (auto parsed = URLComponents::parsed(url))
        return parsed;
    const auto encoded = addingPercentEncoding(url);
    return encoded ? URLComponents::parsed(*encoded) : std::nullopt;
}

/// The host without a prefix that names no site of its own, unless next to nothing would be left.
std::string_view withoutPrefix(std::string_view host) {
    constexpr std::size_t leastLeft = 3;
    for (const std::string_view prefix : {"www.", "m.", "mobile."})
        if (host.starts_with(prefix) && text::characterCount(host) > prefix.size() + leastLeft)
            return host.substr(prefix.size());
    return host;
}

/// Two servers on this machine are two sites, told apart by the port.
bool keepsPort(std::string_view host) {
    return host == "localhost" || host == "127.0.0.1" || host == "0.0.0.0";
}

} // namespace

std::optional<std::string> domain(std::string_view url) {
    const auto parts = components(url);
    if (!parts || !parts->scheme || !parts->host || parts->host->empty())
        return std::nullopt;
    const auto scheme = text::lowercased(*parts->scheme);
    if (scheme != "http" && scheme != "https")
        return std::nullopt;
    const auto lowercased = text::lowercased(*parts->host);
    std::string host(withoutPrefix(lowercased));
    if (keepsPort(host) && parts->port)
        host += ":" + std::to_string(*parts->port);
    return host;
}

} // namespace URLTools

namespace YouTube {
namespace {

constexpr std::string_view mainDomain = "youtube.com";
constexpr std::string_view shortLinkDomain = "youtu.be";

/// A quick no for the addresses of other sites, which are most, without taking them apart.
bool mayBeOnSite(std::string_view url) {
    const auto slashes = url.find("//");
    if (slashes == std::string_view::npos)
        return false; // and so no host
    auto authority = url.substr(slashes + 2);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    // Both domains begin alike, unless something in them is written as percent encoding.
    constexpr std::string_view beginning = "youtu";
    const auto sameLetter = [](char a, char b) { return (a | 0x20) == b; };
    return authority.find('%') != std::string_view::npos ||
           std::search(authority.begin(), authority.end(), beginning.begin(), beginning.end(), sameLetter) !=
               authority.end();
}

std::vector<std::string_view> nonEmptyPieces(std::string_view path) {
    std::vector<std::string_view> pieces;
    while (!path.empty()) {
        const auto piece = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(piece.size() + 1, path.size()));
        if (!piece.empty())
            pieces.push_back(piece);
    }
    return pieces;
}

/// Path heads before an identifier.
bool leadsToVideo(std::string_view head) {
    return head == "shorts" || head == "live" || head == "embed";
}

std::optional<std::string> watchedID(const URLComponents& parts) {
    for (const auto& item : parts.percentEncodedQueryItems())
        if (removingPercentEncoding(item.name) == "v")
            return item.value ? removingPercentEncoding(*item.value) : std::nullopt;
    return std::nullopt;
}

std::optional<std::string> anyID(const URLComponents& parts) {
    const auto host = text::lowercased(parts.host.value_or(""));
    if (host.ends_with(shortLinkDomain)) {
        const auto pieces = nonEmptyPieces(parts.path);
        return pieces.empty() ? std::nullopt : std::optional<std::string>(pieces.front());
    }
    if (!host.ends_with(mainDomain))
        return std::nullopt;
    if (parts.path == "/watch")
        return watchedID(parts);
    const auto pieces = nonEmptyPieces(parts.path);
    return pieces.size() >= 2 && leadsToVideo(pieces[0]) ? std::optional<std::string>(pieces[1]) : std::nullopt;
}

std::optional<std::string> unlessEmpty(std::optional<std::string> text) {
    return text && text->empty() ? std::nullopt : std::move(text);
}

} // namespace

bool isYouTube(const std::optional<std::string>& domain) {
    return domain == mainDomain || domain == shortLinkDomain;
}

std::optional<std::string> videoID(std::string_view url) {
    if (!mayBeOnSite(url))
        return std::nullopt;
    const auto parts = URLComponents::parsed(url);
    return parts ? unlessEmpty(anyID(*parts)) : std::nullopt;
}

std::optional<std::string> searchQuery(std::string_view url) {
    const auto parts = URLComponents::parsed(url);
    if (!parts || parts->path != "/results")
        return std::nullopt;
    const auto items = parts->percentEncodedQueryItems();
    const auto found =
        std::find_if(items.begin(), items.end(), [](const auto& item) { return item.name == "search_query"; });
    if (found == items.end() || !found->value)
        return std::nullopt;
    auto encoded = *found->value;
    std::replace(encoded.begin(), encoded.end(), '+', ' ');
    const auto words = removingPercentEncoding(encoded);
    return words ? unlessEmpty(std::string(text::trimmedOfBlanks(*words))) : std::nullopt;
}

std::string cleanTitle(std::string_view title) {
    for (const std::string_view suffix : {" - YouTube", " – YouTube", " — YouTube"})
        if (title.ends_with(suffix)) {
            title.remove_suffix(suffix.size());
            break;
        }
    return std::string(text::trimmedOfBlanks(title));
}

std::string canonicalURL(std::string_view id, bool isShort) {
    return (isShort ? "https://www.youtube.com/shorts/" : "https://www.youtube.com/watch?v=") + std::string(id);
}

} // namespace YouTube

} // namespace kestrio
