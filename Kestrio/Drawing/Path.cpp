#include "Kestrio/Drawing/Path.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>

namespace kestrio {
namespace {

/// Straight pieces per curve: their corners are far below a pixel at the sizes of icons.
constexpr int curvePieces = 16;

DrawingPoint onCircle(DrawingPoint centre, double radius, double turns) {
    const double angle = 2 * std::numbers::pi * turns;
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
}

/// The same per turn of a circle.
int turnPieces(double radius) {
    return 12 + static_cast<int>(4 * radius);
}

/// Reads the numbers and letters of a path's description.
class Words {
public:
    explicit Words(std::string_view text) : rest_(text) {}

    std::optional<char> command() {
        skip();
        if (rest_.empty() || !((rest_[0] >= 'A' && rest_[0] <= 'Z') || (rest_[0] >= 'a' && rest_[0] <= 'z')))
            return std::nullopt;
        const char found = rest_[0];
        rest_.remove_prefix(1);
        return found;
    }
    std::optional<double> number() {
        skip();
        double value = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        if (error != std::errc())
            return std::nullopt;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return value;
    }
    std::optional<DrawingPoint> point() {
        const auto x = number();
        const auto y = x ? number() : std::nullopt;
        return y ? std::optional(DrawingPoint{*x, *y}) : std::nullopt;
    }

private:
    void skip() {
        while (!rest_.empty() && (rest_[0] == ' ' || rest_[0] == ',' || rest_[0] == '\n'))
            rest_.remove_prefix(1);
    }

    std::string_view rest_;
};

/// Fills what gapes between two pieces of a line on the outside of a bend: where the bend is slight, as all along a
/// curve, a triangle does it.
void addJoint(Path& path, DrawingPoint at, DrawingPoint before, DrawingPoint after) {
    const double turn = before.x * after.y - before.y * after.x;
    const double ahead = before.x * after.x + before.y * after.y;
    constexpr double slight = 0.9; // the cosine of some 25 degrees
    if (ahead < slight * std::hypot(before.x, before.y) * std::hypot(after.x, after.y))
        path.add(circle(at, std::hypot(after.x, after.y)));
    else if (turn > 0)
        path.add({at, at - before, at - after});
    else if (turn < 0)
        path.add({at, at + after, at + before});
}

} // namespace

Path& Path::add(Contour contour) {
    if (contour.size() > 2)
        contours_.push_back(std::move(contour));
    return *this;
}

Path& Path::add(const Path& path) {
    contours_.insert(contours_.end(), path.contours_.begin(), path.contours_.end());
    return *this;
}

Path Path::placed(double scale, DrawingPoint offset) const {
    Path result = *this;
    for (auto& contour : result.contours_)
        for (auto& point : contour)
            point = point * scale + offset;
    return result;
}

Pen& Pen::line(DrawingPoint to) {
    points_.push_back(to);
    return *this;
}

Pen& Pen::curve(DrawingPoint first, DrawingPoint second, DrawingPoint to) {
    const auto from = points_.back();
    for (int piece = 1; piece <= curvePieces; ++piece) {
        const double t = static_cast<double>(piece) / curvePieces;
        const double s = 1 - t;
        points_.push_back(from * (s * s * s) + first * (3 * s * s * t) + second * (3 * s * t * t) + to * (t * t * t));
    }
    return *this;
}

Pen& Pen::arc(DrawingPoint centre, double turns) {
    const auto from = points_.back() - centre;
    const double radius = std::hypot(from.x, from.y);
    const double start = std::atan2(from.y, from.x) / (2 * std::numbers::pi);
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(turns) * turnPieces(radius))));
    for (int piece = 1; piece <= pieces; ++piece)
        points_.push_back(onCircle(centre, radius, start + turns * piece / pieces));
    return *this;
}

Path pathFromSVG(std::string_view d) {
    Path path;
    std::optional<Pen> pen;
    const auto close = [&] {
        if (pen)
            path.add(pen->points());
        pen.reset();
    };
    Words words(d);
    while (const auto command = words.command()) {
        const auto first = *command == 'Z' ? std::nullopt : words.point();
        if (*command == 'Z') {
            close();
        } else if (*command == 'M' && first) {
            close();
            pen.emplace(*first);
        } else if (*command == 'L' && first && pen) {
            pen->line(*first);
        } else if (*command == 'C' && first && pen) {
            const auto second = words.point();
            const auto to = second ? words.point() : std::nullopt;
            if (!to)
                break;
            pen->curve(*first, *second, *to);
        } else {
            break;
        }
    }
    close();
    return path;
}

Path circle(DrawingPoint centre, double radius) {
    return Path().add(Pen({centre.x + radius, centre.y}).arc(centre, 1).points());
}

Path roundedRectangle(DrawingPoint topLeft, DrawingPoint bottomRight, double radius) {
    const auto [left, top] = topLeft;
    const auto [right, bottom] = bottomRight;
    Pen pen({left, top + radius});
    pen.arc({left + radius, top + radius}, 0.25).line({right - radius, top});
    pen.arc({right - radius, top + radius}, 0.25).line({right, bottom - radius});
    pen.arc({right - radius, bottom - radius}, 0.25).line({left + radius, bottom});
    pen.arc({left + radius, bottom - radius}, 0.25);
    return Path().add(pen.points());
}

Path stroked(const Contour& line, double width) {
    Path path;
    std::optional<DrawingPoint> before; // half the nib's width, across the piece before
    for (std::size_t i = 1; i < line.size(); ++i) {
        const auto along = line[i] - line[i - 1];
        const double length = std::hypot(along.x, along.y);
        if (length == 0)
            continue;
        const DrawingPoint across{-along.y * width / 2 / length, along.x * width / 2 / length};
        // In the direction in which circles turn, so that they never cancel out.
        path.add({line[i - 1] - across, line[i] - across, line[i] + across, line[i - 1] + across});
        if (before)
            addJoint(path, line[i - 1], *before, across);
        before = across;
    }
    if (!line.empty())
        path.add(circle(line.front(), width / 2)).add(circle(line.back(), width / 2));
    return path;
}

} // namespace kestrio
