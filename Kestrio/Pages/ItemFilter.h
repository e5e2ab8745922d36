// What a person typed to find rows of a list. A value; any thread.
#pragma once

#include "Kestrio/Reports/Report.h"

namespace kestrio {

class ItemFilter {
public:
    static constexpr auto symbol = "magnifyingglass";
    static constexpr auto prompt = "Filter";
    static constexpr auto clearTitle = "Clear";
    static constexpr auto clearSymbol = "xmark.circle.fill";

    ItemFilter() = default;
    /// Blanks around the text do not count; of nothing but blanks is no filter. The locale, as in "tr_TR", says which
    /// small letters belong to which capitals.
    explicit ItemFilter(std::string_view typed, std::string_view locale = {});

    bool isEmpty() const { return needle_.empty(); }

    /// Whether the text has what was typed, without regard to case. Everything passes when there is no filter.
    bool finds(std::string_view text) const;

    /// The same in the item's title or second line.
    bool keeps(const UsageItem& item) const;

private:
    std::string needle_;
    bool isTurkic_ = false;
};

} // namespace kestrio
