// Browsers in memory, for tests: each answers what the test last put into its fields. Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/BrowserReader.h"

#include <map>
#include <vector>

namespace kestrio {

class ScriptedBrowserReader final : public BrowserReader {
public:
    /// By bundle identifier; a browser that is not here does not run, and answers an empty text.
    std::map<std::string, BrowserAnswer> frontTabs;
    std::map<std::string, BrowserAnswer> allWindows;

    /// Every question so far, as "front ID" or "windows ID".
    std::vector<std::string> asked;

    BrowserAnswer frontTab(const std::string& bundleIdentifier) override {
        return answer("front ", frontTabs, bundleIdentifier);
    }
    BrowserAnswer windows(const std::string& bundleIdentifier) override {
        return answer("windows ", allWindows, bundleIdentifier);
    }

private:
    BrowserAnswer answer(const std::string& question, const std::map<std::string, BrowserAnswer>& answers,
                         const std::string& bundleIdentifier) {
        asked.push_back(question + bundleIdentifier);
        const auto found = answers.find(bundleIdentifier);
        return found == answers.end() ? BrowserAnswer() : found->second;
    }
};

} // namespace kestrio
