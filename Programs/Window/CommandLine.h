// The command line of `kestrio-window`: which window is wanted.
#pragma once

#include "Kestrio/Link/WindowRequest.h"

#include <variant>

namespace kestrio {

/// The request, or the exit status after help, the version or a mistake was written.
std::variant<WindowRequest, int> parseWindowArguments(int count, const char* const* arguments);

} // namespace kestrio
