#include "Kestrio/Drawing/TrayIcons.h"

#include "Kestrio/Drawing/Canvas.h"
#include "Kestrio/Drawing/Figures.h"
#include "Kestrio/Drawing/Symbols.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace kestrio {
namespace {

constexpr auto tileTop = colour(0x435062);
constexpr auto tileBottom = colour(0x28313d);
constexpr auto ink = colour(0xfaf7f2);
constexpr auto dimInk = colour(0xf5f1ea, 0.84);
constexpr auto green = colour(0x4cd471);
constexpr auto red = colour(0xff6b61);
constexpr auto amber = colour(0xffb340);

/// What is measured in whole pixels so that small icons are crisp.
struct Grid {
    explicit Grid(int pixels)
        : side(pixels),
          unit(pixels / 22.0),
          margin(std::floor(1.9 * unit)),
          gap(std::round(2 * unit)),
          line(std::floor((pixels - 2 * margin - gap) / 2)) {}

    FigureSize figures() const {
        const double width = std::floor(line * 0.68);
        return {line, width, std::max(1.3, line * 0.155), std::max(1.0, std::round(line * 0.14))};
    }
    double secondLine() const { return side - margin - line; }

    int side;
    double unit;
    double margin; // between the tile's edge and what stands on it
    double gap;    // between the two lines
    double line;   // how high each of them is
};

Canvas tile(int side) {
    Canvas canvas(side);
    canvas.fill(roundedRectangle({0, 0}, {static_cast<double>(side), static_cast<double>(side)}, 0.22 * side), tileTop,
                tileBottom);
    return canvas;
}

/// A symbol as large as the box, around its middle.
void put(Canvas& canvas, const Path& symbol, DrawingPoint topLeft, double size, DrawingColour inColour) {
    canvas.fill(symbol.placed(size / symbols::box, topLeft), inColour);
}

Path symbolOf(const MenuBarLabel& label) {
    return label.symbol == "pause.circle" ? symbols::pause() : symbols::mark();
}

void putLight(Canvas& canvas, DrawingPoint middle, double size, bool isGreen) {
    canvas.fill(circle(middle, size / 2), isGreen ? green : red);
}

/// Two bars, as many whole pixels wide as they are apart.
void putPauseMark(Canvas& canvas, DrawingPoint topLeft, double size, DrawingColour inColour) {
    const double bar = std::max(1.0, std::floor(size / 3));
    const double left = topLeft.x + std::floor((size - 3 * bar) / 2);
    for (const double x : {left, left + 2 * bar})
        canvas.fill(roundedRectangle({x, topLeft.y}, {x + bar, topLeft.y + size}, 0.3 * bar), inColour);
}

/// "2h" over "05", or of less than an hour "12" over "m".
struct TimeLines {
    explicit TimeLines(const std::string& time) {
        const auto blank = time.find(' ');
        if (blank == std::string::npos) {
            top = time.substr(0, time.size() - 1);
            bottom = "m";
        } else {
            top = time.substr(0, blank);
            bottom = time.substr(blank + 1, time.size() - blank - 2);
            bottom.insert(0, 2 - std::min<std::size_t>(2, bottom.size()), '0');
        }
    }
    std::string top;
    std::string bottom;
};

void putTime(Canvas& canvas, const MenuBarLabel& label, const Grid& grid) {
    const TimeLines lines(*label.time);
    const auto size = grid.figures();
    const double left = grid.margin;
    canvas.fill(figures(lines.top, {left, grid.margin}, size), ink);
    canvas.fill(figures(lines.bottom, {left, grid.secondLine()}, size), dimInk);
    const double free = grid.side - grid.margin - left - figuresWidth(lines.bottom, size) - size.gap;
    const double spot = std::min(free, std::round(6 * grid.unit));
    const DrawingPoint corner{grid.side - grid.margin - spot, grid.side - grid.margin - spot};
    const bool isPaused = label.symbol == "pause.circle";
    if (isPaused)
        putPauseMark(canvas, corner, spot, label.light ? red : ink);
    else if (label.light)
        putLight(canvas, corner + DrawingPoint{spot / 2, spot / 2}, spot, *label.light);
}

void putSymbol(Canvas& canvas, const MenuBarLabel& label, const Grid& grid) {
    const double size = grid.side - 2 * grid.margin;
    put(canvas, symbolOf(label), {grid.margin, grid.margin}, size, ink);
    if (!label.light)
        return;
    const double light = std::round(6.5 * grid.unit);
    const double place = grid.side - 1.2 * grid.unit - light / 2;
    // A ring of the tile's own colours sets it off.
    canvas.fill(circle({place, place}, light / 2 + 1.3 * grid.unit), tileTop, tileBottom);
    putLight(canvas, {place, place}, light, *label.light);
}

/// The chip at less than twice nine pixels: one pixel for each line.
Path smallChip() {
    auto path = roundedRectangle({2, 2}, {7, 7}, 0.5);
    const auto hole = roundedRectangle({3, 3}, {6, 6}, 0);
    for (const auto& contour : hole.contours())
        path.add(Contour(contour.rbegin(), contour.rend()));
    for (const double at : {3.0, 5.0})
        for (const double end : {0.0, 7.0})
            path.add(roundedRectangle({at, end}, {at + 1, end + 2}, 0))
                .add(roundedRectangle({end, at}, {end + 2, at + 1}, 0));
    return path;
}

void putImage(Canvas& canvas, const SystemMenuLabel& label, DrawingPoint topLeft, double size) {
    constexpr double smallest = 9;
    if (label.image == "exclamationmark.triangle.fill")
        return put(canvas, symbols::warning(), topLeft, size, amber);
    if (size >= 2 * smallest)
        return put(canvas, symbols::chip(), topLeft, size, ink);
    const double inset = std::floor((size - smallest) / 2);
    canvas.fill(smallChip().placed(1, topLeft + DrawingPoint{inset, inset}), ink);
}

} // namespace

TrayPixmap trayPixmap(const MenuBarLabel& label, int side) {
    const Grid grid(side);
    auto canvas = tile(side);
    if (label.time)
        putTime(canvas, label, grid);
    else
        putSymbol(canvas, label, grid);
    return {side, canvas.pixels()};
}

TrayPixmap trayPixmap(const SystemMenuLabel& label, int side) {
    const Grid grid(side);
    auto canvas = tile(side);
    const auto centred = [side](double width) { return std::round((side - width) / 2); };
    if (label.image && !label.figure)
        putImage(canvas, label, {grid.margin, grid.margin}, side - 2 * grid.margin);
    else if (label.image)
        putImage(canvas, label, {centred(grid.line), grid.margin}, grid.line);
    if (label.figure) {
        const auto size = grid.figures();
        const auto digits = label.figure->substr(0, label.figure->size() - 1);
        const double top = label.image ? grid.secondLine() : grid.margin;
        canvas.fill(figures(digits, {centred(figuresWidth(digits, size)), top}, size), ink);
        if (!label.image)
            canvas.fill(figures("%", {centred(figuresWidth("%", size)), grid.secondLine()}, size), dimInk);
    }
    return {side, canvas.pixels()};
}

} // namespace kestrio
