#include "Kestrio/Optimizer/JournaledHolding.h"

#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"

#include <algorithm>
#include <optional>

namespace kestrio {

JournaledHolding::JournaledHolding(ProcessTable& table, ProcessControl& control, SafetyNet& safetyNet)
    : table_(table), control_(control), safetyNet_(safetyNet) {}

ProcessesByMain JournaledHolding::processes(const std::set<pid_t>& mainProcesses) {
    ProcessesByMain found;
    for (const auto main : mainProcesses) {
        if (const auto counters = table_.counters(main))
            found[main].push_back({main, counters->start});
    }
    if (found.empty())
        return found;
    for (const auto process : table_.processes()) {
        const auto application = found.find(table_.responsible(process).value_or(process));
        if (application == found.end() || application->first == process)
            continue;
        if (const auto counters = table_.counters(process))
            application->second.push_back({process, counters->start});
    }
    return found;
}

std::vector<ProcessKey> JournaledHolding::freeze(const std::vector<ProcessKey>& keys) {
    return control_.freeze(keys);
}

void JournaledHolding::resume(const std::vector<ProcessKey>& keys) {
    control_.resume(keys);
}

std::vector<ProcessKey> JournaledHolding::slow(const std::vector<ProcessKey>& keys) {
    std::vector<ProcessKey> slowed;
    for (const auto& process : control_.slow(keys))
        slowed.push_back(process.key);
    return slowed;
}

void JournaledHolding::restore(const std::vector<ProcessKey>& keys) {
    if (!keys.empty())
        control_.restore(withPriorities(keys));
}

void JournaledHolding::record(const std::vector<ProcessKey>& frozen, const std::vector<ProcessKey>& slowed) {
    safetyNet_.record(frozen, withPriorities(slowed));
}

void JournaledHolding::startWatcher() {
    safetyNet_.startWatcher();
}

std::size_t JournaledHolding::recoverEarlierRuns() {
    return safetyNet_.recoverEarlierRuns();
}

/// What is slowed stands in the journal with what to restore; a process that doesn't gets back what is usual.
std::vector<SlowedProcess> JournaledHolding::withPriorities(const std::vector<ProcessKey>& keys) const {
    const auto& held = safetyNet_.held().slowed;
    std::vector<SlowedProcess> processes;
    for (const auto& key : keys) {
        const auto known = std::ranges::find(held, key, &SlowedProcess::key);
        processes.push_back(known == held.end() ? SlowedProcess{key, {}} : *known);
    }
    return processes;
}

} // namespace kestrio
