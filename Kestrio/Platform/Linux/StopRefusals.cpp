#include "Kestrio/Platform/Linux/StopRefusals.h"

#include "Kestrio/Platform/Linux/ProcessHazards.h"
#include "Kestrio/Platform/Linux/WaylandClients.h"
#include "Kestrio/Platform/Linux/X11Selections.h"

#include <algorithm>

namespace kestrio {
namespace {

constexpr auto holdsSelection = "it holds what you copied or selected.";
constexpr auto wouldBeDisconnected = "it has a window that would be disconnected.";

std::string words(ProcessHazard hazard) {
    switch (hazard) {
    case ProcessHazard::jobInFront: return "a terminal waits for it.";
    case ProcessHazard::ancestor: return "Kestrio was started by it.";
    case ProcessHazard::traced: return "a debugger is attached to it.";
    }
    return {};
}

std::vector<pid_t> numbers(const std::vector<ProcessKey>& processes) {
    std::vector<pid_t> all;
    std::ranges::transform(processes, std::back_inserter(all), &ProcessKey::pid);
    return all;
}

} // namespace

StopRefusals::StopRefusals(X11Connection& connection, std::filesystem::path processes)
    : connection_(connection), processes_(std::move(processes)) {}

std::optional<std::string> StopRefusals::beforeStop(const std::vector<ProcessKey>& processes) {
    const auto all = numbers(processes);
    for (const auto process : all)
        if (const auto hazard = processHazard(process, processes_))
            return words(*hazard);
    const auto holders = selectionHolders(connection_);
    if (std::ranges::find_first_of(all, holders) != all.end())
        return holdsSelection;
    if (!waylandClients(all, processes_).empty())
        return wouldBeDisconnected;
    return std::nullopt;
}

std::optional<std::string> StopRefusals::whileStopped(ProcessKey main) const {
    const auto hazard = processHazard(main.pid, processes_);
    return hazard ? std::optional(words(*hazard)) : std::nullopt;
}

} // namespace kestrio
