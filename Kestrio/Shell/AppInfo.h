// What the program says about itself and the machine it runs on, for people who ask for support.
#pragma once

#include "Kestrio/Platform/HostFacts.h"

#include <string>

namespace kestrio {

namespace AppInfo {

/// "1.0.0" when the build did not say.
std::string version();
/// "1" when the build did not say.
std::string build();

/// Three lines: the program, the system, the machine, its memory in whole gibibytes.
std::string diagnostics(const HostFacts& host);

/// Where the program's own page is.
inline constexpr auto website = "https://kestrio.haldorvinter.dev";

} // namespace AppInfo
} // namespace kestrio
