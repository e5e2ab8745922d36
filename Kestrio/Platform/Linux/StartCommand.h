// Starting an installed application by its desktop file. Any thread that may use the entry.
#pragma once

#include "Kestrio/Platform/Linux/DesktopEntries.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// The command line that starts the application without a file or an address; an argument may be appended. One for
/// terminals is started in the terminal that the person prefers. Absent when the file names no program, or the host no
/// terminal.
std::optional<std::vector<std::string>> startCommand(const DesktopEntry& entry, const Environment& environment);

/// Whether the application runs in a sandbox that keeps it from starting programs of the host: a Flatpak or a Snap.
bool isSandboxed(const DesktopEntry& entry);

} // namespace kestrio
