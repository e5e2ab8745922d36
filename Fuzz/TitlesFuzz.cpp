#include "Fuzz/Fuzz.h"
#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

namespace kestrio {
namespace {

bool isText(std::string_view bytes) {
    return text::fromUntrustedBytes(bytes) == bytes;
}

void cleanAnything(std::string_view title) {
    const auto clean = TitleCleaner::clean(title);
    require(text::characterCount(clean) <= TitleCleaner::longestTitle && clean.size() <= title.size());
    require(!isText(title) || (isText(clean) && text::withoutInvisibleMarks(clean) == clean));
}

/// What is taken off stands at the end, at most once, and never leaves nothing.
void takeSignaturesOff(std::string_view title, std::string_view name) {
    const auto unsignedTitle = TitleCleaner::removingAppName(title, name);
    require(title.starts_with(unsignedTitle) && unsignedTitle.empty() == title.empty());
    const auto stripped = BrowserInspector::stripBrowserName(title, name);
    require(title.starts_with(stripped));
    require(!isText(title) || (isText(unsignedTitle) && isText(stripped)));
    const auto video = YouTube::cleanTitle(title);
    require(video.size() <= title.size() && text::trimmedOfBlanks(video) == video);
}

} // namespace
} // namespace kestrio

/// The first line is the application's name, the rest is the title: as it is, with the name at its end, and made to be
/// text.
void kestrio::fuzz(std::string_view input) {
    const auto end = input.find('\n');
    const auto name = input.substr(0, end);
    const auto title = end == std::string_view::npos ? input : input.substr(end + 1);
    cleanAnything(title);
    takeSignaturesOff(title, name);
    const auto asText = text::fromUntrustedBytes(title);
    cleanAnything(asText);
    takeSignaturesOff(asText, name);
    if (asText.empty() || name.empty())
        return;
    for (const std::string_view separator : {" - ", " — ", " – ", " | "}) {
        const auto withName = asText + std::string(separator) + std::string(name);
        require(TitleCleaner::removingAppName(withName, name).size() < withName.size());
        if (separator != " | ")
            require(BrowserInspector::stripBrowserName(withName, name).size() < withName.size());
    }
}
