#include "Kestrio/Optimizer/ProcessControl.h"

#include "Kestrio/Optimizer/SafetyNet.h"

#include <algorithm>
#include <unordered_set>

namespace kestrio {
namespace {

bool lists(const std::vector<SlowedProcess>& processes, ProcessKey key) {
    return std::any_of(processes.begin(), processes.end(),
                       [key](const SlowedProcess& process) { return process.key == key; });
}

/// Drops the items from the list that the test does not keep, and tells whether there were any.
template <class Item, class Test>
bool keepOnly(std::vector<Item>& items, Test isKept) {
    return std::erase_if(items, [&](const Item& item) { return !isKept(item); }) > 0;
}

} // namespace

ProcessControl::ProcessControl(ProcessTable& table, ProcessSignals& signals, SafetyNet& safetyNet)
    : table_(table), signals_(signals), safetyNet_(safetyNet) {}

std::vector<ProcessKey> ProcessControl::processes(pid_t main) {
    const auto first = table_.counters(main);
    if (!first)
        return {};
    std::vector<ProcessKey> keys{{main, first->start}};
    const auto listed = table_.processes();
    for (const auto process : listed) {
        const auto counters = process != main && process >= 1 ? table_.counters(process) : std::nullopt;
        if (counters && responsible(process, *counters) == main)
            keys.push_back({process, counters->start});
    }
    std::erase_if(known_, [listed = std::unordered_set(listed.begin(), listed.end())](const auto& known) {
        return !listed.contains(known.first);
    });
    return keys;
}

/// Stays what it was when the one that started it ends: a helper does not change hands.
pid_t ProcessControl::responsible(pid_t process, const ProcessCounters& counters) {
    auto& known = known_[process];
    if (known.responsible == 0 || known.start != counters.start || known.image != counters.image)
        known = {counters.start, counters.image, table_.responsible(process).value_or(process)};
    return known.responsible;
}

/// Without its main process an application is left alone whole: half of one standing still helps nobody.
std::vector<ProcessKey> ProcessControl::stoppable(const std::vector<ProcessKey>& keys) {
    const auto isRunning = [this](ProcessKey key) { return signals_.condition(key) == ProcessCondition::running; };
    if (keys.empty() || !isRunning(keys.front()))
        return {};
    auto running = keys;
    keepOnly(running, isRunning);
    return running;
}

std::vector<ProcessKey> ProcessControl::freeze(const std::vector<ProcessKey>& keys) {
    const auto heldBefore = safetyNet_.held();
    auto stopped = stoppable(keys);
    if (stopped.empty() || !safetyNet_.intendToFreeze(stopped))
        return {};
    if (keepOnly(stopped, [this](ProcessKey key) { return signals_.stop(key); })) {
        auto frozen = heldBefore.frozen;
        frozen.insert(frozen.end(), stopped.begin(), stopped.end());
        safetyNet_.record(frozen, heldBefore.slowed);
    }
    return stopped;
}

void ProcessControl::resume(const std::vector<ProcessKey>& keys) {
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
        signals_.resume(*key);
}

/// A process that a slowed one started is slow from its beginning: what it is to get back is what its parent had.
std::vector<SlowedProcess> ProcessControl::slowable(const std::vector<ProcessKey>& keys) {
    const auto& held = safetyNet_.held().slowed;
    std::unordered_map<ProcessKey, ProcessPriority> inherited;
    const ProcessPriority* last = nullptr;
    for (const auto& parent : held) {
        if (last && *last == parent.before)
            continue;
        last = &parent.before;
        for (const auto& heir : signals_.heirs(parent.before))
            inherited.try_emplace(heir, parent.before);
    }
    std::vector<SlowedProcess> found;
    for (const auto& key : keys) {
        if (lists(held, key))
            continue;
        auto before = signals_.priority(key);
        if (const auto heir = inherited.find(key); before && heir != inherited.end())
            before = heir->second;
        if (before)
            found.push_back({key, std::move(*before)});
    }
    return found;
}

std::vector<SlowedProcess> ProcessControl::slow(const std::vector<ProcessKey>& keys) {
    const auto heldBefore = safetyNet_.held();
    auto slowed = slowable(keys);
    if (slowed.empty() || !safetyNet_.intendToSlow(slowed))
        return {};
    if (keepOnly(slowed, [this](const SlowedProcess& process) { return signals_.slow(process.key); })) {
        auto all = heldBefore.slowed;
        all.insert(all.end(), slowed.begin(), slowed.end());
        safetyNet_.record(heldBefore.frozen, all);
    }
    return slowed;
}

void ProcessControl::restore(const std::vector<SlowedProcess>& slowed) {
    auto others = safetyNet_.held().slowed;
    std::erase_if(others, [&](const SlowedProcess& process) { return lists(slowed, process.key); });
    restoreWithHeirs(slowed, others, signals_);
}

} // namespace kestrio
