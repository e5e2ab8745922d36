#include "Programs/CommandLine/ResourceLogCommands.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Resources/ResourceReport.h"
#include "Kestrio/Resources/Slowness.h"
#include "Kestrio/Shell/HostWords.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/CommandLine/CurrentClassification.h"
#include "Programs/CommandLine/Interruption.h"
#include "Programs/CommandLine/Moments.h"
#include "Programs/CommandLine/OutputFile.h"
#include "Programs/CommandLine/ProgressLine.h"
#include "Programs/CommandLine/ReportCommand.h"
#include "Programs/CommandLine/ResourceLogText.h"
#include "Programs/CommandLine/ResourceSurroundings.h"
#include "Programs/CommandLine/StoredSessions.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using JSON = nlohmann::ordered_json;
using namespace exitStatus;

constexpr std::int64_t secondsPerPage = 5'000;
constexpr Seconds eventsBefore{86'400}; // in which the last sleep is looked for
constexpr Seconds minute{60};
constexpr Seconds sessionsAround{43'200}; // in which an application's name is looked for

/// Runs a command that reads the log; one that is not there or cannot be opened is a clear line.
template <class Work>
int withLog(const Locations& places, Work work) {
    const auto file = dataFolder(places) / ResourceStore::fileName;
    std::error_code ignored;
    if (!fs::exists(file, ignored)) {
        complain("there is no resource log yet: " + file.string() + " does not exist");
        return failed;
    }
    const SystemClock clock;
    WorkerQueue queue(ResourceStore::queueLabel);
    try {
        ResourceStore store(file, queue, clock, DatabaseAccess::readOnly);
        return work(store);
    } catch (const DatabaseError& error) {
        complain(file.string() + ": " + error.what());
        return failed;
    }
}

struct Range {
    DateInterval interval;
    std::string title;
};

/// Absent after a complaint.
std::optional<Range> rangeOrComplaint(const ReportOptions& options, Date now, const Calendar& calendar) {
    auto asked = reportRequest(options, now, calendar);
    if (const auto* mistake = std::get_if<std::string>(&asked)) {
        complain(*mistake);
        return std::nullopt;
    }
    const auto& request = std::get<ReportRequest>(asked);
    // "Today" would be wrong in a file that somebody reads tomorrow.
    const auto& heading = request.heading;
    return Range{request.interval, heading.subtitle.empty() ? heading.title : heading.subtitle};
}

bool isFolder(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

int tellExport(const ResourceExporter::Export& made) {
    if (made.wasStopped)
        return interrupted;
    if (made.error) {
        complain("the export failed: " + *made.error);
        return failed;
    }
    print(made.folder.string() + "\n");
    return done;
}

template <class Receive>
void forEachSecond(ResourceStore& store, DateInterval interval, Receive receive) {
    std::optional<Date> last;
    for (;;) {
        const auto page = store.seconds(interval, last, secondsPerPage);
        for (const auto& second : page)
            receive(second);
        if (static_cast<std::int64_t>(page.size()) < secondsPerPage)
            return;
        last = page.back().at;
    }
}

void printSecondsJSON(ResourceStore& store, DateInterval interval) {
    const char* separator = "[\n  ";
    forEachSecond(store, interval, [&](const SystemSecond& second) {
        print(separator + toJSON(second).dump(-1, ' ', false, JSON::error_handler_t::replace));
        separator = ",\n  ";
    });
    print(separator[0] == '[' ? "[]\n" : "\n]\n");
}

void printSecondsTable(ResourceStore& store, DateInterval interval, const Calendar& calendar) {
    const auto style = outputStyle();
    bool isFirst = true;
    forEachSecond(store, interval, [&](const SystemSecond& second) {
        if (std::exchange(isFirst, false))
            print(secondsHeading(style));
        print(secondsRow(second, calendar, style));
    });
    if (isFirst)
        complain("no seconds were logged in that time");
}

LogAroundMoment logAround(Date at, ResourceStore& store) {
    const DateInterval near{at - 2 * minute, at + minute};
    auto events = store.events({at - eventsBefore, at + Seconds(1)}, std::numeric_limits<std::int64_t>::max());
    std::ranges::reverse(events);
    return {.at = at,
            .minutes = store.systemMinutes(near),
            .apps = store.appMinutes(near),
            .seconds =
                store.seconds({at - Slowness::reach, at + Slowness::reach + Seconds(1)}, std::nullopt, secondsPerPage),
            .events = std::move(events)};
}

/// What the applications in front around the moment are called, by their identifiers; none while nobody can tell.
std::map<std::string, std::string> namesAround(Date at, const Locations& places) {
    try {
        const auto agent = runningAgent(places);
        StoredSessions stored(places);
        std::map<std::string, std::string> names;
        for (auto& session : sessionsOf(stored.database(), agent ? agent->status() : std::nullopt,
                                        {at - sessionsAround, at + sessionsAround}))
            names.insert_or_assign(std::move(session.bundleID), std::move(session.appName));
        return names;
    } catch (const DatabaseError&) {
        return {};
    }
}

} // namespace

int logStatus(bool json) {
    const auto places = placesOrExit();
    return withLog(places, [&](ResourceStore& store) {
        const auto settings = openSettings(places);
        const auto agent = runningAgent(places);
        const LogStatus status{.file = dataFolder(places) / ResourceStore::fileName,
                               .fileSize = store.fileSize(),
                               .contents = store.contents(),
                               .isOn = settings->boolean(settingKey::resourceLogEnabled),
                               .days = settings->integer(settingKey::resourceLogDays),
                               .detailDays = settings->integer(settingKey::resourceDetailDays),
                               .pace = settings->integer(settingKey::resourceDetail),
                               .agent = agent ? agent->ownCost() : std::nullopt};
        if (json)
            printJSON(toJSON(status));
        else
            print(logStatusText(status, Calendar::current()));
        return done;
    });
}

int logExport(const LogExportOptions& options) {
    Interruption interruption; // so that nothing half made is left behind
    const auto calendar = Calendar::current();
    const SystemClock clock;
    const auto now = clock.now();
    const bool hasRange = options.from || options.to;
    if (options.all && hasRange) {
        complain("one range at a time: --all, or --from with --to");
        return wrongUsage;
    }
    std::optional<Range> range;
    if (hasRange) {
        range = rangeOrComplaint({.from = options.from, .to = options.to}, now, calendar);
        if (!range)
            return wrongUsage;
    }
    if (!isFolder(options.folder)) {
        complain("there is no folder " + text::fittedToColumns(options.folder, 200));
        return failed;
    }
    const auto places = placesOrExit();
    const auto agent = runningAgent(places);
    const auto status = agent ? agent->status() : std::nullopt;
    warnOfUnsaved(status);
    return withLog(places, [&](ResourceStore& store) {
        return withStored(places, [&](Database* database) {
            ProgressLine line("Exporting…");
            const ResourceExporter::Request request{
                .destination = options.folder,
                .interval = range ? std::optional(range->interval) : std::nullopt,
                .title = range ? range->title : "everything that is logged",
                .now = now,
                .sessions =
                    [&](DateInterval interval) {
                        return usedSessions(sessionsOf(database, status, interval), interval, calendar,
                                            currentClassification(places, clock));
                    },
                .work = {.progress = [&](double share) { line.show(share); }, .stop = interruption.token()}};
            return tellExport(ResourceExporter::exportEverything(
                request, resourceSurroundings(*openSettings(places), calendar), store));
        });
    });
}

int logReport(const LogReportOptions& options) {
    std::optional<Interruption> interruption;
    if (options.output != "-")
        interruption.emplace(); // so that nothing half written is left behind
    const auto calendar = Calendar::current();
    const auto range = rangeOrComplaint(
        {.day = options.day, .week = options.week, .month = options.month, .from = options.from, .to = options.to},
        SystemClock().now(), calendar);
    if (!range)
        return wrongUsage;
    const auto places = placesOrExit();
    return withLog(places, [&](ResourceStore& store) {
        const auto text = ResourceExporter::report(ResourceExporter::load(range->interval, range->title, store),
                                                   resourceSurroundings(*openSettings(places), calendar));
        if (options.output == "-") {
            print(text);
            return done;
        }
        const auto error = writeFile(
            options.output, [&](const FileWriter& write) { write(text); }, interruption->token());
        if (interruption->token().stop_requested())
            return interrupted;
        if (error) {
            complain(text::fittedToColumns(options.output, 200) + ": " + error.message());
            return failed;
        }
        return done;
    });
}

int logEvents(const LogEventsOptions& options) {
    const auto calendar = Calendar::current();
    const auto range = rangeOrComplaint({.from = options.from, .to = options.to}, SystemClock().now(), calendar);
    if (!range)
        return wrongUsage;
    if (options.limit < 1) {
        complain("--limit must be at least 1");
        return wrongUsage;
    }
    return withLog(placesOrExit(), [&](ResourceStore& store) {
        auto events = store.events(range->interval, options.limit);
        std::ranges::reverse(events);
        if (options.json) {
            auto array = JSON::array();
            for (const auto& event : events)
                array.push_back(toJSON(event));
            printJSON(array);
            return done;
        }
        if (events.empty())
            complain("nothing happened in that time, as far as the log knows");
        print(eventTable(events, calendar, outputStyle()));
        if (static_cast<std::int64_t>(events.size()) == options.limit)
            complain(fmt::format("these are the latest {}; --limit tells more", options.limit));
        return done;
    });
}

int logSeconds(const LogSecondsOptions& options) {
    if (options.csv && options.json) {
        complain("one form at a time: --csv or --json");
        return wrongUsage;
    }
    const auto calendar = Calendar::current();
    const auto range = rangeOrComplaint({.from = options.from, .to = options.to}, SystemClock().now(), calendar);
    if (!range)
        return wrongUsage;
    return withLog(placesOrExit(), [&](ResourceStore& store) {
        if (options.csv)
            ResourceExporter::writeSecondsCSV(store, range->interval, calendar,
                                              [](std::string_view piece) { print(std::string(piece)); });
        else if (options.json)
            printSecondsJSON(store, range->interval);
        else
            printSecondsTable(store, range->interval, calendar);
        return done;
    });
}

int why(const std::optional<std::string>& at) {
    const auto calendar = Calendar::current();
    const auto now = SystemClock().now();
    const auto moment = at ? parseMoment(*at, now, calendar) : now;
    if (!moment) {
        complain(fmt::format("--at \"{}\" is no moment that I understand; try {}", text::fittedToColumns(*at, 60),
                             momentForms));
        return wrongUsage;
    }
    const auto places = placesOrExit();
    return withLog(places, [&](ResourceStore& store) {
        auto log = logAround(*moment, store);
        log.otherNames = namesAround(*moment, places);
        const auto seen = slowness(log);
        std::vector<std::string> names;
        std::ranges::transform(log.apps, std::back_inserter(names), &AppMinute::name);
        if (seen.front)
            names.push_back(*seen.front);
        std::string told;
        for (const auto& sentence : sentences(seen, calendar))
            told += hostWords(sentence, names) + "\n";
        print(text::withoutInvisibleMarks(told));
        return done;
    });
}

} // namespace kestrio
