// The program's own mark and the few symbols that stand on an icon beside it, as outlines in a box of 24 by 24. Pure
// functions.
#pragma once

#include "Kestrio/Drawing/Path.h"

namespace kestrio::symbols {

/// How wide and high the box is.
inline constexpr double box = 24;

/// The mark `kestrio.mark`, a kestrel that glides, as SVG writes a path.
inline constexpr auto markPath = "M3 9.5 C4.2 7.6 6.2 7 8 7.6 C10.5 4.2 15.5 2 21.5 2.2 C18.2 4.2 15.6 7.2 14.6 10.6 "
                                 "C16.8 12 19.4 15 21.6 19.4 C18.2 18 15 16.8 12.2 16.6 C10.4 18.6 8 20.6 4.6 21.8 "
                                 "C5.6 18 6.2 14.6 6.2 11.6 C5.2 10.6 4.2 10 3 9.5 Z";

Path mark();
/// Two bars.
Path pause();
/// A chip with its legs, hollow.
Path chip();
/// A triangle with round corners and a mark of exclamation cut out of it.
Path warning();

} // namespace kestrio::symbols
