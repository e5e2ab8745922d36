// The optimizer's hold on real processes: everything goes through the control that writes the journal first, and what
// a slowed process had before is looked up where the journal has it.
//
// Belongs to the optimizer's queue; writing the journal blocks for some milliseconds when what is held has changed.
#pragma once

#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Optimizer/ProcessHolding.h"

#include <optional>
#include <unordered_map>

namespace kestrio {

class ProcessControl;
class SafetyNet;

class JournaledHolding final : public ProcessHolding {
public:
    /// All of them outlive this; the control works with the same table and safety net.
    JournaledHolding(ProcessTable& table, ProcessControl& control, SafetyNet& safetyNet);

    std::vector<ProcessKey> processes(pid_t mainProcess) override;
    ProcessesByMain rememberedProcesses(const std::set<pid_t>& mainProcesses) override;
    std::vector<ProcessKey> freeze(const std::vector<ProcessKey>& keys) override;
    void resume(const std::vector<ProcessKey>& keys) override;
    std::vector<ProcessKey> slow(const std::vector<ProcessKey>& keys) override;
    void restore(const std::vector<ProcessKey>& keys) override;
    void record(const std::vector<ProcessKey>& frozen, const std::vector<ProcessKey>& slowed) override;
    void startWatcher() override;
    std::size_t recoverEarlierRuns() override;

private:
    /// A process as of the last sweep. Its key is absent until somebody asked for its application.
    struct Seen {
        pid_t responsible = 0;
        std::optional<ProcessKey> key;
    };

    Seen seen(pid_t process);
    std::optional<ProcessKey> key(pid_t process);
    std::vector<SlowedProcess> withPriorities(const std::vector<ProcessKey>& keys) const;

    ProcessTable& table_;
    ProcessControl& control_;
    SafetyNet& safetyNet_;
    std::unordered_map<pid_t, Seen> seen_;
};

} // namespace kestrio
