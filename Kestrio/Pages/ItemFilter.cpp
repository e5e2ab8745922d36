#include "Kestrio/Pages/ItemFilter.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <utility>

namespace kestrio {
namespace {

bool isTurkic(std::string_view locale) {
    const auto language = locale.substr(0, locale.find_first_of("_-.@"));
    return language == "tr" || language == "az";
}

/// In Turkic languages i and ı are letters of their own, with the capitals İ and I. With these four made small, the
/// rules of all other languages do for the rest.
std::string withTurkicSmallLetters(std::string_view text) {
    constexpr std::pair<std::string_view, std::string_view> letters[] = {
        {"\u0130", "i"}, {"I\u0307", "i"}, {"I", "\u0131"}};
    std::string small;
    while (!text.empty()) {
        const auto* const letter =
            std::ranges::find_if(letters, [&](const auto& one) { return text.starts_with(one.first); });
        const bool isOne = letter != std::end(letters);
        small += isOne ? letter->second : text.substr(0, 1);
        text.remove_prefix(isOne ? letter->first.size() : 1);
    }
    return small;
}

bool contains(std::string_view text, std::string_view needle) {
    return text::contains(text, needle, text::Ignoring::caseOnly);
}

} // namespace

ItemFilter::ItemFilter(std::string_view typed, std::string_view locale)
    : needle_(text::trimmedOfBlanks(typed)), isTurkic_(isTurkic(locale)) {}

bool ItemFilter::finds(std::string_view text) const {
    // Titles in other languages stand beside those in the person's own: "INSTAGRAM" is found by "instagram" too.
    return isEmpty() || contains(text, needle_) ||
           (isTurkic_ && contains(withTurkicSmallLetters(text), withTurkicSmallLetters(needle_)));
}

bool ItemFilter::keeps(const UsageItem& item) const {
    return finds(item.title) || (item.subtitle && finds(*item.subtitle));
}

} // namespace kestrio
