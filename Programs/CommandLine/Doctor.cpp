#include "Programs/CommandLine/Doctor.h"

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/AutostartLoginItem.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/LinuxHostFacts.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Programs/Agent/HostDesktop.h"
#include "Programs/CommandLine/Commands.h"
#include "Programs/CommandLine/CostText.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/Terminal.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using State = Finding::State;

/// The disk holds years of sessions in this; below it somebody should be told.
constexpr std::uint64_t comfortableSpace = 50'000'000;

/// Asks the desktop's readers as the agent would.
class DesktopExamination {
public:
    DesktopExamination() {
        queue_.sync([this] { desktop_ = std::make_unique<HostDesktop>(queue_, clock_, processEnvironment); });
    }
    ~DesktopExamination() {
        queue_.sync([this] { desktop_.reset(); });
    }
    DesktopExamination(const DesktopExamination&) = delete;
    DesktopExamination& operator=(const DesktopExamination&) = delete;

    std::vector<Finding> findings() {
        return queue_.sync([this] {
            auto found = screen();
            if (processEnvironment("WAYLAND_DISPLAY"))
                found.push_back(
                    {"Wayland", State::missing, "native Wayland windows cannot be seen yet",
                     "Choose an X11 session at login; here only applications under XWayland are recorded."});
            found.push_back(sessionEvents());
            return found;
        });
    }

private:
    std::vector<Finding> screen() {
        const auto display = processEnvironment("DISPLAY");
        if (!display)
            return {{"Screen", State::missing, "there is no X display here",
                     "Start Kestrio from your desktop; applications, titles and idle time are read from it."}};
        const auto front = desktop_->workspace.frontmostApplication();
        if (!desktop_->windows.hasServer())
            return {{"Screen", State::missing, "the X server " + *display + " does not answer",
                     "Check DISPLAY and XAUTHORITY."}};
        std::vector<Finding> found{{"Screen", State::fine, "X display " + *display}};
        found.push_back(frontApplication(front));
        found.push_back(windowTitles(front));
        const auto idle = desktop_->inputIdle.sinceLastInput();
        found.push_back(idle ? Finding{"Idle time", State::fine, "last input " + Fmt::duration(*idle) + " ago"}
                             : Finding{"Idle time", State::missing, "this X server does not tell it",
                                       "It needs the MIT-SCREEN-SAVER extension; without it nobody counts as idle."});
        return found;
    }

    Finding frontApplication(const std::optional<RunningApplication>& front) {
        const auto running = desktop_->workspace.runningApplications().size();
        const auto count = fmt::format("{} with a window", running);
        if (!front)
            return {"Applications", State::fine, "none in front, " + count};
        return {"Applications", State::fine,
                fmt::format("{} in front ({}), {}", front->localizedName.value_or("one without a name"),
                            front->bundleIdentifier.value_or("no identifier"), count)};
    }

    Finding windowTitles(const std::optional<RunningApplication>& front) {
        if (!desktop_->windowTitles.isGranted())
            return {"Window titles", State::missing, "not granted", "They need an X session for now."};
        const auto title = front && front->processIdentifier
                               ? desktop_->windowTitles.focusedWindowTitle(*front->processIdentifier)
                               : std::nullopt;
        return {"Window titles", State::fine, title ? "read" : "the front window has none"};
    }

    Finding sessionEvents() {
        if (const auto start = desktop_->sessionEvents.sessionStart()) {
            const auto calendar = Calendar::current();
            return {"Sleep and lock", State::fine, "logind, session since " + calendar.localized(*start, "EEEdMMMjmm")};
        }
        return {"Sleep and lock", State::missing, "logind does not answer",
                "Sleep is then seen by the clocks alone, a lock by the desktop's screen saver."};
    }

    const SystemClock clock_;
    WorkerQueue queue_{"Kestrio.doctor"};
    std::unique_ptr<HostDesktop> desktop_; // on the queue
};

Finding sessionBus() {
    const auto address = BusConnection::address(BusConnection::Bus::session);
    if (!address)
        return {"Session bus", State::missing, "none",
                "The agent records all the same, but cannot be paused or watched from here."};
    MainQueue queue;
    if (!BusConnection::open(queue, *address))
        return {"Session bus", State::missing, "does not answer at " + *address, "Check DBUS_SESSION_BUS_ADDRESS."};
    return {"Session bus", State::fine, *address};
}

Finding agent(const Locations& places) {
    const auto running = runningAgent(places);
    const auto status = running ? running->status() : std::nullopt;
    if (!status)
        return {"Agent", State::missing, "not running", "Start it with: kestrio"};
    if (status->unsaved > 0)
        return {"Agent", State::broken,
                fmt::format("process {}, {} sessions wait in memory to be saved", status->processIdentifier,
                            status->unsaved),
                "Is the disk full, or activity.sqlite in use by another program?"};
    return {"Agent", State::fine,
            fmt::format("process {}, {}", status->processIdentifier, kestrio::rawValue(status->state))};
}

/// What the program takes of the machine, where it watches that.
std::vector<Finding> ownCost(const Locations& places) {
    const auto running = runningAgent(places);
    const auto cost = running ? running->ownCost() : std::nullopt;
    const auto calendar = Calendar::current();
    if (cost && cost->lowered)
        return {{"Own cost", State::missing, loweredPaceText(*cost->lowered, calendar),
                 "Settings: a detailed reading every 5 or 10 seconds costs less."}};
    if (cost && cost->cost)
        return {{"Own cost", State::fine, costText(*cost->cost, calendar)}};
    return {};
}

Finding dataFolderFinding(const fs::path& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0)
        return {"Data folder", State::missing, folder.string() + " is not there yet", "The agent makes it."};
    struct statvfs disk {};
    const auto free = statvfs(folder.c_str(), &disk) == 0 ? disk.f_bavail * disk.f_frsize : 0;
    if (status.st_mode & 0077)
        return {"Data folder", State::broken,
                fmt::format("{}, readable by others (mode {:o})", folder.string(), status.st_mode & 07777),
                "chmod 700 " + folder.string()};
    if (free < comfortableSpace)
        return {"Data folder", State::broken, fmt::format("{}, only {} MB left", folder.string(), free / 1'000'000),
                "Make room on that disk: what cannot be saved waits in memory."};
    return {"Data folder", State::fine, fmt::format("{}, {} MB free", folder.string(), free / 1'000'000)};
}

Finding database(const fs::path& file) {
    std::error_code ignored;
    if (!fs::exists(file, ignored))
        return {"Sessions", State::missing, "nothing was recorded yet", "Start the agent with: kestrio"};
    try {
        WorkerQueue queue("Kestrio.database");
        Database database(file, queue, Database::Access::readOnly);
        const auto count = database.sessionCount();
        return {"Sessions", State::fine, fmt::format("{} in {} KB", count, database.fileSize() / 1000)};
    } catch (const DatabaseError& error) {
        return {"Sessions", State::broken, error.what(), "Move " + file.string() + " aside; a new one will be made."};
    }
}

Finding settings(const Locations& places) {
    const auto store = openSettings(places);
    const auto set = store->storedKeys().size();
    return {"Settings", State::fine, fmt::format("{}, {} set by you", places.settingsFile().string(), set)};
}

Finding loginItem(const Locations& places) {
    std::error_code ignored;
    const auto program = fs::read_symlink("/proc/self/exe", ignored).parent_path() / "kestrio";
    const bool enabled = AutostartLoginItem(places.autostartFolder(), program).isEnabled();
    return {"Start at login", State::fine, enabled ? "on" : "off"};
}

Finding machine() {
    const auto text = AppInfo::diagnostics(hostFacts());
    std::string line;
    for (const char c : text)
        line += c == '\n' ? std::string(" · ") : std::string(1, c);
    return {"This machine", State::fine, line};
}

} // namespace

std::string_view rawValue(State state) {
    switch (state) {
    case State::fine: return "fine";
    case State::missing: return "missing";
    case State::broken: return "broken";
    }
    return {};
}

nlohmann::ordered_json toJSON(const Finding& finding) {
    return {{"name", finding.name},
            {"state", rawValue(finding.state)},
            {"answer", finding.answer},
            {"remedy", finding.remedy.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(finding.remedy)}};
}

std::string findingsText(const std::vector<Finding>& findings, const TableStyle& style) {
    constexpr std::size_t nameColumns = 15;
    const auto mark = [&](State state) -> std::string {
        const char* sign = state == State::fine ? "✓" : state == State::missing ? "○" : "✗";
        const char* code = state == State::fine ? "32" : state == State::missing ? "33" : "31";
        return style.hasColour ? fmt::format("\x1B[{}m{}\x1B[0m", code, sign) : sign;
    };
    std::string text;
    for (const auto& finding : findings) {
        text += fmt::format(
            "  {} {:<{}} {}\n", mark(finding.state), finding.name, nameColumns,
            text::fittedToColumns(finding.answer, std::max<std::size_t>(style.width, 60) - nameColumns - 5));
        if (!finding.remedy.empty())
            text += fmt::format("    {:<{}} {}\n", "", nameColumns, finding.remedy);
    }
    const auto count = [&](State state) {
        return std::count_if(findings.begin(), findings.end(),
                             [&](const auto& finding) { return finding.state == state; });
    };
    const auto broken = count(State::broken);
    const auto missing = count(State::missing);
    if (broken == 0 && missing == 0)
        return text + "\n  Everything answers.\n";
    return text + fmt::format("\n  {} broken, {} missing.\n", broken, missing);
}

int doctor(bool json) {
    const auto places = placesOrExit();
    std::vector<Finding> findings{machine()};
    auto desktop = DesktopExamination().findings();
    std::move(desktop.begin(), desktop.end(), std::back_inserter(findings));
    findings.push_back(sessionBus());
    findings.push_back(agent(places));
    std::ranges::move(ownCost(places), std::back_inserter(findings));
    findings.push_back(dataFolderFinding(dataFolder(places)));
    findings.push_back(database(dataFolder(places) / Database::fileName));
    findings.push_back(settings(places));
    findings.push_back(loginItem(places));
    if (json) {
        auto array = nlohmann::ordered_json::array();
        for (const auto& finding : findings)
            array.push_back(toJSON(finding));
        printJSON(array);
    } else {
        print(findingsText(findings, outputStyle()));
    }
    return std::any_of(findings.begin(), findings.end(), [](const auto& f) { return f.state == State::broken; }) ? 1
                                                                                                                 : 0;
}

} // namespace kestrio
