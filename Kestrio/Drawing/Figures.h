// The few letters that an icon needs, drawn with a round nib so that they stay legible at eight pixels: the digits,
// "h", "m" and "%". Pure functions.
//
// Sides of a figure's box that lie between pixels blur it: whoever draws small gives whole numbers.
#pragma once

#include "Kestrio/Drawing/Path.h"

#include <string_view>

namespace kestrio {

/// How large a line of figures is, in pixels.
struct FigureSize {
    double height = 8;
    double width = 5; // of a digit; the others follow from it
    double weight = 1.25;
    double gap = 1; // between two figures
};

/// How far the text reaches to the right. Characters that are no figures are passed over.
double figuresWidth(std::string_view text, const FigureSize& size);

/// The text with its upper left corner there.
Path figures(std::string_view text, DrawingPoint topLeft, const FigureSize& size);

} // namespace kestrio
