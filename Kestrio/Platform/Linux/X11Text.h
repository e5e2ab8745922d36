// The older encodings in which X11 clients write texts. Pure functions, callable from any thread; the results are
// valid UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kestrio {

/// The type STRING: ISO 8859-1.
std::string fromLatin1(std::string_view bytes);

/// The type COMPOUND_TEXT: ISO 2022 with segments of UTF-8. The ISO 8859 sets and the East Asian sets of 94 × 94
/// characters are understood; what is of any other set is U+FFFD.
std::string fromCompoundText(std::string_view bytes);

} // namespace kestrio
