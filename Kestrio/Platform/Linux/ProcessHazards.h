// What makes stopping a process harmful whoever it belongs to: a shell waits for it in a terminal, this program was
// started by it, a debugger holds it. From `/proc`; any thread, some microseconds each.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace kestrio {

/// What `/proc/PID/stat` says of the terminal that a process hangs on.
struct TerminalJob {
    pid_t process = 0;
    pid_t group = 0;
    pid_t session = 0;
    int terminal = 0; // 0 for none
    pid_t groupInFront = 0;

    bool isInFront() const { return terminal != 0 && group == groupInFront; }
    /// As a shell that waits for its next command: in front, and nobody waits for it.
    bool isSessionLeader() const { return process == session; }

    friend bool operator==(const TerminalJob&, const TerminalJob&) = default;
};

/// Absent when a field is missing or no number.
std::optional<TerminalJob> parseTerminalJob(std::string_view stat);

/// The process that traces, by `/proc/PID/status`; 0 for none.
pid_t parseTracer(std::string_view status);

/// Whether `process` descends from `ancestor`.
bool isAncestor(pid_t ancestor, pid_t process, const std::filesystem::path& processes = "/proc");

enum class ProcessHazard {
    jobInFront, // a shell waits for it, and would take the terminal back
    ancestor,   // of this program
    traced,     // a debugger's
};

/// The first that there is. Absent too for a process that is gone.
std::optional<ProcessHazard> processHazard(pid_t process, const std::filesystem::path& processes = "/proc");

} // namespace kestrio
