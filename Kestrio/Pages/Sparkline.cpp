#include "Kestrio/Pages/Sparkline.h"

#include <algorithm>

namespace kestrio {

std::vector<SparklinePoint> sparkline(std::span<const double> values, double lowest, double highest) {
    std::vector<SparklinePoint> points;
    if (values.size() < 2)
        return points;
    const auto last = static_cast<double>(values.size() - 1);
    for (const auto value : values) {
        const auto height = highest > lowest ? (value - lowest) / (highest - lowest) : 0;
        points.push_back({static_cast<double>(points.size()) / last, std::clamp(height, 0.0, 1.0)});
    }
    return points;
}

} // namespace kestrio
