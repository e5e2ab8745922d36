#include "Kestrio/Platform/Linux/StartCommand.h"

#include "Kestrio/Platform/Linux/CatalogueLines.h"

#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

bool isInPath(const Environment& environment, std::string_view program) {
    const auto path = environment("PATH").value_or("");
    for (std::string_view rest = path; !rest.empty();)
        if (access((fs::path(takeUpTo(':', rest)) / program).c_str(), X_OK) == 0)
            return true;
    return false;
}

/// What starts a program in the terminal that the person prefers. Empty where nothing of the host knows which it is.
std::vector<std::string> terminalCommand(const Environment& environment) {
    if (isInPath(environment, "xdg-terminal-exec"))
        return {"xdg-terminal-exec"};
    if (isInPath(environment, "x-terminal-emulator"))
        return {"x-terminal-emulator", "-e"};
    return {};
}

} // namespace

std::optional<std::vector<std::string>> startCommand(const DesktopEntry& entry, const Environment& environment) {
    if (entry.program.empty())
        return std::nullopt;
    if (fs::path(entry.program).filename() == "flatpak")
        return std::vector<std::string>{entry.program, "run", entry.id};
    if (!entry.runsInTerminal)
        return std::vector<std::string>{entry.program};
    auto command = terminalCommand(environment);
    if (command.empty())
        return std::nullopt;
    command.push_back(entry.program);
    return command;
}

bool isSandboxed(const DesktopEntry& entry) {
    const fs::path program(entry.program);
    return program.filename() == "flatpak" || program.parent_path() == "/snap/bin";
}

} // namespace kestrio
