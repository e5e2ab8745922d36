// A small square picture that outlines are filled on, with smooth edges. For icons: it takes the time of some ten
// thousand additions per shape. A value; used on one thread at a time.
#pragma once

#include "Kestrio/Drawing/Path.h"

#include <cstdint>
#include <vector>

namespace kestrio {

/// Each from 0 to 1.
struct DrawingColour {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    friend bool operator==(const DrawingColour&, const DrawingColour&) = default;
};

/// As in 0x1f2630, opaque.
constexpr DrawingColour colour(std::uint32_t rgb, double alpha = 1) {
    const auto part = [rgb](int shift) { return static_cast<double>((rgb >> shift) & 0xff) / 255; };
    return {part(16), part(8), part(0), alpha};
}

class Canvas {
public:
    /// Transparent, so many pixels wide and high.
    explicit Canvas(int side);

    int side() const { return side_; }

    void fill(const Path& path, DrawingColour colour);

    /// From one colour at the top of the picture to another at its bottom.
    void fill(const Path& path, DrawingColour top, DrawingColour bottom);

    /// Takes away what lies within the path.
    void erase(const Path& path);

    /// Row by row, 0xAARRGGBB, the colours not multiplied with the alpha.
    std::vector<std::uint32_t> pixels() const;

private:
    /// How much of each pixel lies within, 0 to 1.
    std::vector<float> coverage(const Path& path) const;

    int side_;
    std::vector<DrawingColour> pixels_; // the colours multiplied with the alpha
};

} // namespace kestrio
