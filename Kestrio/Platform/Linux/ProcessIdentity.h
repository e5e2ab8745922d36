// What a process tells of the application that it belongs to: its control group, its sandbox, its environment, its
// command. Parsing is free functions over the kernel's texts, which may hold any bytes. Reading takes some 10 µs per
// file and never blocks; whatever cannot be read is absent. Callable from any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// The desktop id in the name of the unit that the desktop made for an application: the innermost of the form
/// `app[-LAUNCHER]-ID-RANDOM.scope`, `app[-LAUNCHER]-ID[@RANDOM].service` or `dbus-…-ID@N.service`. Absent in other
/// groups. `text` is that of `/proc/PID/cgroup`.
std::optional<std::string> applicationOfControlGroup(std::string_view text);

/// The desktop id of an application out of a snap: `NAME_APP`, from `snap.NAME.APP…`.
std::optional<std::string> snapApplicationOfControlGroup(std::string_view text);

/// The name of a unit with systemd's escapes (`\x2d`) undone.
std::string unescapedUnitName(std::string_view name);

/// The application's id from the text of `/.flatpak-info` in the root of a Flatpak.
std::optional<std::string> applicationOfFlatpakInfo(std::string_view text);

/// The desktop file that the process was started from, from the bytes of `/proc/PID/environ`. Absent when it was not
/// this process, but one that it descends from.
std::optional<std::filesystem::path> launchedDesktopFile(std::string_view environment, pid_t process);

/// The arguments out of `/proc/PID/cmdline`.
std::vector<std::string> commandArguments(std::string_view text);

/// When the process started, in ticks since the start of the machine, from the text of `/proc/PID/stat`.
std::optional<std::uint64_t> startTicks(std::string_view text);

/// The process that started it, or that took it over since, from the same text.
std::optional<pid_t> parentProcess(std::string_view text);

/// Whether a program of this file name runs others under its own name: shells, interpreters, virtual machines.
bool isInterpreter(std::string_view fileName);

/// All of it for one process.
struct ProcessEvidence {
    std::optional<std::string> unitApplication;
    std::optional<std::string> sandboxApplication; // Flatpak or Snap
    std::optional<std::filesystem::path> desktopFile;
    std::optional<std::filesystem::path> executable;
    /// The file names under which the program may stand in a desktop file: of its executable and of the first
    /// argument, or, behind an interpreter, of the script that it runs.
    std::vector<std::string> programNames;
};

/// What the kernel writes into a file below `/proc`, up to 256 KiB. Absent when the process is gone or not ours to
/// read.
std::optional<std::string> readProcessFile(const std::filesystem::path& path);

/// `root` is `/proc`, or a folder like it.
ProcessEvidence readProcessEvidence(const std::filesystem::path& root, pid_t process);

/// The path of the program that a process runs: of its executable, or behind an interpreter of the script; inside a
/// Flatpak the place on the host. Somebody else's process shows at best what it was called by. Absent for a kernel
/// thread and for one that calls itself by no path.
std::optional<std::filesystem::path> readProgram(const std::filesystem::path& root, pid_t process);

/// Where the files of a Flatpak lie on the host, which the sandbox sees as `/app`.
std::optional<std::filesystem::path> placeOfFlatpak(std::string_view flatpakInfo);

std::optional<std::uint64_t> readStartTicks(const std::filesystem::path& root, pid_t process);
std::optional<pid_t> readParent(const std::filesystem::path& root, pid_t process);

} // namespace kestrio
