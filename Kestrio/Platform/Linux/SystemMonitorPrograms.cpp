#include "Kestrio/Platform/Linux/SystemMonitorPrograms.h"

#include "Kestrio/Platform/Linux/CatalogueLines.h"
#include "Kestrio/Platform/Linux/EmbeddedCatalogue.h"
#include "Kestrio/Platform/Linux/StartCommand.h"

#include <algorithm>

namespace kestrio {
namespace {

/// Whether a list such as "ubuntu:GNOME" has the desktop.
bool isOfDesktop(std::string_view current, std::string_view desktop) {
    while (!current.empty())
        if (takeUpTo(':', current) == desktop)
            return true;
    return false;
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
            if (auto command = startCommand(*entry, environment))
                return command;
    return std::nullopt;
}

} // namespace kestrio
