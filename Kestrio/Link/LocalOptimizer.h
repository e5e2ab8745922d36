// The agent's side of `OptimizerLink`: answers from the running optimizer, on whose queue it does everything, and says
// in words what an action could not do. Called on any other queue; a call waits for a pass that is under way.
#pragma once

#include "Kestrio/Base/Queue.h"
#include "Kestrio/Link/OptimizerLink.h"
#include "Kestrio/Platform/Workspace.h"

#include <functional>

namespace kestrio {

class Optimizer;

class LocalOptimizer final : public OptimizerLink {
public:
    /// The queue is the optimizer's, and so is the workspace. All must outlive this.
    LocalOptimizer(Queue& queue, Optimizer& optimizer, Workspace& workspace);

    std::optional<OptimizerStatus> status() override;
    std::optional<std::vector<PlannedApp>> plan() override;
    Failure setEnabled(bool enabled) override;
    Failure setTuning(const tindra::OptimizerTuning& tuning) override;
    Failure setRules(const tindra::OptimizerRules& rules) override;
    Failure setTier(const std::string& appID, std::optional<tindra::AppTier> tier) override;
    Failure setOverride(const std::string& appID, tindra::AppTier tier, double hours) override;
    Failure removeOverride(const std::string& appID) override;
    Failure freeze(const std::string& appID) override;
    Failure slow(const std::string& appID) override;
    Failure resume(const std::string& appID) override;
    Failure quit(const std::string& appID) override;
    Failure resumeAll() override;

private:
    template <class Work>
    Failure doing(Work work);

    // On the optimizer's queue.
    std::optional<RunningApplication> running(const std::string& appID);
    Failure freezeRunning(const RunningApplication& application);
    std::string whyNotFrozen(const RunningApplication& application);

    Queue& queue_;
    Optimizer& optimizer_;
    Workspace& workspace_;
};

} // namespace kestrio
