// The application of this host that shows all that the machine is doing, for people who want to know more than our own
// panel tells. Which ones there are is data, kept in `Catalogue/SystemMonitors.tsv` and built into the program.
#pragma once

#include "Kestrio/Platform/Linux/DesktopEntries.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct SystemMonitorProgram {
    std::string_view desktop; // whose own one it is; "-" for one of nobody's
    std::string_view desktopID;
    friend bool operator==(const SystemMonitorProgram&, const SystemMonitorProgram&) = default;
};

/// What is built in, in order of preference; the texts live as long as the program. Any thread.
std::vector<SystemMonitorProgram> systemMonitorPrograms();

/// The programs that a list names: a line is a desktop and, separated by tabs, desktop ids. "#" begins a comment, in a
/// line of its own. They point into the text.
std::vector<SystemMonitorProgram> parseSystemMonitorPrograms(std::string_view text);

/// The command line that starts the first of them that is installed, those of this session's desktop before the others.
/// One for terminals is started in the terminal that the person prefers, where the host tells which that is. Absent
/// when there is none. On the entries' queue.
std::optional<std::vector<std::string>> systemMonitorCommand(DesktopEntries& entries, const Environment& environment);

} // namespace kestrio
