#include "Kestrio/Platform/Linux/TitledBrowserReader.h"

#include "Kestrio/Platform/Linux/BrowserAnswers.h"
#include "Kestrio/Platform/Linux/WindowPrivacy.h"

#include <utility>

namespace kestrio {

TitledBrowserReader::TitledBrowserReader(TitledWindows windows, DoubtIsPrivate doubtIsPrivate)
    : windows_(std::move(windows)), doubtIsPrivate_(std::move(doubtIsPrivate)) {}

BrowserAnswer TitledBrowserReader::frontTab(const std::string& bundleIdentifier) {
    const auto windows = windows_(bundleIdentifier);
    if (!windows || windows->empty() || windows->front().title.empty())
        return std::string();
    const auto privacy = privacyOfTitle(windows->front().title, bundleIdentifier);
    const bool isPrivate =
        privacy == WindowPrivacy::isPrivate ||
        (privacy == WindowPrivacy::unknown && (!doubtIsPrivate_ || doubtIsPrivate_(bundleIdentifier)));
    return isPrivate ? privateTabText() : std::string();
}

BrowserAnswer TitledBrowserReader::windows(const std::string&) {
    return std::string();
}

} // namespace kestrio
