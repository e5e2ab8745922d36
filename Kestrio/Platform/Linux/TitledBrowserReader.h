// What can be said of a browser of which no more is known than the titles of its windows: that the front one is
// private, or nothing. It never tells an address.
//
// Belongs to the queue of the windows that it is given, and blocks as long as those do, 0.4 s.
#pragma once

#include "Kestrio/Platform/BrowserReader.h"
#include "Kestrio/Platform/Linux/TitledWindow.h"

#include <functional>
#include <string>

namespace kestrio {

class TitledBrowserReader final : public BrowserReader {
public:
    /// Whether a window of this browser counts as private when its title does not tell. That is right as long as
    /// nothing else reads the browser; where something does, it would have told of a private window.
    using DoubtIsPrivate = std::function<bool(const std::string& bundleIdentifier)>;

    /// Without `doubtIsPrivate` doubt is always private.
    explicit TitledBrowserReader(TitledWindows windows, DoubtIsPrivate doubtIsPrivate = {});

    /// The private page's placeholder, or an empty text.
    BrowserAnswer frontTab(const std::string& bundleIdentifier) override;

    /// An empty text: titles tell of no tabs.
    BrowserAnswer windows(const std::string& bundleIdentifier) override;

private:
    const TitledWindows windows_;
    const DoubtIsPrivate doubtIsPrivate_;
};

} // namespace kestrio
