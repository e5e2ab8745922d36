#include "Kestrio/Platform/Linux/PreferringBrowserReader.h"

#include <utility>

namespace kestrio {

PreferringBrowserReader::PreferringBrowserReader(std::vector<Source> sources) : sources_(std::move(sources)) {}

BrowserAnswer PreferringBrowserReader::frontTab(const std::string& bundleIdentifier) {
    return ask(&BrowserReader::frontTab, bundleIdentifier);
}

BrowserAnswer PreferringBrowserReader::windows(const std::string& bundleIdentifier) {
    return ask(&BrowserReader::windows, bundleIdentifier);
}

BrowserAnswer PreferringBrowserReader::ask(Question question, const std::string& bundleIdentifier) {
    BrowserAnswer silence;
    for (const auto& source : sources_) {
        auto answer = (source.reader.*question)(bundleIdentifier);
        if (std::holds_alternative<BrowserRefusal>(answer))
            silence = answer;
        else if (!std::get<std::string>(answer).empty())
            return answer;
        if (source.isAuthoritative && source.isAuthoritative(bundleIdentifier))
            return answer;
    }
    return silence;
}

} // namespace kestrio
