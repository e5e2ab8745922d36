// The character by which a name is known on a badge. Pure; any thread.
#pragma once

#include <string>
#include <string_view>

namespace kestrio::text {

/// The first character that is a letter or a digit, with its accents, in upper case. Empty when there is none.
std::string initial(std::string_view text);

} // namespace kestrio::text
