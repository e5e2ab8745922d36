// How active time divides among categories: one bar, and a row per category. Plain values.
#pragma once

#include "Kestrio/Pages/Rows.h"

namespace kestrio {

struct CategoryStackBar {
    static constexpr double leastPartWidth = 2;
    static constexpr double emptyTrackOpacity = 0.08;

    struct Part {
        CategoryPill category;
        double share = 0; // of the whole
        friend bool operator==(const Part&, const Part&) = default;
    };
    std::vector<Part> parts; // none without any time: the bar is then an empty track
    std::string words;       // the bar for somebody who does not see it

    /// How wide each part is in a bar of this width, in points. Together they may be wider, since none is thinner than
    /// `leastPartWidth`.
    std::vector<double> widths(double width) const;

    friend bool operator==(const CategoryStackBar&, const CategoryStackBar&) = default;
};

CategoryStackBar categoryStackBar(std::span<const CategoryUsage> categories, Seconds total);

struct CategoryBreakdown {
    struct Row {
        CategoryPill category;
        std::string share;
        std::string duration;
        friend bool operator==(const Row&, const Row&) = default;
    };
    CategoryStackBar bar;
    std::vector<Row> rows;
    std::string summary; // "{duration} active"
    friend bool operator==(const CategoryBreakdown&, const CategoryBreakdown&) = default;
};

CategoryBreakdown categoryBreakdown(std::span<const CategoryUsage> categories, Seconds total);

} // namespace kestrio
