// Outlines to be filled: closed contours of straight lines, curves flattened as they are added. A value.
//
// Coordinates run to the right and down. What lies inside is decided by winding, so that shapes may overlap.
#pragma once

#include <string_view>
#include <vector>

namespace kestrio {

struct DrawingPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const DrawingPoint&, const DrawingPoint&) = default;
    friend DrawingPoint operator+(DrawingPoint a, DrawingPoint b) { return {a.x + b.x, a.y + b.y}; }
    friend DrawingPoint operator-(DrawingPoint a, DrawingPoint b) { return {a.x - b.x, a.y - b.y}; }
    friend DrawingPoint operator*(DrawingPoint a, double factor) { return {a.x * factor, a.y * factor}; }
};

using Contour = std::vector<DrawingPoint>;

class Path {
public:
    const std::vector<Contour>& contours() const { return contours_; }

    /// Closed whether or not its last point is its first.
    Path& add(Contour contour);
    Path& add(const Path& path);

    /// Away from the origin by the factor, then moved.
    Path placed(double scale, DrawingPoint offset) const;

private:
    std::vector<Contour> contours_;
};

/// Follows the points from a start. Collects one open or closed line.
class Pen {
public:
    explicit Pen(DrawingPoint start) : points_{start} {}

    Pen& line(DrawingPoint to);
    /// A cubic curve over two control points.
    Pen& curve(DrawingPoint first, DrawingPoint second, DrawingPoint to);
    /// Part of a circle around the centre, from where the pen is, by so much of a full turn, clockwise when positive.
    Pen& arc(DrawingPoint centre, double turns);

    const Contour& points() const { return points_; }

private:
    Contour points_;
};

/// The path that an SVG's `d` describes with the commands M, L, C and Z in absolute coordinates. Whatever else stands
/// there ends it.
Path pathFromSVG(std::string_view d);

Path circle(DrawingPoint centre, double radius);
Path roundedRectangle(DrawingPoint topLeft, DrawingPoint bottomRight, double radius);

/// The outline of a line drawn with a round nib of that width.
Path stroked(const Contour& line, double width);

} // namespace kestrio
