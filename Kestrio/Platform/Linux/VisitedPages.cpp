#include "Kestrio/Platform/Linux/VisitedPages.h"

namespace kestrio {
namespace {

bool isLabelOf(std::string_view label, std::string_view title) {
    return !title.empty() && label.starts_with(title) &&
           (label.size() == title.size() || label.substr(title.size()).starts_with(' '));
}

} // namespace

void VisitedPages::remember(const BrowserPage& page) {
    if (page.title.empty() || (!pages_.empty() && pages_.front() == page))
        return;
    pages_.remove_if([&](const BrowserPage& known) { return known.title == page.title; });
    pages_.push_front(page);
    if (pages_.size() > most)
        pages_.pop_back();
}

const BrowserPage* VisitedPages::find(std::string_view label) const {
    const BrowserPage* best = nullptr;
    for (const auto& page : pages_)
        if (isLabelOf(label, page.title) && (!best || page.title.size() > best->title.size()))
            best = &page;
    return best;
}

} // namespace kestrio
