#include "Kestrio/Platform/Linux/WindowPrivacy.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <array>

namespace kestrio {
namespace {

/// The names with which Gecko browsers sign their windows, and nothing behind them in an ordinary one.
constexpr std::array geckoNames{
    std::string_view("Mozilla Firefox"), std::string_view("Firefox"), std::string_view("Firefox Developer Edition"),
    std::string_view("Firefox Nightly"), std::string_view("Nightly"), std::string_view("Firefox Web Browser"),
    std::string_view("Zen Browser"),     std::string_view("Zen"),     std::string_view("Waterfox"),
    std::string_view("LibreWolf"),       std::string_view("Floorp"),  std::string_view("Ablaze Floorp"),
};

/// How private windows are called behind or before the browser's name: Gecko's own words in its languages, without
/// regard to letter case. A language that is missing here costs nothing with the browsers whose names are above.
constexpr std::array privateWords{
    std::string_view("private browsing"),
    std::string_view("privater modus"),
    std::string_view("navigation privée"),
    std::string_view("navegación privada"),
    std::string_view("navegação privativa"),
    std::string_view("navegação privada"),
    std::string_view("navegació privada"),
    std::string_view("navigazione anonima"),
    std::string_view("privénavigatie"),
    std::string_view("tryb prywatny"),
    std::string_view("приватный просмотр"),
    std::string_view("приватний перегляд"),
    std::string_view("プライベートブラウジング"),
    std::string_view("隐私浏览"),
    std::string_view("隱私瀏覽"),
    std::string_view("사생활 보호 모드"),
    std::string_view("privat surfning"),
    std::string_view("privat browsing"),
    std::string_view("privat nettlesing"),
    std::string_view("yksityinen selaus"),
    std::string_view("anonymní prohlížení"),
    std::string_view("súkromné prehliadanie"),
    std::string_view("privát böngészés"),
    std::string_view("gizli gezinti"),
    std::string_view("navigare privată"),
    std::string_view("ιδιωτική περιήγηση"),
};

/// Edge's mark, in titles and in the names of frames.
constexpr std::string_view inPrivate = "[InPrivate]";

/// In the titles of browsers that are made from Chromium.
constexpr std::array chromiumMarks{
    inPrivate,
    std::string_view("(Incognito)"),
    std::string_view("(InPrivate)"),
    std::string_view("(Private)"),
};

/// What separates a page's title from what the browser adds.
constexpr std::array separators{std::string_view(" — "), std::string_view(" – "), std::string_view(" - ")};

bool isGeckoName(std::string_view text) {
    return std::find(geckoNames.begin(), geckoNames.end(), text) != geckoNames.end();
}

/// Whether the title ends in a browser's bare name. A name that stands in a page's own title is followed by another.
bool isSignedPlainly(std::string_view title) {
    return isGeckoName(title) || std::any_of(separators.begin(), separators.end(), [&](std::string_view separator) {
               const auto at = title.rfind(separator);
               return at != std::string_view::npos && isGeckoName(title.substr(at + separator.size()));
           });
}

WindowPrivacy privacyOfGeckoTitle(std::string_view title) {
    if (isSignedPlainly(title))
        return WindowPrivacy::ordinary;
    const auto small = text::lowercased(title);
    // A page's own title may hold the words too; a window that is private in doubt is private.
    const bool isNamedPrivate = std::any_of(privateWords.begin(), privateWords.end(), [&](std::string_view words) {
        return small.find(words) != std::string::npos;
    });
    return isNamedPrivate ? WindowPrivacy::isPrivate : WindowPrivacy::unknown;
}

WindowPrivacy privacyOfChromiumTitle(std::string_view title) {
    const bool isMarked = std::any_of(chromiumMarks.begin(), chromiumMarks.end(), [&](std::string_view mark) {
        return title.find(mark) != std::string_view::npos;
    });
    return isMarked ? WindowPrivacy::isPrivate : WindowPrivacy::unknown;
}

/// In every language of Chromium that we looked at, the mark ends in one of these, some with no blank before it.
bool endsInBracket(std::string_view name) {
    return name.ends_with(')') || name.ends_with("）");
}

bool beginsWithBlankOrBracket(std::string_view text) {
    return text.starts_with(' ') || text.starts_with('(') || text.starts_with("（");
}

/// Where the application's name stands in the browser's own part of a frame's name or a window's title.
std::size_t signatureIn(std::string_view name, std::string_view applicationName) {
    return applicationName.empty() ? std::string_view::npos : name.rfind(applicationName);
}

} // namespace

const std::set<std::string, std::less<>>& geckoBrowsers() {
    static const std::set<std::string, std::less<>> table{
        "org.mozilla.firefox",
        "org.mozilla.firefoxdeveloperedition",
        "org.mozilla.nightly",
        "app.zen-browser.zen",
        "net.waterfox.waterfox",
        // Under the desktop ids of Debian and Flathub, for no other host has an identifier for them.
        "librewolf",
        "io.gitlab.librewolf-community",
        "floorp",
        "one.ablaze.floorp",
    };
    return table;
}

WindowPrivacy privacyOfTitle(std::string_view title, std::string_view bundleIdentifier) {
    return geckoBrowsers().contains(bundleIdentifier) ? privacyOfGeckoTitle(title) : privacyOfChromiumTitle(title);
}

bool isPrivateFrame(std::string_view name, std::string_view applicationName, const std::vector<std::string>& titles) {
    if (name.find(inPrivate) != std::string_view::npos)
        return true;
    if (!endsInBracket(name))
        return false;
    const auto signature = signatureIn(name, applicationName);
    if (signature == std::string_view::npos) // an application's window, a page's tools: what the title says itself
        return std::find(titles.begin(), titles.end(), name) == titles.end();
    const auto added = name.substr(signature + applicationName.size());
    // " - Work (example.org)" is a profile's name.
    return std::none_of(separators.begin(), separators.end(),
                        [&](auto separator) { return added.starts_with(separator); });
}

NameMatch matchNames(std::string_view frame, std::string_view title, std::string_view applicationName) {
    if (title.empty() || frame.empty())
        return NameMatch::none;
    if (frame.starts_with(title) &&
        (frame.size() == title.size() || beginsWithBlankOrBracket(frame.substr(title.size()))))
        return NameMatch::exact;
    const auto signature = signatureIn(title, applicationName);
    if (signature == std::string_view::npos)
        return NameMatch::none;
    // What stands before the separator and the application's name.
    auto page = title.substr(0, signature);
    while (!page.empty() && page.back() == ' ')
        page.remove_suffix(1);
    page = page.substr(0, page.rfind(' '));
    const bool isSamePage =
        !page.empty() && frame.starts_with(page) && beginsWithBlankOrBracket(frame.substr(page.size()));
    const bool isSigned = isSamePage && frame.find(applicationName, page.size()) != std::string_view::npos;
    return isSigned ? NameMatch::loose : NameMatch::none;
}

} // namespace kestrio
