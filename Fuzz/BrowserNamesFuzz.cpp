#include "Fuzz/Fuzz.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/BrowserAnswers.h"
#include "Kestrio/Platform/Linux/WindowPrivacy.h"

#include <algorithm>
#include <string>

/// Two names of windows, in two lines: whatever they are, a name is its own, and what is answered of them has its
/// fields.
void kestrio::fuzz(std::string_view input) {
    const auto end = std::min(input.find('\n'), input.size());
    const std::string first(input.substr(0, end));
    const std::string second(input.substr(std::min(end + 1, input.size())));
    privacyOfTitle(first, "org.mozilla.firefox");
    privacyOfTitle(first, "org.chromium.Chromium");
    isPrivateFrame(first, second, {second});
    matchNames(first, second, "Chromium");
    require(first.empty() || matchNames(first, first, second) == NameMatch::exact);
    const auto answer = tabText({first, second});
    require(std::count(answer.begin(), answer.end(), '\x1F') == 2);
    require(text::fromUntrustedBytes(answer) == answer);
}
