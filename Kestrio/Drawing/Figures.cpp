#include "Kestrio/Drawing/Figures.h"

#include <algorithm>
#include <cmath>

namespace kestrio {
namespace {

/// Where the middle of the nib may go within a figure's box.
struct Frame {
    Frame(DrawingPoint topLeft, double width, const FigureSize& size)
        : left(topLeft.x + size.weight / 2),
          right(topLeft.x + width - size.weight / 2),
          top(topLeft.y + size.weight / 2),
          bottom(topLeft.y + size.height - size.weight / 2),
          weight(size.weight) {}

    double middle() const { return (left + right) / 2; }
    double height() const { return bottom - top; }
    /// A place between the left (0) and the right (1), the top (0) and the bottom (1).
    DrawingPoint at(double x, double y) const { return {left + x * (right - left), top + y * height()}; }
    /// Of the bowls: half the width, but flatter where the figure is broad.
    double radius() const { return std::min((right - left) / 2, height() / 4); }
    Path stroke(const Pen& pen) const { return stroked(pen.points(), weight); }

    double left;
    double right;
    double top;
    double bottom;
    double weight;
};

/// A closed line around a box with round corners.
Pen ring(double left, double top, double right, double bottom, double radius) {
    radius = std::min({radius, (right - left) / 2, (bottom - top) / 2});
    Pen pen({left, top + radius});
    pen.arc({left + radius, top + radius}, 0.25).line({right - radius, top});
    pen.arc({right - radius, top + radius}, 0.25).line({right, bottom - radius});
    pen.arc({right - radius, bottom - radius}, 0.25).line({left + radius, bottom});
    pen.arc({left + radius, bottom - radius}, 0.25).line({left, top + radius});
    return pen;
}

Path zero(const Frame& f) {
    return f.stroke(ring(f.left, f.top, f.right, f.bottom, (f.right - f.left) / 2));
}

Path one(const Frame& f) {
    return f.stroke(Pen(f.at(0, 0.2)).line({f.right, f.top}).line({f.right, f.bottom}));
}

Path two(const Frame& f) {
    const double r = (f.right - f.left) / 2;
    Pen pen({f.left, f.top + r});
    pen.arc({f.middle(), f.top + r}, 0.5);
    pen.curve({f.right, f.top + r + 0.3 * f.height()}, {f.left, f.bottom - 0.3 * f.height()}, {f.left, f.bottom});
    pen.line({f.right, f.bottom});
    return f.stroke(pen);
}

/// The lower bowl of three and five, from the middle of its upper side around to the left.
void bowl(Pen& pen, const Frame& f, double top) {
    const double r = std::min((f.right - f.left) / 2, (f.bottom - top) / 2);
    pen.line({f.right - r, top}).arc({f.right - r, top + r}, 0.25).line({f.right, f.bottom - r});
    pen.arc({f.right - r, f.bottom - r}, 0.25).line({f.left + r, f.bottom}).arc({f.left + r, f.bottom - r}, 0.2);
}

Path three(const Frame& f) {
    const double waist = f.top + 0.47 * f.height();
    const double r = std::min((f.right - f.left) / 2, (waist - f.top) / 2);
    Pen upper({f.left + r - r * 0.95, f.top + r - r * 0.31});
    upper.arc({f.left + r, f.top + r}, 0.2).line({f.right - r, f.top}).arc({f.right - r, f.top + r}, 0.25);
    upper.line({f.right, waist - r}).arc({f.right - r, waist - r}, 0.25).line({f.middle(), waist});
    Pen lower({f.middle(), waist});
    bowl(lower, f, waist);
    return f.stroke(upper).add(f.stroke(lower));
}

Path four(const Frame& f) {
    const double stem = f.left + 0.78 * (f.right - f.left);
    const double bar = f.top + 0.7 * f.height();
    return f.stroke(Pen({f.right, bar}).line({f.left, bar}).line({stem, f.top}).line({stem, f.bottom}));
}

Path five(const Frame& f) {
    const double waist = f.top + 0.42 * f.height();
    Pen pen({f.right, f.top});
    pen.line({f.left, f.top}).line({f.left, waist});
    bowl(pen, f, waist);
    return f.stroke(pen);
}

Path six(const Frame& f) {
    const double waist = f.top + 0.42 * f.height();
    const double r = (f.right - f.left) / 2;
    Pen pen({f.right - 0.2 * r, f.top});
    pen.curve({f.left + 0.4 * r, f.top}, {f.left, f.top + 0.25 * f.height()}, {f.left, f.bottom - r});
    return f.stroke(pen).add(f.stroke(ring(f.left, waist, f.right, f.bottom, r)));
}

Path seven(const Frame& f) {
    return f.stroke(Pen({f.left, f.top}).line({f.right, f.top}).line(f.at(0.3, 1)));
}

Path eight(const Frame& f) {
    const double waist = f.top + 0.46 * f.height();
    const double r = (f.right - f.left) / 2;
    const double inset = 0.06 * (f.right - f.left);
    return f.stroke(ring(f.left + inset, f.top, f.right - inset, waist, r))
        .add(f.stroke(ring(f.left, waist, f.right, f.bottom, r)));
}

Path nine(const Frame& f) {
    const double waist = f.bottom - 0.42 * f.height();
    const double r = (f.right - f.left) / 2;
    Pen pen({f.left + 0.2 * r, f.bottom});
    pen.curve({f.right - 0.4 * r, f.bottom}, {f.right, f.bottom - 0.25 * f.height()}, {f.right, f.top + r});
    return f.stroke(pen).add(f.stroke(ring(f.left, f.top, f.right, waist, r)));
}

/// An arch from a stem on the left to one on the right.
Pen arch(double left, double right, double top, double bottom) {
    const double r = std::min((right - left) / 2, bottom - top);
    Pen pen({left, top + r});
    pen.arc({left + r, top + r}, 0.25).line({right - r, top}).arc({right - r, top + r}, 0.25).line({right, bottom});
    return pen;
}

Path letterH(const Frame& f) {
    const double shoulder = f.top + 0.36 * f.height();
    return f.stroke(Pen({f.left, f.top}).line({f.left, f.bottom}))
        .add(f.stroke(arch(f.left, f.right, shoulder, f.bottom)));
}

Path letterM(const Frame& f) {
    const double shoulder = f.top + 0.36 * f.height();
    return f.stroke(Pen({f.left, shoulder}).line({f.left, f.bottom}))
        .add(f.stroke(arch(f.left, f.middle(), shoulder, f.bottom)))
        .add(f.stroke(arch(f.middle(), f.right, shoulder, f.bottom)));
}

Path percent(const Frame& f) {
    const double r = 0.2 * std::min(f.right - f.left, f.height());
    return f.stroke(Pen({f.right, f.top}).line({f.left, f.bottom}))
        .add(f.stroke(ring(f.left, f.top, f.left + 2 * r, f.top + 2 * r, r)))
        .add(f.stroke(ring(f.right - 2 * r, f.bottom - 2 * r, f.right, f.bottom, r)));
}

struct Figure {
    char character;
    double width; // in widths of a digit
    Path (*draw)(const Frame&);
};

constexpr Figure allFigures[] = {
    {'0', 1, zero},    {'1', 0.6, one},     {'2', 1, two},       {'3', 1, three}, {'4', 1, four},
    {'5', 1, five},    {'6', 1, six},       {'7', 1, seven},     {'8', 1, eight}, {'9', 1, nine},
    {'h', 1, letterH}, {'m', 1.6, letterM}, {'%', 1.4, percent},
};

const Figure* figureOf(char character) {
    const auto* found = std::ranges::find(allFigures, character, &Figure::character);
    return found == std::end(allFigures) ? nullptr : found;
}

/// Whole pixels, so that what follows stands as crisp as what came before.
double widthOf(const Figure& figure, const FigureSize& size) {
    return std::round(figure.width * size.width);
}

} // namespace

double figuresWidth(std::string_view text, const FigureSize& size) {
    double width = 0;
    for (const char character : text)
        if (const auto* figure = figureOf(character))
            width += widthOf(*figure, size) + (width > 0 ? size.gap : 0);
    return width;
}

Path figures(std::string_view text, DrawingPoint topLeft, const FigureSize& size) {
    Path path;
    for (const char character : text) {
        const auto* figure = figureOf(character);
        if (!figure)
            continue;
        const double width = widthOf(*figure, size);
        path.add(figure->draw(Frame(topLeft, width, size)));
        topLeft.x += width + size.gap;
    }
    return path;
}

} // namespace kestrio
