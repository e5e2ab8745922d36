// Seam: what has moved between the processor and its memory.
//
// Called on the sampler's queue once a tick; never blocks. Most hosts do not tell, or not everybody: the answer is then
// absent for good.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// Bytes since an arbitrary beginning. `unit` is the part of the chip that moved them, by the host's name for it; the
/// channel without one is that of the whole machine.
struct MemoryChannel {
    std::string unit;
    std::uint64_t read = 0;
    std::uint64_t written = 0;

    friend bool operator==(const MemoryChannel&, const MemoryChannel&) = default;
};

class MemoryTraffic {
public:
    virtual ~MemoryTraffic() = default;

    virtual std::optional<std::vector<MemoryChannel>> channels() = 0;
};

} // namespace kestrio
