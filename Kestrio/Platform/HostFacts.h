// What a host says about itself, for people who ask for support. Empty texts and 0 where it does not say.
#pragma once

#include <cstdint>
#include <string>

namespace kestrio {

struct HostFacts {
    std::string system;               // name and version, "Debian GNU/Linux 12 (bookworm), Linux 6.1.0"
    std::string chip;                 // the processor's name as it gives it
    std::uint64_t physicalMemory = 0; // bytes
};

} // namespace kestrio
