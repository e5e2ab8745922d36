#include "Kestrio/Drawing/Canvas.h"

#include <algorithm>
#include <cmath>

namespace kestrio {
namespace {

/// Lines looked at in each row of pixels. Along them coverage is exact.
constexpr int linesPerRow = 16;

struct Edge {
    DrawingPoint from;
    DrawingPoint to;
};

struct Crossing {
    double x;
    int winding; // down or up
};

/// The path's edges by the rows of pixels that they reach into.
std::vector<std::vector<Edge>> edgesByRow(const Path& path, int rows) {
    std::vector<std::vector<Edge>> result(static_cast<std::size_t>(rows));
    for (const auto& contour : path.contours()) {
        auto from = contour.back();
        for (const auto& to : contour) {
            const int first = static_cast<int>(std::max(0.0, std::floor(std::min(from.y, to.y))));
            const int last = static_cast<int>(std::min(rows - 1.0, std::floor(std::max(from.y, to.y))));
            for (int row = first; row <= last; ++row)
                result[static_cast<std::size_t>(row)].push_back({from, to});
            from = to;
        }
    }
    return result;
}

/// Where the edges cross the horizontal line, from left to right.
void findCrossings(const std::vector<Edge>& edges, double y, std::vector<Crossing>& found) {
    found.clear();
    for (const auto& [from, to] : edges) {
        const bool isDown = from.y <= y && to.y > y;
        const bool isUp = to.y <= y && from.y > y;
        if (isDown || isUp)
            found.push_back({from.x + (y - from.y) / (to.y - from.y) * (to.x - from.x), isDown ? 1 : -1});
    }
    std::ranges::sort(found, {}, &Crossing::x);
}

/// Adds a weight to the pixels of a row between two places, in part to those that lie there in part.
void addSpan(float* row, int side, double from, double to, float weight) {
    from = std::clamp(from, 0.0, static_cast<double>(side));
    to = std::clamp(to, 0.0, static_cast<double>(side));
    const int first = static_cast<int>(from);
    const int last = static_cast<int>(to);
    if (first == last) {
        if (first < side)
            row[first] += weight * static_cast<float>(to - from);
        return;
    }
    row[first] += weight * static_cast<float>(first + 1 - from);
    for (int x = first + 1; x < last; ++x)
        row[x] += weight;
    if (last < side)
        row[last] += weight * static_cast<float>(to - last);
}

DrawingColour mixed(DrawingColour from, DrawingColour to, double share) {
    const auto mix = [share](double a, double b) { return a + (b - a) * share; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue), mix(from.alpha, to.alpha)};
}

void put(DrawingColour& below, DrawingColour colour, double coverage) {
    const double alpha = colour.alpha * coverage;
    const auto over = [alpha](double value, double under) { return value * alpha + under * (1 - alpha); };
    below = {over(colour.red, below.red), over(colour.green, below.green), over(colour.blue, below.blue),
             alpha + below.alpha * (1 - alpha)};
}

std::uint32_t byte(double part) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
}

} // namespace

Canvas::Canvas(int side)
    : side_(side),
      pixels_(static_cast<std::size_t>(side) * static_cast<std::size_t>(side), DrawingColour{0, 0, 0, 0}) {}

void Canvas::fill(const Path& path, DrawingColour colour) {
    fill(path, colour, colour);
}

void Canvas::fill(const Path& path, DrawingColour top, DrawingColour bottom) {
    const auto covered = coverage(path);
    const auto width = static_cast<std::size_t>(side_);
    for (std::size_t y = 0; y < width; ++y) {
        const auto colour = mixed(top, bottom, (static_cast<double>(y) + 0.5) / side_);
        for (std::size_t x = 0; x < width; ++x)
            if (const auto share = covered[y * width + x]; share > 0)
                put(pixels_[y * width + x], colour, static_cast<double>(share));
    }
}

void Canvas::erase(const Path& path) {
    const auto covered = coverage(path);
    for (std::size_t i = 0; i < covered.size(); ++i) {
        const double left = 1 - std::min(1.0, static_cast<double>(covered[i]));
        auto& pixel = pixels_[i];
        pixel = {pixel.red * left, pixel.green * left, pixel.blue * left, pixel.alpha * left};
    }
}

std::vector<float> Canvas::coverage(const Path& path) const {
    std::vector<float> result(pixels_.size());
    const auto edges = edgesByRow(path, side_);
    std::vector<Crossing> crossings;
    for (int y = 0; y < side_; ++y) {
        float* row = result.data() + static_cast<std::ptrdiff_t>(y) * side_;
        for (int line = 0; line < linesPerRow; ++line) {
            findCrossings(edges[static_cast<std::size_t>(y)], y + (line + 0.5) / linesPerRow, crossings);
            int winding = 0;
            for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
                winding += crossings[i].winding;
                if (winding != 0)
                    addSpan(row, side_, crossings[i].x, crossings[i + 1].x, 1.0F / linesPerRow);
            }
        }
    }
    return result;
}

std::vector<std::uint32_t> Canvas::pixels() const {
    std::vector<std::uint32_t> result;
    result.reserve(pixels_.size());
    for (const auto& pixel : pixels_) {
        const double whole = pixel.alpha > 0 ? 1 / pixel.alpha : 0;
        result.push_back(byte(pixel.alpha) << 24 | byte(pixel.red * whole) << 16 | byte(pixel.green * whole) << 8 |
                         byte(pixel.blue * whole));
    }
    return result;
}

} // namespace kestrio
