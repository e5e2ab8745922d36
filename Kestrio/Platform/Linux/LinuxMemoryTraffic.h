// What moves between the processor and its memory, by the counters of the memory controllers.
//
// Belongs to the queue of the sampler that owns it. Intel's controllers have such counters; the kernel lets them be
// read only where `perf_event_paranoid` is 0 or lower, or by a program with that privilege. Elsewhere there is no
// answer.
#pragma once

#include "Kestrio/Platform/MemoryTraffic.h"

#include <filesystem>
#include <functional>
#include <string_view>

namespace kestrio {

/// A counter as the kernel names it.
struct PerformanceEvent {
    std::uint32_t type = 0; // of the device
    std::uint64_t config = 0;

    friend bool operator==(const PerformanceEvent&, const PerformanceEvent&) = default;
};

/// The lowest bit of a field of `config` from a format such as "config:8-15". Absent for other words.
std::optional<unsigned> parseFormatShift(std::string_view text);

/// The `config` of an event such as "event=0x04,umask=0x03", with the bit that each name begins at asked for by name.
/// Absent when a name is unknown or a value malformed; a name without a value stands for 1.
std::optional<std::uint64_t>
parseEventConfig(std::string_view text, const std::function<std::optional<unsigned>(std::string_view name)>& shiftOf);

/// How many bytes one count stands for, from the texts of `EVENT.scale` and `EVENT.unit`. Absent for other units.
std::optional<double> parseBytesPerCount(std::string_view scale, std::string_view unit);

class LinuxMemoryTraffic final : public MemoryTraffic {
public:
    /// Reads an open counter; absent when it cannot be read.
    using Reader = std::function<std::optional<std::uint64_t>()>;
    /// Opens a counter on a core of the processor that the controller belongs to. Empty when that is not permitted.
    using Opener = std::function<Reader(const PerformanceEvent& event, int core)>;

    /// The kernel's own.
    static Reader openCounter(const PerformanceEvent& event, int core);

    /// `sys` is `/sys`, or a folder like it.
    explicit LinuxMemoryTraffic(const std::filesystem::path& sys = "/sys", const Opener& opener = openCounter);

    std::optional<std::vector<MemoryChannel>> channels() override;

    /// Whether the machine has such counters at all, whoever may read them.
    bool hasControllers() const { return hasControllers_; }

private:
    struct Counter {
        Reader read;
        double bytesPerCount;
    };
    using Counters = std::vector<Counter>;

    /// False when there is no such event or it may not be read.
    static bool openEvent(const std::filesystem::path& device, std::string_view name, const Opener& opener,
                          Counters& into);
    static std::optional<std::uint64_t> sum(const Counters& counters);

    bool hasControllers_ = false;
    Counters reads_;
    Counters writes_;
};

} // namespace kestrio
