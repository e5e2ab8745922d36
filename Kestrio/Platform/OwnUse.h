// What this program itself has used of the machine since it was started. A value.
#pragma once

#include "Kestrio/Base/Date.h"

#include <cstdint>

namespace kestrio {

struct OwnUse {
    Seconds cpu = Seconds(0);       // of all its threads, ended ones among them
    std::uint64_t memory = 0;       // bytes in physical memory, now
    std::uint64_t wakeups = 0;      // of the threads that live now
    std::uint64_t bytesWritten = 0; // to drives

    friend bool operator==(const OwnUse&, const OwnUse&) = default;
};

} // namespace kestrio
