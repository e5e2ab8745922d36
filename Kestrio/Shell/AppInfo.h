// What the program says about itself and the machine it runs on, for people who ask for support.
#pragma once

#include <cstdint>
#include <string>

namespace kestrio {

/// What a host knows about itself; an empty text for what it does not.
struct HostFacts {
    std::string system;               // "Debian GNU/Linux 12 (bookworm), Linux 6.1.0"
    std::string chip;                 // the processor's name as it gives it
    std::uint64_t physicalMemory = 0; // bytes
};

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
