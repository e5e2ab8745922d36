#include "Kestrio/Platform/Linux/SystemMonitorPrograms.h"

#include "Kestrio/Platform/Linux/CatalogueLines.h"
#include "Kestrio/Platform/Linux/EmbeddedCatalogue.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Whether a list such as "ubuntu:GNOME" has the desktop.
bool isOfDesktop(std::string_view current, std::string_view desktop) {
    while (!current.empty())
        if (takeUpTo(':', current) == desktop)
            return true;
    return false;
}

bool isInPath(const Environment& environment, std::string_view program) {
    const auto path = environment("PATH").value_or("");
    for (std::string_view rest = path; !rest.empty();)
        if (access((fs::path(takeUpTo(':', rest)) / program).c_str(), X_OK) == 0)
            return true;
    return false;
}

/// What starts a program in the terminal that the person prefers. Empty where nothing of the host knows which it is.
std::vector<std::string> terminalCommand(const Environment& environment) {
    if (isInPath(environment, "xdg-terminal-exec"))
        return {"xdg-terminal-exec"};
    if (isInPath(environment, "x-terminal-emulator"))
        return {"x-terminal-emulator", "-e"};
    return {};
}

std::optional<std::vector<std::string>> commandOf(const DesktopEntry& entry, const Environment& environment) {
    if (entry.program.empty())
        return std::nullopt;
    if (fs::path(entry.program).filename() == "flatpak")
        return std::vector<std::string>{entry.program, "run", entry.id};
    if (!entry.runsInTerminal)
        return std::vector<std::string>{entry.program};
    auto command = terminalCommand(environment);
    if (command.empty())
        return std::nullopt;
    command.push_back(entry.program);
    return command;
}

} // namespace

std::vector<SystemMonitorProgram> systemMonitorPrograms() {
    return parseSystemMonitorPrograms(embedded::systemMonitors);
}

std::vector<SystemMonitorProgram> parseSystemMonitorPrograms(std::string_view text) {
    std::vector<SystemMonitorProgram> programs;
    visitCatalogueLines(text, [&](std::string_view desktop, std::string_view desktopID) {
        programs.push_back({desktop, desktopID});
    });
    return programs;
}

std::optional<std::vector<std::string>> systemMonitorCommand(DesktopEntries& entries, const Environment& environment) {
    auto programs = systemMonitorPrograms();
    const auto current = environment("XDG_CURRENT_DESKTOP").value_or("");
    std::stable_partition(programs.begin(), programs.end(),
                          [&](const SystemMonitorProgram& program) { return isOfDesktop(current, program.desktop); });
    for (const auto& program : programs)
        if (const auto* entry = entries.byID(program.desktopID))
            if (auto command = commandOf(*entry, environment))
                return command;
    return std::nullopt;
}

} // namespace kestrio
