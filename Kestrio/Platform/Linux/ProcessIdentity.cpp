#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fcntl.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t longestFile = 256 * 1024; // an environment is rarely above 10 KiB

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

template <class Number>
std::optional<Number> number(std::string_view text, int base = 10) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// The path of the group in the hierarchy that systemd manages.
std::string_view groupPath(std::string_view text) {
    std::string_view found;
    for (const auto line : split(text, '\n')) {
        const auto first = line.find(':');
        const auto second = first == std::string_view::npos ? first : line.find(':', first + 1);
        if (second == std::string_view::npos)
            continue;
        const auto controllers = line.substr(first + 1, second - first - 1);
        if (controllers == "name=systemd" || (controllers.empty() && found.empty()))
            found = line.substr(second + 1);
    }
    return found;
}

/// Random parts are a process number, a serial number, or hexadecimal digits of some length.
bool looksRandom(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isHexDigit) &&
           (text.size() >= 6 || std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }));
}

std::optional<std::string> idOfParts(std::vector<std::string_view> parts) {
    if (parts.size() > 1)
        parts.erase(parts.begin()); // the launcher
    // A launcher that escapes nothing leaves the dashes of the id in place.
    std::string id;
    for (const auto part : parts)
        id += (id.empty() ? "" : "-") + unescapedUnitName(part);
    return id.empty() ? std::nullopt : std::optional(std::move(id));
}

std::optional<std::string> applicationOfUnit(std::string_view unit) {
    const bool isScope = unit.ends_with(".scope");
    if (!isScope && !unit.ends_with(".service"))
        return std::nullopt;
    unit = unit.substr(0, unit.rfind('.'));
    const auto instance = unit.find('@');
    const bool hasInstance = instance != std::string_view::npos;
    if (!isScope)
        unit = unit.substr(0, instance);
    auto parts = split(unit, '-');
    const auto kind = parts.front();
    parts.erase(parts.begin());
    if (kind == "dbus" && parts.size() >= 2)
        return idOfParts(std::move(parts));
    if (kind != "app" || parts.empty())
        return std::nullopt;
    if (isScope) {
        if (parts.size() < 2)
            return std::nullopt;
        parts.pop_back();
    } else if (!hasInstance && parts.size() > 1 && looksRandom(parts.back())) {
        parts.pop_back();
    }
    return idOfParts(std::move(parts));
}

std::string_view withoutCarriageReturn(std::string_view line) {
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

/// What stands behind the key in the group of that header; absent when that is nothing.
std::optional<std::string> valueOfFlatpakInfo(std::string_view text, std::string_view header, std::string_view key) {
    bool isInGroup = false;
    for (const auto raw : split(text, '\n')) {
        const auto line = withoutCarriageReturn(raw);
        if (line.starts_with('['))
            isInGroup = line == header;
        else if (isInGroup && line.starts_with(key) && line.size() > key.size())
            return std::string(line.substr(key.size()));
    }
    return std::nullopt;
}

constexpr std::size_t firstStatField = 3;

/// The fields of `/proc/PID/stat` from the third on, by the kernel's count.
std::vector<std::string_view> statFields(std::string_view text) {
    // The name in brackets may hold anything, brackets, blanks and line breaks too.
    const auto bracket = text.rfind(')');
    if (bracket == std::string_view::npos)
        return {};
    text.remove_prefix(std::min(bracket + 2, text.size()));
    return split(text.substr(0, text.find('\n')), ' ');
}

std::string fileName(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

/// The kernel adds this to the name of a program that was replaced while it ran.
std::string_view withoutDeletedMark(std::string_view path) {
    constexpr std::string_view mark = " (deleted)";
    return path.ends_with(mark) ? path.substr(0, path.size() - mark.size()) : path;
}

std::optional<fs::path> readExecutable(const fs::path& folder) {
    std::error_code error;
    const auto target = fs::read_symlink(folder / "exe", error);
    if (error)
        return std::nullopt;
    return fs::path(withoutDeletedMark(target.native()));
}

std::vector<std::string> programNames(const std::optional<fs::path>& executable,
                                      const std::vector<std::string>& arguments) {
    std::vector<std::string> names;
    const auto add = [&names](std::string name) {
        if (!name.empty() && !isInterpreter(name) && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    };
    if (executable)
        add(executable->filename().native());
    if (arguments.empty())
        return names;
    // Some programs write one text with blanks over their arguments.
    const auto& first = arguments.front();
    add(fileName(arguments.size() == 1 ? std::string_view(first).substr(0, first.find(' ')) : first));
    if (isInterpreter(executable ? executable->filename().native() : fileName(first)))
        for (std::size_t i = 1; i < arguments.size(); ++i)
            if (!arguments[i].starts_with('-')) {
                add(fileName(arguments[i]));
                break;
            }
    return names;
}

/// The script that an interpreter was started with. Absent where it takes its program from an option or from input.
std::optional<fs::path> scriptOf(const std::vector<std::string>& arguments, const fs::path& folder) {
    if (arguments.size() < 2 || arguments[1].starts_with('-') || arguments[1].empty())
        return std::nullopt;
    const fs::path script = arguments[1];
    if (script.is_absolute())
        return script.lexically_normal();
    std::error_code error;
    const auto at = fs::read_symlink(folder / "cwd", error);
    return error ? std::nullopt : std::optional((at / script).lexically_normal());
}

/// What lies below `/app` in a Flatpak is another file for each of them; on the host its place is its own.
fs::path placeOnHost(const fs::path& path, const fs::path& folder) {
    constexpr std::string_view sandboxed = "/app/";
    if (!path.native().starts_with(sandboxed))
        return path;
    const auto info = readProcessFile(folder / "root" / ".flatpak-info");
    const auto place = info ? placeOfFlatpak(*info) : std::nullopt;
    return place ? *place / path.native().substr(sandboxed.size()) : path;
}

} // namespace

std::optional<std::string> readProcessFile(const fs::path& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return std::nullopt;
    std::string content;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while (content.size() < longestFile && (count = read(descriptor, buffer.data(), buffer.size())) > 0)
        content.append(buffer.data(), static_cast<std::size_t>(count));
    close(descriptor);
    return count < 0 ? std::nullopt : std::optional(std::move(content));
}

std::string unescapedUnitName(std::string_view name) {
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto code = name.substr(i, 4);
        if (code.size() == 4 && code.starts_with("\\x") && isHexDigit(code[2]) && isHexDigit(code[3])) {
            result += static_cast<char>(*number<unsigned>(code.substr(2), 16));
            i += 3;
        } else {
            result += name[i];
        }
    }
    return result;
}

std::optional<std::string> applicationOfControlGroup(std::string_view text) {
    const auto units = split(groupPath(text), '/');
    for (auto unit = units.rbegin(); unit != units.rend(); ++unit)
        if (auto id = applicationOfUnit(*unit))
            return id;
    return std::nullopt;
}

std::optional<std::string> snapApplicationOfControlGroup(std::string_view text) {
    for (const auto unit : split(groupPath(text), '/')) {
        if (!unit.starts_with("snap.") || (!unit.ends_with(".scope") && !unit.ends_with(".service")))
            continue;
        // snap.NAME.APP.scope, with .RANDOM or -RANDOM behind the application's name
        const auto parts = split(unit.substr(0, unit.rfind('.')), '.');
        if (parts.size() < 3)
            continue;
        auto application = unescapedUnitName(parts[2]);
        constexpr std::size_t uuid = 36;
        if (application.size() > uuid + 1 && application[application.size() - uuid - 1] == '-')
            application.resize(application.size() - uuid - 1);
        return unescapedUnitName(parts[1]) + "_" + application;
    }
    return std::nullopt;
}

std::optional<std::string> applicationOfFlatpakInfo(std::string_view text) {
    return valueOfFlatpakInfo(text, "[Application]", "name=");
}

std::optional<fs::path> placeOfFlatpak(std::string_view text) {
    return valueOfFlatpakInfo(text, "[Instance]", "app-path=");
}

std::optional<fs::path> launchedDesktopFile(std::string_view environment, pid_t process) {
    constexpr std::string_view fileKey = "GIO_LAUNCHED_DESKTOP_FILE=";
    constexpr std::string_view processKey = "GIO_LAUNCHED_DESKTOP_FILE_PID=";
    std::string_view file;
    std::optional<pid_t> launched;
    for (const auto entry : split(environment, '\0')) {
        if (entry.starts_with(fileKey))
            file = entry.substr(fileKey.size());
        else if (entry.starts_with(processKey))
            launched = number<pid_t>(entry.substr(processKey.size()));
    }
    return !file.empty() && launched == process ? std::optional(fs::path(file)) : std::nullopt;
}

std::vector<std::string> commandArguments(std::string_view text) {
    std::vector<std::string> arguments;
    if (text.ends_with('\0'))
        text.remove_suffix(1);
    if (text.empty())
        return arguments;
    for (const auto argument : split(text, '\0'))
        arguments.emplace_back(argument);
    return arguments;
}

std::optional<std::uint64_t> startTicks(std::string_view text) {
    constexpr std::size_t start = 22;
    const auto fields = statFields(text);
    return fields.size() > start - firstStatField ? number<std::uint64_t>(fields[start - firstStatField])
                                                  : std::nullopt;
}

std::optional<pid_t> parentProcess(std::string_view text) {
    constexpr std::size_t parent = 4;
    const auto fields = statFields(text);
    return fields.size() > parent - firstStatField ? number<pid_t>(fields[parent - firstStatField]) : std::nullopt;
}

bool isInterpreter(std::string_view name) {
    // Versions are part of the name: python3.11, perl5.36.0, lua5.4.
    while (!name.empty() && ((name.back() >= '0' && name.back() <= '9') || name.back() == '.' || name.back() == '-'))
        name.remove_suffix(1);
    constexpr std::string_view known[] = {
        "ash",  "bash",      "bwrap", "cjs",         "cjs-console", "dash",           "deno",   "electron", "env",
        "fish", "flatpak",   "gjs",   "gjs-console", "java",        "javaw",          "ksh",    "lua",      "luajit",
        "mono", "mono-sgen", "node",  "nodejs",      "perl",        "pkexec",         "python", "pythonw",  "qml",
        "ruby", "sh",        "snap",  "sudo",        "wine",        "wine-preloader", "wish",   "zsh"};
    return std::find(std::begin(known), std::end(known), name) != std::end(known);
}

ProcessEvidence readProcessEvidence(const fs::path& root, pid_t process) {
    const auto folder = root / std::to_string(process);
    ProcessEvidence evidence;
    if (const auto group = readProcessFile(folder / "cgroup")) {
        evidence.unitApplication = applicationOfControlGroup(*group);
        evidence.sandboxApplication = snapApplicationOfControlGroup(*group);
    }
    if (const auto info = readProcessFile(folder / "root" / ".flatpak-info"))
        evidence.sandboxApplication = applicationOfFlatpakInfo(*info);
    if (const auto environment = readProcessFile(folder / "environ"))
        evidence.desktopFile = launchedDesktopFile(*environment, process);
    evidence.executable = readExecutable(folder);
    evidence.programNames =
        programNames(evidence.executable, commandArguments(readProcessFile(folder / "cmdline").value_or("")));
    return evidence;
}

std::optional<fs::path> readProgram(const fs::path& root, pid_t process) {
    const auto folder = root / std::to_string(process);
    const auto executable = readExecutable(folder);
    if (executable && !isInterpreter(executable->filename().native()))
        return placeOnHost(*executable, folder);
    const auto arguments = commandArguments(readProcessFile(folder / "cmdline").value_or(""));
    if (executable)
        return placeOnHost(scriptOf(arguments, folder).value_or(*executable), folder);
    return !arguments.empty() && fs::path(arguments.front()).is_absolute() ? std::optional(fs::path(arguments.front()))
                                                                           : std::nullopt;
}

std::optional<std::uint64_t> readStartTicks(const fs::path& root, pid_t process) {
    const auto text = readProcessFile(root / std::to_string(process) / "stat");
    return text ? startTicks(*text) : std::nullopt;
}

std::optional<pid_t> readParent(const fs::path& root, pid_t process) {
    const auto text = readProcessFile(root / std::to_string(process) / "stat");
    return text ? parentProcess(*text) : std::nullopt;
}

} // namespace kestrio
