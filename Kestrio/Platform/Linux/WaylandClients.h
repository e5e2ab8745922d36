// Which processes talk to a Wayland compositor. One that is stopped while a window of it can be seen does not read what
// the compositor sends it, and is disconnected for that when the buffer is full; and no compositor tells everybody
// which windows can be seen.
//
// From the kernel's list of sockets and `/proc`; any thread. Takes some hundred microseconds, so it is asked right
// before a stop.
#pragma once

#include <filesystem>
#include <set>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// Whether a socket of this path is a compositor's, by the names that they all give them: "wayland-0" and so on.
bool isCompositorSocket(std::string_view path);

/// Those of the processes that have a connection to a compositor. All of them where the kernel lists no sockets, but a
/// compositor is there.
std::vector<pid_t> waylandClients(const std::vector<pid_t>& processes, const std::filesystem::path& procfs = "/proc");

} // namespace kestrio
