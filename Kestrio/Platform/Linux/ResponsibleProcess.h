// Which process stands for the application that another one works for: a browser's main process for the helper that
// makes its sound, a terminal for the command that runs in it.
//
// Reads two small files for each generation (20 µs), some five on a desktop. Never blocks; callable from any thread.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// The parent and the short name of a process, from the text of `/proc/PID/stat`. The name may hold anything.
struct ProcessDescent {
    pid_t parent = 0;
    std::string_view name; // points into the text
    char state = '?';      // as the kernel writes it; 'T' is stopped
};
std::optional<ProcessDescent> processDescent(std::string_view stat);

/// Whether somebody has stopped the process, so that it answers nobody. False for one that is gone.
bool isProcessStopped(pid_t process, const std::filesystem::path& root = "/proc");

/// The process and those that it works for, nearest first; the last one is the responsible process: the one that the
/// desktop made an application's control group for, else the highest below the session's own machinery. Empty when the
/// process is gone, or is such machinery itself. `root` is `/proc`, or a folder like it.
std::vector<pid_t> responsibleProcesses(pid_t process, const std::filesystem::path& root = "/proc");

} // namespace kestrio
