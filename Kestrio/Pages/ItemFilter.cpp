#include "Kestrio/Pages/ItemFilter.h"

#include "Kestrio/Base/Text.h"

namespace kestrio {

ItemFilter::ItemFilter(std::string_view typed) : needle_(text::trimmedOfBlanks(typed)) {}

bool ItemFilter::finds(std::string_view text) const {
    return isEmpty() || text::contains(text, needle_, text::Ignoring::caseOnly);
}

bool ItemFilter::keeps(const UsageItem& item) const {
    return finds(item.title) || (item.subtitle && finds(*item.subtitle));
}

} // namespace kestrio
