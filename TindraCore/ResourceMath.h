// The arithmetic of the resource log: load of the cores from two readings, minutes from a stream of readings, and what
// makes a minute worth noting. No clock, no counter, no state but the values themselves; nothing fails. Plain values,
// usable from any thread; each accumulator belongs to whoever holds it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace tindra {

/// One core's cumulative counters at one moment, in ticks.
struct CoreTicks {
    std::uint64_t busy = 0;
    std::uint64_t total = 0; // busy and idle

    friend bool operator==(const CoreTicks&, const CoreTicks&) = default;
};

/// The load of each class of cores, from 0 to 1. A class without cores has the load 0.
struct CoreLoad {
    double efficiency = 0;
    double performance = 0;

    friend bool operator==(const CoreLoad&, const CoreLoad&) = default;
};

/// The load between two readings, efficiency cores first. The ticks of a class are pooled, so that this is no mean of
/// each core's share. (0, 0) for readings of different lengths and for none. A counter that ran backwards is not
/// detected: its wrapped difference is huge, and the share ends at 1.
CoreLoad coreLoad(std::span<const CoreTicks> previous, std::span<const CoreTicks> current,
                  std::int64_t efficiencyCores);

/// Sum, peak and average of a stream of numbers.
struct Running {
    double sum = 0;
    double peak = 0; // of what was added, so it may be negative; 0 before that
    std::int64_t count = 0;

    void add(double value);
    double average() const; // 0 of nothing

    friend bool operator==(const Running&, const Running&) = default;
};

/// One scan of one application; what is a count of bytes, page-ins, nanojoules or wake-ups is since the scan before.
struct AppReading {
    double cpu = 0;             // in cores fully used
    std::uint64_t memory = 0;   // footprint in bytes
    std::uint64_t resident = 0; // bytes in physical memory
    std::optional<double> pcoreShare =
        std::nullopt; // share of CPU time on performance cores, 0 to 1; absent if it cannot be told
    std::uint64_t pageins = 0;
    double frontSeconds = 0;
    std::int64_t state = 0; // of the optimizer, as the log codes it; a higher one is a stronger one
    std::int64_t processes = 0;
    std::uint64_t diskRead = 0;    // bytes
    std::uint64_t diskWritten = 0; // bytes
    std::uint64_t energy = 0;      // nanojoules
    std::uint64_t wakeups = 0;
};

/// One application's minute in the making. The counts wrap around at 64 bits.
struct AppMinuteAccumulator {
    explicit AppMinuteAccumulator(std::string displayName) : name(std::move(displayName)) {}

    std::string name;
    Running cpu;        // in cores
    Running memory;     // bytes
    Running resident;   // bytes
    Running pcoreShare; // 0 to 1; of those scans alone that could tell
    std::uint64_t pageins = 0;
    double frontSeconds = 0;
    std::int64_t state = 0;     // the highest seen
    std::int64_t processes = 0; // the most seen
    std::uint64_t diskRead = 0;
    std::uint64_t diskWritten = 0;
    std::uint64_t energy = 0; // nanojoules
    std::uint64_t wakeups = 0;

    void add(const AppReading& reading);

    /// Over sixty seconds, however long the minute really was: a short first minute reads low.
    double watts() const;

    /// Whether the minute gets a row. What did nothing and holds little leaves none, which keeps the table small.
    bool isWorthKeeping() const;

    friend bool operator==(const AppMinuteAccumulator&, const AppMinuteAccumulator&) = default;
};

/// The bytes of an application that are not in physical memory but compressed or swapped out.
std::uint64_t outOfRAM(std::uint64_t footprint, std::uint64_t resident);

/// What tells a slowdown from a healthy minute.
struct MinuteHealth {
    std::int64_t pressure = 0; // the log's code of memory pressure
    std::uint64_t swapInBytes = 0;
    std::uint64_t swapOutBytes = 0;   // takes no part: only for what is swapped in did the person wait
    std::int64_t lagMilliseconds = 0; // the main thread's worst

    bool isSlowdown() const;

    friend bool operator==(const MinuteHealth&, const MinuteHealth&) = default;
};

/// How the person's minute was spent.
struct BehaviourAccumulator {
    // The states as the log codes them.
    static constexpr std::int64_t active = 0;
    static constexpr std::int64_t idle = 1;
    static constexpr std::int64_t away = 2;
    static constexpr std::int64_t paused = 3;

    double activeSeconds = 0;
    double idleSeconds = 0;
    double awaySeconds = 0;
    double pausedSeconds = 0;
    std::int64_t switches = 0;                           // changes of the front application
    std::optional<std::string> lastFront = std::nullopt; // at the last active tick

    /// One tick. At most 30 seconds of it count, so that a tick after a sleep does not fill the minute; a state that
    /// has no code counts as paused. The first front application ever seen is no switch.
    void add(std::int64_t state, double seconds, const std::optional<std::string>& front);

    /// `lastFront` stays: a switch across the boundary counts in the new minute.
    void startNewMinute();

    friend bool operator==(const BehaviourAccumulator&, const BehaviourAccumulator&) = default;
};

} // namespace tindra

template <>
struct std::hash<tindra::CoreTicks> {
    std::size_t operator()(const tindra::CoreTicks& ticks) const noexcept;
};
template <>
struct std::hash<tindra::Running> {
    std::size_t operator()(const tindra::Running& running) const noexcept;
};
template <>
struct std::hash<tindra::AppMinuteAccumulator> {
    std::size_t operator()(const tindra::AppMinuteAccumulator& minute) const noexcept;
};
template <>
struct std::hash<tindra::MinuteHealth> {
    std::size_t operator()(const tindra::MinuteHealth& health) const noexcept;
};
template <>
struct std::hash<tindra::BehaviourAccumulator> {
    std::size_t operator()(const tindra::BehaviourAccumulator& behaviour) const noexcept;
};
