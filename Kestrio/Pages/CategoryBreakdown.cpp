#include "Kestrio/Pages/CategoryBreakdown.h"

#include "Kestrio/Base/Formatters.h"

namespace kestrio {

std::vector<double> CategoryStackBar::widths(double width) const {
    std::vector<double> all;
    for (const auto& part : parts)
        all.push_back(std::max(leastPartWidth, part.share * width));
    return all;
}

CategoryStackBar categoryStackBar(std::span<const CategoryUsage> categories, Seconds total) {
    CategoryStackBar bar;
    if (total <= Seconds(0))
        return bar;
    for (const auto& usage : categories)
        bar.parts.push_back({categoryPill(usage.category), usage.duration / total});
    return bar;
}

CategoryBreakdown categoryBreakdown(std::span<const CategoryUsage> categories, Seconds total) {
    CategoryBreakdown breakdown{
        .bar = categoryStackBar(categories, total), .rows = {}, .summary = Fmt::duration(total) + " active"};
    for (const auto& usage : categories)
        breakdown.rows.push_back({categoryPill(usage.category), Fmt::percent(usage.duration.count(), total.count()),
                                  Fmt::duration(usage.duration)});
    return breakdown;
}

} // namespace kestrio
