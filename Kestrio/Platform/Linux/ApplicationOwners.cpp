#include "Kestrio/Platform/Linux/ApplicationOwners.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/ResponsibleProcess.h"

namespace kestrio {
namespace {

std::string folded(std::string_view text) {
    return text::folded(text, text::Ignoring::caseOnly);
}

/// Some give the name of their desktop file, others the path of their program.
std::string_view bareName(std::string_view name) {
    constexpr std::string_view suffix = ".desktop";
    name = name.substr(name.rfind('/') + 1);
    return name.ends_with(suffix) ? name.substr(0, name.size() - suffix.size()) : name;
}

} // namespace

std::optional<std::string> ApplicationOwners::bundleIdentifier(const ApplicationTrace& trace) {
    const auto running = workspace_.runningApplications();
    if (trace.process)
        if (auto identifier = ofProcess(*trace.process, running))
            return identifier;
    return ofName(trace.name, running);
}

std::optional<std::string> ApplicationOwners::ofProcess(pid_t process, const std::vector<RunningApplication>& running) {
    const auto line = responsibleProcesses(process, identity_.processes());
    for (const auto each : line)
        for (const auto& application : running)
            if (application.processIdentifier == each && application.bundleIdentifier)
                return application.bundleIdentifier;
    if (line.empty())
        return std::nullopt;
    return identity_.identify({line.back(), ""}).bundleIdentifier;
}

std::optional<std::string> ApplicationOwners::ofName(std::string_view name,
                                                     const std::vector<RunningApplication>& running) {
    name = bareName(name);
    if (name.empty())
        return std::nullopt;
    const auto wanted = folded(name);
    for (const auto& application : running)
        if (folded(application.localizedName.value_or("")) == wanted)
            return application.bundleIdentifier;
    return identity_.identify({std::nullopt, std::string(name)}).bundleIdentifier;
}

} // namespace kestrio
