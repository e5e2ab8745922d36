// The end of the line for programmer's mistakes: what must never happen whatever the machine or the person does.
#pragma once

#include <string_view>

namespace kestrio {

/// Writes the text to standard error and aborts, in every build.
[[noreturn]] void programmersMistake(std::string_view what);

} // namespace kestrio
