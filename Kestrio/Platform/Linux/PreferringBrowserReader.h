// Several readers of browsers as one: they are asked in order, and the first that has something to say is heard.
//
// Belongs to the queue of its readers, and blocks as long as those that are asked do.
#pragma once

#include "Kestrio/Platform/BrowserReader.h"

#include <functional>
#include <string>
#include <vector>

namespace kestrio {

class PreferringBrowserReader final : public BrowserReader {
public:
    struct Source {
        BrowserReader& reader;
        /// Asked after the reader: whether its empty text is the last word on this browser, since it knows better than
        /// those after it. Where this is null, an empty text passes the question on.
        std::function<bool(const std::string& bundleIdentifier)> isAuthoritative = {};
    };

    /// The best one first. The readers must outlive this.
    explicit PreferringBrowserReader(std::vector<Source> sources);

    /// A refusal passes the question on as well, and is the answer when nobody says anything.
    BrowserAnswer frontTab(const std::string& bundleIdentifier) override;
    BrowserAnswer windows(const std::string& bundleIdentifier) override;

private:
    using Question = BrowserAnswer (BrowserReader::*)(const std::string& bundleIdentifier);
    BrowserAnswer ask(Question question, const std::string& bundleIdentifier);

    const std::vector<Source> sources_;
};

} // namespace kestrio
