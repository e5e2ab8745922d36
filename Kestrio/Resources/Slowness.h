// Why the machine was slow at a moment, as far as the resource log can tell: the reading of what it holds around the
// moment, and the sentences that say it. Pure functions; any thread.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// What the log holds around a moment. The lists are in the order of time.
struct LogAroundMoment {
    Date at;
    std::vector<SystemMinute> minutes = {};
    std::vector<AppMinute> apps = {};
    std::vector<SystemSecond> seconds = {};
    std::vector<ResourceEvent> events = {}; // up to the moment
    /// What applications are called that have no minutes, by their keys.
    std::map<std::string, std::string> otherNames = {};
};

struct Slowness {
    /// Seconds this near to the moment belong to it.
    static constexpr Seconds reach{30};

    enum class Verdict {
        unlogged, // nothing is known of the moment
        smooth,
        slow,
    };
    /// What a person feels, the surest first.
    enum class Cause {
        stall,          // the screen stood still for half a second or more
        criticalMemory, // there was no memory left
        readBack,       // much memory had to be read back from the drive
        heldUpDrive,    // whatever the drive was asked for had to wait
        busyCores,      // every core was at work
        heat,           // the chip held itself back to cool down
    };
    /// From this share of all cores on, averaged over the minute, whatever wants to run waits.
    static constexpr double busyShare = 0.9;
    /// From this thermal code on the chip is slowed.
    static constexpr std::int64_t throttlingFrom = 2;

    /// From this wait of an average request on, opening anything, which takes hundreds, is felt. An idle drive takes
    /// its time too, so that it has to move this much as well, in bytes per second.
    static constexpr std::int64_t longWaitMicroseconds = 10'000;
    static constexpr double leastTraffic = 1e6;

    struct App {
        std::string id;
        std::string name;
        std::uint64_t memory = 0;
        double cpu = 0;         // in cores
        std::uint64_t disk = 0; // bytes read and written in the minute

        friend bool operator==(const App&, const App&) = default;
    };

    Date at;
    Verdict verdict = Verdict::unlogged;
    std::vector<Cause> causes = {}; // in the order of the cases; none unless slow

    // The evidence: the worst that was logged around the moment.
    std::int64_t pressure = 0; // the log's code
    std::uint64_t readBack = 0;
    std::int64_t lagMilliseconds = 0;
    std::optional<Date> lagAt = {}; // the second of the longest stall, where seconds are logged
    double cpu = 0;
    std::int64_t thermal = 0;
    std::int64_t ssdWaitMicroseconds = 0; // of the minute's average request
    double ssdSpeed = 0;                  // bytes per second, read and written, averaged over the minute

    // The applications with the most of each; absent when none had anything to speak of.
    std::optional<App> largest = {};
    std::optional<App> busiest = {};
    std::optional<App> writingMost = {}; // or reading
    std::optional<std::string> front = {};
    std::optional<std::int64_t> activity = {}; // the log's code; absent if it cannot be told
    bool wasAsleep = false;                    // why nothing is logged

    friend bool operator==(const Slowness&, const Slowness&) = default;
};

/// The minute that counts is the one around the moment, or the last one before it while that is in the making.
Slowness slowness(const LogAroundMoment& log);

/// One or two sentences, in the words of the first host.
std::vector<std::string> sentences(const Slowness& slowness, const Calendar& calendar);

} // namespace kestrio
