#include "Kestrio/Drawing/Symbols.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kestrio::symbols {
namespace {

Path bar(double left, double top, double right, double bottom) {
    return roundedRectangle({left, top}, {right, bottom}, std::min(right - left, bottom - top) / 2);
}

/// The contour the other way round, which cuts it out of what it lies in.
Contour reversed(const Contour& contour) {
    return {contour.rbegin(), contour.rend()};
}

void cutOut(Path& from, const Path& hole) {
    for (const auto& contour : hole.contours())
        from.add(reversed(contour));
}

/// Around circles of that radius, which are given clockwise.
Path roundedPolygon(const std::vector<DrawingPoint>& centres, double radius) {
    const auto outward = [&](std::size_t from) {
        const auto along = centres[(from + 1) % centres.size()] - centres[from];
        return std::atan2(-along.x, along.y) / (2 * std::numbers::pi);
    };
    Contour contour;
    for (std::size_t i = 0; i < centres.size(); ++i) {
        const double before = outward((i + centres.size() - 1) % centres.size());
        const double turns = outward(i) - before;
        const double angle = 2 * std::numbers::pi * before;
        Pen corner(centres[i] + DrawingPoint{std::cos(angle), std::sin(angle)} * radius);
        corner.arc(centres[i], turns - std::floor(turns));
        contour.insert(contour.end(), corner.points().begin(), corner.points().end());
    }
    return Path().add(contour);
}

} // namespace

Path mark() {
    return pathFromSVG(markPath);
}

Path pause() {
    return bar(6, 4, 10, 20).add(bar(14, 4, 18, 20));
}

Path chip() {
    auto path = roundedRectangle({5, 5}, {19, 19}, 3);
    cutOut(path, roundedRectangle({9, 9}, {15, 15}, 1));
    for (const double at : {8.0, 12.0, 16.0}) {
        path.add(bar(at - 0.9, 1.5, at + 0.9, 6)).add(bar(at - 0.9, 18, at + 0.9, 22.5));
        path.add(bar(1.5, at - 0.9, 6, at + 0.9)).add(bar(18, at - 0.9, 22.5, at + 0.9));
    }
    return path;
}

Path warning() {
    auto path = roundedPolygon({{12, 5.2}, {20.4, 19.2}, {3.6, 19.2}}, 2.6);
    cutOut(path, bar(10.8, 8, 13.2, 14.6));
    cutOut(path, circle({12, 17.8}, 1.5));
    return path;
}

} // namespace kestrio::symbols
