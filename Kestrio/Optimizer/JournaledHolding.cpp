#include "Kestrio/Optimizer/JournaledHolding.h"

#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"

#include <algorithm>
#include <utility>

namespace kestrio {

JournaledHolding::JournaledHolding(ProcessTable& table, ProcessControl& control, SafetyNet& safetyNet)
    : table_(table), control_(control), safetyNet_(safetyNet) {}

std::vector<ProcessKey> JournaledHolding::processes(pid_t mainProcess) {
    return control_.processes(mainProcess);
}

/// Looks up whom a process belongs to when it is first seen: most are there at every sweep, and numbers take long to
/// come round again. Should one have, nothing happens to its new process: its start is not that of the key.
ProcessesByMain JournaledHolding::rememberedProcesses(const std::set<pid_t>& mainProcesses) {
    ProcessesByMain found;
    for (const auto main : mainProcesses) {
        if (const auto first = key(main))
            found[main].push_back(*first);
    }
    std::unordered_map<pid_t, Seen> now;
    for (const auto process : table_.processes()) {
        auto& seen = now.emplace(process, this->seen(process)).first->second;
        const auto application = found.find(seen.responsible);
        if (application == found.end() || application->first == process)
            continue;
        if (!seen.key)
            seen.key = key(process);
        if (seen.key)
            application->second.push_back(*seen.key);
    }
    seen_ = std::move(now);
    return found;
}

JournaledHolding::Seen JournaledHolding::seen(pid_t process) {
    const auto before = seen_.find(process);
    return before != seen_.end() ? before->second : Seen{table_.responsible(process).value_or(process), {}};
}

std::optional<ProcessKey> JournaledHolding::key(pid_t process) {
    const auto counters = table_.counters(process);
    return counters ? std::optional(ProcessKey{process, counters->start}) : std::nullopt;
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
