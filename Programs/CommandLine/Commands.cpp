#include "Programs/CommandLine/Commands.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Model/ModelsJSON.h"
#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/Agent.h"
#include "Programs/Agent/WindowLauncher.h"
#include "Programs/CommandLine/CostText.h"
#include "Programs/CommandLine/Moments.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/StatusText.h"
#include "Programs/CommandLine/StoredSessions.h"
#include "Programs/CommandLine/Terminal.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

using namespace exitStatus;

int reportNotRunning() {
    complain("Kestrio is not running here. Start it with: kestrio");
    return failed;
}

Seconds focusedTime(const std::vector<ActivitySession>& sessions, DateInterval interval) {
    Seconds total{};
    for (const auto& session : sessions)
        if (session.kind == SessionKind::focus)
            total +=
                std::max(Seconds(0), std::min(session.end, interval.end) - std::max(session.start, interval.start));
    return total;
}

std::string stateInWords(const AgentStatus& status, Date now, const Calendar& calendar) {
    switch (status.state) {
    case TrackingState::tracking:
        return status.live ? fmt::format("recording {}{}{}", status.live->sample.appName,
                                         status.live->sample.title.empty() ? "" : ": ", status.live->sample.title)
                           : "recording";
    case TrackingState::idle: return "idle: nobody touches anything";
    case TrackingState::away: return "away: locked, asleep or dark";
    case TrackingState::paused:
        return "paused" + (status.pausedUntil ? " " + pauseEnd(*status.pausedUntil, now, calendar) : "");
    }
    return {};
}

void printSettingsTable(const KeyValueStore& store) {
    std::size_t keyColumns = 0;
    for (const auto& setting : knownSettings())
        keyColumns = std::max(keyColumns, setting.key.size());
    const auto stored = store.storedKeys();
    std::string text;
    for (const auto& setting : knownSettings()) {
        const auto value = store.value(setting.key);
        const bool isSet = std::find(stored.begin(), stored.end(), setting.key) != stored.end();
        text += fmt::format("  {} {:<{}}  {:<16}  {}\n", isSet ? "•" : " ", setting.key, keyColumns,
                            value ? settingText(*value) : "–", setting.meaning);
    }
    print(text + "\n  • set by you\n");
}

JSON settingJSON(const std::optional<SettingValue>& value) {
    if (!value)
        return {};
    if (const auto* truth = std::get_if<bool>(&*value))
        return *truth;
    if (const auto* number = std::get_if<std::int64_t>(&*value))
        return *number;
    if (const auto* text = std::get_if<std::string>(&*value))
        return *text;
    if (const auto* dictionary = std::get_if<SettingDictionary>(&*value))
        return *dictionary;
    return settingText(*value);
}

/// Without an agent the windows are started from here. They find one another by themselves, so no bus is needed.
Background::Failure openWindowItself(const DashboardRequest& request) {
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / "kestrio-window";
    MainQueue unused;
    return WindowLauncher({unused, nullptr, program, processEnvironment}).show(request);
}

} // namespace

int record() {
    const auto style = outputStyle();
    const auto calendar = std::make_shared<Calendar>(Calendar::current());
    const SystemClock clock;
    std::string last;
    AgentOptions options;
    options.onChange = [&, calendar](const AgentStatus& status) {
        const auto line = statusLine(status, clock.now(), *calendar, style);
        // The time at the line's front always differs.
        if (line.size() < 8 || line.substr(8) == last)
            return;
        last = line.substr(8);
        if (!tryToPrint(line + "\n"))
            kill(getpid(), SIGTERM); // nobody reads any more: end in order, with everything saved
    };
    return runAgent(options);
}

int watch(bool json) {
    const auto agent = runningAgent(placesOrExit());
    if (!agent)
        return reportNotRunning();
    const auto style = outputStyle();
    const auto calendar = Calendar::current();
    const SystemClock clock;
    std::string last;
    const auto show = [&](const AgentStatus& status) {
        const auto line = json ? toJSON(status).dump(-1, ' ', false, JSON::error_handler_t::replace)
                               : statusLine(status, clock.now(), calendar, style);
        const auto telling = json || line.size() < 8 ? line : line.substr(8);
        if (std::exchange(last, telling) != telling)
            print(line + "\n");
    };
    if (const auto status = agent->status())
        show(*status);
    const auto changes = agent->observe(show);
    agent->run();
    complain("Kestrio has ended.");
    return done;
}

int status(bool json) {
    const auto places = placesOrExit();
    const auto agent = runningAgent(places);
    const auto status = agent ? agent->status() : std::nullopt;
    return withStored(places, [&](Database* database) {
        const auto calendar = Calendar::current();
        const auto now = SystemClock().now();
        const auto today = calendar.day(now);
        const auto sessions = sessionsOf(database, status, today);
        const auto focused = focusedTime(sessions, today);
        const auto lowered = agent ? agent->ownCost().value_or(AgentCost()).lowered : std::nullopt;
        if (json) {
            JSON object = toJSON(status.value_or(AgentStatus()));
            if (!status)
                for (auto& [key, value] : object.items())
                    value = nullptr;
            object["running"] = status.has_value();
            object["loweredPace"] = lowered ? toJSON(*lowered) : JSON();
            object["focusedToday"] = focused.count();
            object["sessionCount"] = database ? JSON(database->sessionCount()) : JSON(0);
            object["fileSize"] = database ? JSON(database->fileSize()) : JSON(0);
            const auto earliest = database ? database->earliestStart() : std::nullopt;
            object["earliestStart"] = earliest ? JSON(earliest->seconds()) : JSON();
            printJSON(object);
            return status ? done : failed;
        }
        std::string text;
        if (status) {
            text += fmt::format("  Kestrio {}, process {}, since {}\n", status->version, status->processIdentifier,
                                calendar.localized(status->startedAt, "EEEdMMMjmm"));
            text += fmt::format("  Now        {}\n",
                                text::fittedToColumns(stateInWords(*status, now, calendar), outputStyle().width - 13));
            if (status->unsaved > 0)
                text += fmt::format("  Unsaved    {} sessions wait in memory for the disk\n", status->unsaved);
            if (lowered)
                text += fmt::format("  Log        {}\n", loweredPaceText(*lowered, calendar));
        } else {
            text += "  Kestrio is not running.\n";
        }
        text += fmt::format("  Today      {} focused\n", Fmt::duration(focused));
        if (database)
            text += fmt::format("  Sessions   {} in {} KB, {}\n", database->sessionCount(), database->fileSize() / 1000,
                                (dataFolder(places) / Database::fileName).string());
        print(text);
        return status ? done : failed;
    });
}

int sessions(const SessionsOptions& options) {
    const auto places = placesOrExit();
    const auto calendar = Calendar::current();
    const auto now = SystemClock().now();
    const auto fromText = options.from.value_or("today");
    const auto from = parseMoment(fromText, now, calendar);
    const auto to =
        options.to ? parseMoment(*options.to, now, calendar) : std::max(now, from.value_or(now)) + Seconds(1);
    if (!from || !to) {
        complain(fmt::format("{} \"{}\" is no moment that I understand; try {}", !from ? "--from" : "--to",
                             text::fittedToColumns(!from ? fromText : *options.to, 60), momentForms));
        return wrongUsage;
    }
    if (*to <= *from) {
        complain("--to must be later than --from");
        return wrongUsage;
    }
    const auto agent = runningAgent(places);
    const auto status = agent ? agent->status() : std::nullopt;
    warnOfUnsaved(status);
    return withStored(places, [&](Database* database) {
        auto found = sessionsOf(database, status, {*from, *to});
        if (options.json) {
            auto array = JSON::array();
            for (const auto& session : found)
                array.push_back(toJSON(session));
            printJSON(array);
        } else if (found.empty()) {
            complain("nothing was recorded in that time");
        } else {
            print(sessionTable(std::move(found), calendar, outputStyle()));
        }
        return done;
    });
}

int pause(const std::optional<std::string>& length) {
    const auto calendar = Calendar::current();
    const auto now = SystemClock().now();
    std::optional<Seconds> seconds;
    if (length == "until-tomorrow") {
        seconds = calendar.day(now).end - now;
    } else if (length) {
        seconds = parseLength(*length);
        if (!seconds) {
            complain("\"" + text::fittedToColumns(*length, 60) +
                     "\" is no length of time; try 30m, 1h or until-tomorrow");
            return wrongUsage;
        }
    }
    const auto agent = runningAgent(placesOrExit());
    if (!agent)
        return reportNotRunning();
    if (const auto failure = agent->pause(seconds)) {
        complain(*failure);
        return failed;
    }
    print("Paused " + pauseEnd(seconds ? now + *seconds : distantFuture, now, calendar) + ".\n");
    return done;
}

int resume() {
    const auto agent = runningAgent(placesOrExit());
    if (!agent)
        return reportNotRunning();
    if (const auto failure = agent->resume()) {
        complain(*failure);
        return failed;
    }
    print("Recording.\n");
    return done;
}

int openDashboard(const std::optional<std::string>& page) {
    if (const auto error = page ? dashboardPageError(text::fittedToColumns(*page, 60)) : std::nullopt) {
        complain(*error);
        return wrongUsage;
    }
    const auto agent = runningAgent(placesOrExit());
    if (const auto failure = agent ? agent->openDashboard(page) : openWindowItself({page})) {
        complain(*failure);
        return failed;
    }
    return done;
}

int listSettings(bool json) {
    const auto store = openSettings(placesOrExit());
    if (!json) {
        printSettingsTable(*store);
        return done;
    }
    JSON object;
    for (const auto& setting : knownSettings())
        object[setting.key] = settingJSON(store->value(setting.key));
    printJSON(object);
    return done;
}

int getSetting(const std::string& key) {
    if (!knownSetting(key)) {
        complain("there is no setting \"" + text::fittedToColumns(key, 60) + "\"; see: kestrioctl settings list");
        return wrongUsage;
    }
    const auto value = openSettings(placesOrExit())->value(key);
    if (!value) {
        complain(key + " is not set");
        return failed;
    }
    print(settingText(*value) + "\n");
    return done;
}

int setSetting(const std::string& key, const std::string& value) {
    const auto parsed = parseSettingValue(key, value);
    if (const auto* error = std::get_if<SettingTextError>(&parsed)) {
        complain(error->message);
        return wrongUsage;
    }
    return openSettings(placesOrExit())->set(key, std::get<SettingValue>(parsed)) ? done : failed;
}

int resetSetting(const std::string& key) {
    if (!knownSetting(key)) {
        complain("there is no setting \"" + text::fittedToColumns(key, 60) + "\"; see: kestrioctl settings list");
        return wrongUsage;
    }
    return openSettings(placesOrExit())->set(key, std::nullopt) ? done : failed;
}

} // namespace kestrio
