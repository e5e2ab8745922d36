// The pages that a browser was seen to show, for finding the address of a tab in the background by its label. Bounded;
// the pages that were not seen for the longest time go first. A value; holds nothing of private windows.
#pragma once

#include "Kestrio/Platform/Linux/SettledPage.h"

#include <cstddef>
#include <list>
#include <string_view>

namespace kestrio {

class VisitedPages {
public:
    static constexpr std::size_t most = 256;

    /// Replaces a page of the same title: of two such tabs the one seen last is the likelier.
    void remember(const BrowserPage& page);

    /// The page with the longest title that the label is, or begins with: browsers add words about sound and memory.
    /// Null when no such page was seen.
    const BrowserPage* find(std::string_view label) const;

private:
    std::list<BrowserPage> pages_; // the one seen last first
};

} // namespace kestrio
