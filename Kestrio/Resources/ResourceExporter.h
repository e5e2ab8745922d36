// The resource log as files that a person can open: tables, one file for programs, a report to read, a copy of the
// database and a page that says what all this is. None of them ever holds a title or an address of what was used.
//
// Functions without state. Reading blocks as long as the store does and writing as long as the disk; not for the main
// thread. Logging goes on meanwhile.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/LongWork.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Kestrio/Resources/SSDSpeedTest.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio::ResourceExporter {

/// How many of the worst seconds of a kind are told.
inline constexpr std::int64_t worstSecondsTold = 10;

/// Everything that the exports say about a range, read once.
struct Snapshot {
    DateInterval interval;
    std::string title; // the range in words
    std::vector<SystemMinute> system;
    std::vector<AppMinute> apps;
    std::vector<AppResourceSummary> summaries;
    std::vector<ResourceEvent> events; // the oldest first
    std::vector<HourProfile> hours;
    std::vector<SystemSecond> worstStalls;
    std::vector<SystemSecond> worstSSD;
    std::vector<SystemSecond> worstRAM;
    std::int64_t secondsLogged = 0;
    std::vector<ConfigGroup> configs;
};

Snapshot load(DateInterval interval, std::string title, ResourceStore& store);

/// This computer.
struct Mac {
    std::string chip;
    std::int64_t memoryGB = 0;
    std::int64_t efficiencyCores = 0;
    std::int64_t performanceCores = 0;
    std::string macOS; // the system's name and version
};

/// What was used and when, without what it showed.
struct UsedSession {
    Date start;
    Date end;
    std::string kind;
    std::string app;
    std::string bundleID;
    std::string category;
    std::optional<std::string> project;
    std::optional<std::string> site;
};

/// What the exports say beside the log.
struct Surroundings {
    Mac mac;
    std::string version;               // of this program
    nlohmann::ordered_json settings;   // by name, as the files show them
    std::optional<double> topRAMSpeed; // bytes per second
    std::optional<SSDSpeedTest::Result> driveTest;
    Calendar calendar = Calendar("en", "GMT");
    /// Puts this host's words in the place of others in a text for people, names of applications within it excepted.
    std::function<std::string(const std::string& text, std::span<const std::string> names)> hostWords =
        [](const std::string& text, auto) { return text; };
};

/// Takes the pieces of a file, in order.
using Sink = std::function<void(std::string_view piece)>;

void writeSystemCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink);
void writeAppsCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink);
void writeEventsCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink);
void writeImpactCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink);
void writeSessionsCSV(const std::vector<UsedSession>& sessions, const Calendar& calendar, const Sink& sink);

/// Reads the seconds from the store page by page as it writes them; after each page the number so far is told, and the
/// answer says whether to go on.
void writeSecondsCSV(ResourceStore& store, DateInterval interval, const Calendar& calendar, const Sink& sink,
                     const std::function<bool(std::int64_t rows)>& wantsMore = {});

void writeJSON(const Snapshot& snapshot, const Surroundings& surroundings, const Sink& sink);

std::string readme(const Snapshot& snapshot, const Surroundings& surroundings, std::size_t sessions);

/// The files of an export.
inline constexpr std::array fileNames{"README.txt",  "activity-sessions.csv",   "apps-minutes.csv", "data.json",
                                      "events.csv",  "optimization-impact.csv", "report.md",        "resources.sqlite",
                                      "seconds.csv", "system-minutes.csv"};

/// Writes everything into a new folder, "kestrio-{date}", inside `destination`.
struct Export {
    std::filesystem::path folder;     // where it is, or would have been
    std::optional<std::string> error; // absent when all went well; what was written until then stays
    bool wasStopped = false;          // on request; nothing of it is left
};
struct Request {
    std::filesystem::path destination;
    std::optional<DateInterval> interval; // the whole log when absent
    std::string title;
    Date now;
    /// The sessions of the range, from wherever they are kept.
    std::function<std::vector<UsedSession>(DateInterval)> sessions;
    LongWork work = {};
};
Export exportEverything(const Request& request, const Surroundings& surroundings, ResourceStore& store);

} // namespace kestrio::ResourceExporter
