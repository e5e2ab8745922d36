// The optimizer as the agent runs it: on a queue of its own, "Kestrio.optimizer", with a connection of its own to the
// window system, so that nothing but its own work stands between a click on a frozen application and that it goes on.
//
// Made, used and dropped on the main queue. What others read of it at any moment are copies on the main queue; an
// action waits for the pass that is under way, some milliseconds.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/OptimizerLink.h"
#include "Kestrio/Monitor/SystemPanel.h"
#include "Kestrio/Optimizer/Protections.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Resources/ResourceRecorder.h"
#include "Programs/Agent/WrapSignals.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace kestrio {

class HostOptimizer {
public:
    /// All must outlive this.
    struct Host {
        const Clock& clock;
        LoopQueue& main;
        KeyValueStore& settings; // tells of changes on the main queue
        std::filesystem::path dataFolder;
        std::filesystem::path programs; // the folder with `kestrio-rescue`
        WrapSignals wrapSignals = {};
    };

    /// Gives back what earlier runs left frozen or slowed, at once, and begins nothing.
    explicit HostOptimizer(Host host);
    /// Gives everything back.
    ~HostOptimizer();
    HostOptimizer(const HostOptimizer&) = delete;
    HostOptimizer& operator=(const HostOptimizer&) = delete;

    /// The rest of the program. All of it must work until this is dropped.
    struct Parts {
        /// Reads which applications use sound and screen, some time later, and answers on any queue.
        std::function<void(std::function<void(MediaUse)>)> readMedia;
        /// Called on the optimizer's queue.
        std::function<void(const ResourceEvent&)> log;
        // Called on the main queue.
        std::function<void()> openDashboard;
        std::function<void()> switched; // on or off
    };

    /// Makes ready what `link` answers from. Once.
    void connect(Parts parts);

    /// Begins where the person has switched it on, and follows the settings from then on. Once, after `connect`.
    void start();

    /// Gives everything back, and touches nothing from then on. Returns when all of it runs.
    void finish();

    /// What the log is told at each minute.
    const OptimizerState& state() const { return shown_.state; }
    /// What the monitor's panel is told; absent while the optimizer is off.
    const std::optional<OptimizerCounts>& counts() const { return shown_.counts; }
    /// Takes what the applications hold and use. Does not wait.
    void didSample(const LiveResources& live);

    /// For the faces, from `connect` on. Used on the main queue.
    OptimizerLink* link();

private:
    struct Shown {
        OptimizerState state = {};
        std::optional<OptimizerCounts> counts = {};
    };
    class Ground;
    class Runtime;

    void showSoon(Shown shown);
    void take(Shown shown);

    const Host host_;
    WorkerQueue queue_{"Kestrio.optimizer"};
    std::unique_ptr<Ground> ground_;   // on the queue; always there
    std::size_t recovered_ = 0;        // processes of earlier runs
    std::unique_ptr<Runtime> runtime_; // on the queue; there from `connect` on
    std::unique_ptr<OptimizerLink> link_;
    std::function<void()> switched_;
    Subscription settings_;
    Shown shown_;
    std::shared_ptr<HostOptimizer*> self_ = std::make_shared<HostOptimizer*>(this); // work on the main queue holds it
                                                                                    // weakly
};

} // namespace kestrio
