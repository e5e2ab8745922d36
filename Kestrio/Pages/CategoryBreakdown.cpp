#include "Kestrio/Pages/CategoryBreakdown.h"

#include "Kestrio/Base/Formatters.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kestrio {

std::vector<double> CategoryStackBar::widths(double width) const {
    std::vector<double> all;
    for (const auto& part : parts)
        all.push_back(std::max(leastPartWidth, part.share * width));
    return all;
}

CategoryStackBar categoryStackBar(std::span<const CategoryUsage> categories, Seconds total) {
    CategoryStackBar bar;
    bar.words = "No activity";
    if (total <= Seconds(0))
        return bar;
    std::vector<std::string> shares;
    for (const auto& usage : categories) {
        bar.parts.push_back({categoryPill(usage.category), usage.duration / total});
        shares.push_back(
            fmt::format("{} {}", label(usage.category), Fmt::percent(usage.duration.count(), total.count())));
    }
    if (!shares.empty())
        bar.words = fmt::format("{}", fmt::join(shares, ", "));
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
