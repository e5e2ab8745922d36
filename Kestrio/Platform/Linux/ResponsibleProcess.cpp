#include "Kestrio/Platform/Linux/ResponsibleProcess.h"

#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/SessionMachinery.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace kestrio {
namespace {

constexpr std::size_t mostGenerations = 64;

constexpr std::string_view shells[] = {"sh", "dash", "bash", "zsh", "fish", "ksh"};

struct Generation {
    pid_t process = 0;
    pid_t parent = 0;
    std::string name;
    std::optional<std::string> application; // of its control group
};

std::optional<Generation> read(pid_t process, const std::filesystem::path& root) {
    if (process <= 1)
        return std::nullopt;
    const auto folder = root / std::to_string(process);
    const auto stat = readProcessFile(folder / "stat");
    const auto descent = stat ? processDescent(*stat) : std::nullopt;
    if (!descent)
        return std::nullopt;
    const auto group = readProcessFile(folder / "cgroup");
    return Generation{process, descent->parent, std::string(descent->name),
                      group ? applicationOfControlGroup(*group) : std::nullopt};
}

/// A script that starts a session, or something in it, stands between the machinery and what it started.
bool isSessionScript(const Generation& generation, const std::filesystem::path& root) {
    if (std::find(std::begin(shells), std::end(shells), generation.name) == std::end(shells))
        return false;
    const auto parent = read(generation.parent, root);
    return !parent || isSessionMachinery(parent->name);
}

} // namespace

std::optional<ProcessDescent> processDescent(std::string_view stat) {
    // The name in brackets may hold anything, brackets, blanks and line breaks too.
    const auto open = stat.find('(');
    const auto close = stat.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open || stat.size() < close + 5)
        return std::nullopt;
    ProcessDescent descent;
    descent.name = stat.substr(open + 1, close - open - 1);
    descent.state = stat[close + 2];
    const auto number = stat.substr(close + 4);
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), descent.parent);
    return error == std::errc() && descent.parent >= 0 ? std::optional(descent) : std::nullopt;
}

bool isProcessStopped(pid_t process, const std::filesystem::path& root) {
    const auto stat = readProcessFile(root / std::to_string(process) / "stat");
    const auto descent = stat ? processDescent(*stat) : std::nullopt;
    return descent && (descent->state == 'T' || descent->state == 't');
}

std::vector<pid_t> responsibleProcesses(pid_t process, const std::filesystem::path& root) {
    std::vector<pid_t> line;
    auto current = read(process, root);
    if (!current || isSessionMachinery(current->name))
        return line;
    const auto application = current->application;
    line.push_back(process);
    while (line.size() < mostGenerations) {
        current = read(current->parent, root);
        if (!current || isSessionMachinery(current->name) || isSessionScript(*current, root))
            break;
        if (application && current->application != application)
            break; // it started this application's group and is not in it
        line.push_back(current->process);
    }
    return line;
}

} // namespace kestrio
