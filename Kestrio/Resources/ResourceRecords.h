// The records of the resource log: how the machine stood in a minute and in a second, what an application used, what
// happened, and the periods that are made of them when they are read. Plain values, usable from any thread.
//
// None of them holds a title or an address. Shares are from 0 to 1, memory in bytes, rates in bytes per second, and the
// load of an application in cores fully used.
#pragma once

#include "Kestrio/Base/Date.h"
#include "TindraCore/Config.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

/// The machine in one minute.
struct SystemMinute {
    Date minute = {}; // its start
    double cpu = 0;
    double cpuPeak = 0;
    double cpuPerformance = 0;
    double cpuEfficiency = 0;
    std::uint64_t memoryUsed = 0;
    std::uint64_t memoryTotal = 0;
    std::uint64_t compressed = 0;
    std::uint64_t swapUsed = 0;
    std::uint64_t swapIn = 0;  // within the minute
    std::uint64_t swapOut = 0; // within the minute
    std::int64_t pressure = 0; // the log's code: 1 normal, 2 warning, 4 critical
    std::int64_t thermal = 0;
    std::int64_t lagMilliseconds = 0;
    std::optional<std::string> frontApp = std::nullopt; // an application's key
    double ramRead = 0;
    double ramWrite = 0;
    double ramPeak = 0;
    double ssdRead = 0;
    double ssdWrite = 0;
    double ssdPeak = 0;
    std::int64_t ssdWaitMicroseconds = 0;
    std::int64_t activeSeconds = 0;
    std::int64_t idleSeconds = 0;
    std::int64_t awaySeconds = 0;
    std::int64_t pausedSeconds = 0;
    std::int64_t switches = 0; // of the front application
    std::int64_t appsOpen = 0;
    std::int64_t processes = 0;
    std::optional<std::int64_t> battery = std::nullopt; // percent
    std::optional<bool> onAC = std::nullopt;
    bool lowPower = false;
    std::optional<double> temperature = std::nullopt;             // degrees Celsius
    std::optional<tindra::OptimizerConfig> config = std::nullopt; // on the way in alone
    std::optional<std::string> configLabel = std::nullopt;        // on the way out alone
    double frozenApps = 0;                                        // average number
    double efficientApps = 0;                                     // average number
    std::uint64_t frozenMemory = 0;                               // kept in whole MiB

    friend bool operator==(const SystemMinute&, const SystemMinute&) = default;
};

/// One application in one minute.
struct AppMinute {
    Date minute = {};
    std::string appID = {};
    std::string name = {};
    double cpu = 0;
    double cpuPeak = 0;
    std::optional<double> pcoreShare = std::nullopt; // absent if it cannot be told
    std::uint64_t memory = 0;
    std::uint64_t memoryPeak = 0;
    std::uint64_t resident = 0;
    std::uint64_t pageins = 0;
    double frontSeconds = 0;
    std::int64_t state = 0; // of the optimizer: 1 slowed, 2 frozen
    std::int64_t processes = 0;
    std::uint64_t diskRead = 0;
    std::uint64_t diskWritten = 0;
    std::uint64_t energyMillijoules = 0;
    std::uint64_t wakeups = 0;

    friend bool operator==(const AppMinute&, const AppMinute&) = default;
};

/// The machine in one second. Kept in thousandths, MiB and whole bytes per second.
struct SystemSecond {
    Date at = {};
    double cpu = 0;
    double cpuPerformance = 0;
    double cpuEfficiency = 0;
    std::uint64_t memoryUsed = 0;
    std::uint64_t compressed = 0;
    std::uint64_t swapUsed = 0;
    std::int64_t pressure = 0;
    std::int64_t thermal = 0;
    double ramRead = 0;
    double ramWrite = 0;
    double ssdRead = 0;
    double ssdWrite = 0;
    double swapInRate = 0;
    double swapOutRate = 0;
    std::int64_t lagMilliseconds = 0;
    std::int64_t idleSeconds = 0; // since the last input
    std::int64_t state = 0;       // the activity, as the log codes it
    std::optional<std::string> frontApp = std::nullopt;

    friend bool operator==(const SystemSecond&, const SystemSecond&) = default;
};

enum class ResourceEventKind {
    freeze,
    thaw,
    wake,
    efficient,
    restored,
    quit,
    slowdown,
    pressure,
    runaway,
    override,
    optimizerOn,
    optimizerOff,
    recovered,
    appOpened,
    appClosed,
    macSlept,
    macWoke,
    activity,
    power,
    thermal,
    configChanged,
};

inline constexpr std::size_t resourceEventKindCount = 21;

/// How the kind stands in the log, and in exports.
std::string_view storedText(ResourceEventKind kind);
/// Absent for a text that a later version wrote.
std::optional<ResourceEventKind> resourceEventKind(std::string_view storedText);
/// The words for people.
std::string_view title(ResourceEventKind kind);
std::string_view symbolName(ResourceEventKind kind);

/// An application as the log knows it: by its key, and the name that people read.
struct AppReference {
    std::string key = {};
    std::string name = {};

    friend bool operator==(const AppReference&, const AppReference&) = default;
};

struct ResourceEvent {
    std::int64_t id = 0;
    Date at = {};
    ResourceEventKind kind = ResourceEventKind::freeze;
    std::optional<std::string> appID = std::nullopt;
    std::optional<std::string> appName = std::nullopt;
    std::string detail = {};
    std::optional<std::uint64_t> bytes = std::nullopt;

    friend bool operator==(const ResourceEvent&, const ResourceEvent&) = default;
};

/// How much the log holds, table by table, and from when.
struct LogContents {
    std::int64_t minutes = 0;
    std::int64_t appMinutes = 0;
    std::int64_t seconds = 0;
    std::int64_t events = 0;
    std::int64_t apps = 0;
    std::int64_t setups = 0;
    std::optional<Date> firstMinute = std::nullopt;
    std::optional<Date> lastMinute = std::nullopt;
    std::optional<Date> firstSecond = std::nullopt;

    friend bool operator==(const LogContents&, const LogContents&) = default;
};

/// A period of the machine's minutes.
struct SystemBucket {
    Date start = {};
    double cpu = 0;
    double cpuPeak = 0;
    double cpuPerformance = 0;
    double cpuEfficiency = 0;
    std::uint64_t memoryUsed = 0; // average
    std::uint64_t swapUsed = 0;   // most
    std::uint64_t swapIn = 0;
    std::uint64_t swapOut = 0;
    std::int64_t pressure = 0; // the worst
    std::int64_t pressureMinutes = 0;
    std::int64_t lagMilliseconds = 0; // the worst
    std::int64_t minutes = 0;
    double ramRead = 0;
    double ramWrite = 0;
    double ramPeak = 0;
    double ssdRead = 0;
    double ssdWrite = 0;
    double ssdPeak = 0;
    std::int64_t activeSeconds = 0;
    std::int64_t idleSeconds = 0;
    std::int64_t awaySeconds = 0;
    std::int64_t switches = 0;

    friend bool operator==(const SystemBucket&, const SystemBucket&) = default;
};

/// A period of seconds.
struct SecondBucket {
    Date start = {};
    double cpu = 0;
    double cpuPeak = 0;
    double ramRead = 0;
    double ramWrite = 0;
    double ramPeak = 0; // reading and writing together
    double ssdRead = 0;
    double ssdWrite = 0;
    double ssdPeak = 0;               // reading and writing together
    std::uint64_t swapUsed = 0;       // most
    std::int64_t pressure = 0;        // the worst
    std::int64_t lagMilliseconds = 0; // the worst

    friend bool operator==(const SecondBucket&, const SecondBucket&) = default;
};

/// An hour of the day, over a range.
struct HourProfile {
    std::int64_t hour = 0; // 0 to 23, local
    std::int64_t activeSeconds = 0;
    std::int64_t idleSeconds = 0;
    std::int64_t awaySeconds = 0;
    std::int64_t switches = 0;
    std::uint64_t memoryUsed = 0; // average
    std::uint64_t swapIn = 0;
    std::int64_t pressureMinutes = 0;
    double cpu = 0;
    std::int64_t minutes = 0;
    std::int64_t lagMilliseconds = 0; // the worst

    friend bool operator==(const HourProfile&, const HourProfile&) = default;
};

/// One setup of the optimizer over a range, of the minutes in which somebody worked.
struct ConfigGroup {
    std::int64_t id = 0;
    std::string key = {};
    std::string label = {};
    Date firstUsed = {};
    tindra::ConfigStats stats = {};
    double cpu = 0;
    std::uint64_t memoryUsed = 0;
    std::uint64_t swapUsed = 0;
    double frozenApps = 0;
    double efficientApps = 0;
    std::uint64_t frozenMemory = 0;
    std::int64_t uncertainMinutes = 0; // from before behaviour was logged

    friend bool operator==(const ConfigGroup&, const ConfigGroup&) = default;
};

/// An application's average memory in a period.
struct AppMemoryPoint {
    Date start = {};
    std::string appID = {};
    std::string name = {};
    std::uint64_t memory = 0;

    friend bool operator==(const AppMemoryPoint&, const AppMemoryPoint&) = default;
};

/// An application over a range.
struct AppResourceSummary {
    std::string id = {};
    std::string name = {};
    std::int64_t minutes = 0;
    double cpu = 0;
    double cpuPeak = 0;
    std::uint64_t memory = 0;
    std::uint64_t memoryPeak = 0;
    std::uint64_t outOfRAM = 0; // average of what was not in physical memory
    std::uint64_t pageins = 0;
    double frontSeconds = 0;
    std::int64_t frozenMinutes = 0;
    std::int64_t efficientMinutes = 0;
    std::optional<double> pcoreShare = std::nullopt;
    std::uint64_t diskRead = 0;
    std::uint64_t diskWritten = 0;
    std::uint64_t energyMillijoules = 0;
    std::uint64_t wakeups = 0;

    friend bool operator==(const AppResourceSummary&, const AppResourceSummary&) = default;
};

} // namespace kestrio
