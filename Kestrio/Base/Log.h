// The log for whoever looks after the machine: plain lines that begin with "Kestrio", no levels. What the person
// should know reaches them as a page, an alert or a notification, never through here. No title or address of
// anything the person did goes into a line.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kestrio {

/// Writes one line; any thread, does not block on a slow reader of the journal. Line breaks become blanks.
///
/// Under systemd standard error is the journal already. Otherwise the line goes to the system log, which is the
/// journal where there is one, and to standard error too, for whoever watches it.
void logLine(std::string_view line);

/// Receives the lines in place of the system log from now on; an empty one restores that. For tests and for programs
/// that show the log themselves. Returns the one it replaces.
using LogReceiver = std::function<void(std::string_view)>;
LogReceiver setLogReceiver(LogReceiver receiver);

} // namespace kestrio
