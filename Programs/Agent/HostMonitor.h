// The quick monitor as the agent runs it: its readers and sampler on a queue of their own, the model on the main
// queue, and what faces hear of it.
//
// Made, used and dropped on the main queue. Until somebody says that the icon is shown, it samples only while a panel
// looks.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/MonitorFeed.h"
#include "Kestrio/Monitor/SystemMonitor.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"
#include "Programs/Agent/HostMachine.h"

#include <functional>
#include <memory>
#include <optional>

namespace kestrio {

class HostMonitor {
public:
    /// Clock and queue must outlive this.
    HostMonitor(const Clock& clock, Queue& main) {
        queue_.sync([&] { readers_ = std::make_unique<Readers>(clock); });
        monitor_.emplace(main, queue_, readers_->sampler,
                         SystemMonitor::Setup{readers_->machine.kernel.chipName(), Calendar::current(),
                                              [this] { return isIconShown_(); }});
        feed_.emplace(main, clock, *monitor_,
                      MonitorFeed::Setup{.cores = readers_->machine.processes.activeProcessorCount(),
                                         .optimizer = [this] { return optimizer_(); }});
    }
    ~HostMonitor() {
        feed_.reset();
        monitor_.reset();
        queue_.sync([this] { readers_.reset(); });
    }
    HostMonitor(const HostMonitor&) = delete;
    HostMonitor& operator=(const HostMonitor&) = delete;

    /// Whether the second icon can be seen; asked every few seconds.
    void followIcon(std::function<bool()> isShown) { isIconShown_ = std::move(isShown); }

    /// What the optimizer holds, absent while it is off; asked with each reading that a panel gets.
    void followOptimizer(std::function<std::optional<OptimizerCounts>()> counts) { optimizer_ = std::move(counts); }

    void start() { monitor_->start(); }

    /// For the icon, which draws its latest state.
    SystemMonitor& monitor() { return *monitor_; }

    /// For the panels, as `Background::observeMonitor` tells.
    Subscription observe(MonitorFeed::Receiver receiver) { return feed_->observe(std::move(receiver)); }

private:
    struct Readers {
        explicit Readers(const Clock& clock)
            : machine(clock, processEnvironment), sampler(machine.kernel, machine.processes, sensors, clock) {}

        HostMachine machine;
        LinuxSensors sensors{{}};
        SystemSampler sampler;
    };

    std::function<bool()> isIconShown_ = [] { return false; };
    std::function<std::optional<OptimizerCounts>()> optimizer_ = [] { return std::nullopt; };
    WorkerQueue queue_{SystemMonitor::queueLabel};
    std::unique_ptr<Readers> readers_; // on the queue
    std::optional<SystemMonitor> monitor_;
    std::optional<MonitorFeed> feed_;
};

} // namespace kestrio
