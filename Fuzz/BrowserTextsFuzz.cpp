#include "Fuzz/Fuzz.h"
#include "Kestrio/Activity/BrowserTexts.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <cmath>

namespace kestrio {
namespace {

bool isText(std::string_view bytes) {
    return text::fromUntrustedBytes(bytes) == bytes;
}

bool isFinite(const Rectangle& bounds) {
    return std::isfinite(bounds.x) && std::isfinite(bounds.y) && !std::isnan(bounds.width) &&
           !std::isnan(bounds.height);
}

/// What a text says is in the text, no more; a private window is private throughout.
void readWindows(std::string_view input) {
    const auto windows = BrowserTexts::windows(input);
    std::size_t characters = 0;
    for (const auto& window : windows) {
        require(isFinite(window.bounds) && !window.tabs.empty());
        require(window.activeTab.isPrivate == window.isPrivate);
        characters += window.activeTab.url.size() + window.activeTab.title.size();
        for (const auto& tab : window.tabs) {
            require(tab.isPrivate == window.isPrivate);
            require(!isText(input) || (isText(tab.url) && isText(tab.title)));
            characters += tab.url.size() + tab.title.size();
        }
    }
    require(characters <= input.size());
    const auto separators =
        static_cast<std::size_t>(std::count(input.begin(), input.end(), BrowserTexts::betweenWindows));
    require(windows.size() <= separators + 1);
}

void readFrontTab(std::string_view input) {
    const auto tab = BrowserTexts::frontTab(input);
    if (!tab)
        return;
    require(!tab->url.empty() && tab->url.size() + tab->title.size() < input.size());
    require(!isText(input) || (isText(tab->url) && isText(tab->title)));
}

/// Seeds and mutations are easier to read, and to hit upon, with printing characters for the separators.
std::string withSeparators(std::string_view readable) {
    std::string text(readable);
    std::replace(text.begin(), text.end(), '|', BrowserTexts::separator);
    std::replace(text.begin(), text.end(), '\n', BrowserTexts::betweenWindows);
    std::replace(text.begin(), text.end(), ';', BrowserTexts::betweenTabs);
    return text;
}

} // namespace
} // namespace kestrio

/// Whatever a browser answers is read as far as it makes sense.
void kestrio::fuzz(std::string_view input) {
    for (const auto& text : {std::string(input), withSeparators(input)}) {
        readWindows(text);
        readFrontTab(text);
    }
}
