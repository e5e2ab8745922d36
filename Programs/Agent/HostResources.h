// The log of how this machine performs, as the agent runs it: the readers and the sampler on a queue of their own, the
// store on another, the recorder on the main queue.
//
// Made, used and dropped on the main queue.
#pragma once

#include "Kestrio/Activity/ActivityMonitor.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/AgentCost.h"
#include "Kestrio/Monitor/SystemSampler.h"
#include "Kestrio/Platform/Linux/LinuxOwnUse.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"
#include "Kestrio/Resources/ResourceRecorder.h"
#include "Kestrio/Resources/ResourceSampler.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Kestrio/Resources/TemperatureReader.h"
#include "Programs/Agent/DesktopFacts.h"
#include "Programs/Agent/HostMachine.h"
#include "Programs/Agent/HostOptimizer.h"
#include "Programs/Agent/SavingPower.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace kestrio {

class HostResources {
public:
    /// All must outlive this. Without a log that can be opened nothing is stored, and a line in the log says so.
    HostResources(const Clock& clock, Queue& main, KeyValueStore& settings, const std::filesystem::path& dataFolder,
                  LoopQueue& monitorQueue, HostDesktop& desktop, const ActivityMonitor& monitor,
                  HostOptimizer& optimizer)
        : clock_(clock),
          monitor_(monitor),
          optimizer_(optimizer),
          store_(ResourceStore::openOrLog(dataFolder / ResourceStore::fileName, storeQueue_, clock)),
          facts_(main, monitorQueue, desktop),
          savingPower_(monitorQueue) {
        samplerQueue_.sync([this] { readers_ = std::make_unique<Readers>(clock_); });
        recorder_.emplace(ResourceRecorder::Host{clock, main, samplerQueue_, probeQueue_, settings, readers_->sampler,
                                                 store_.get(), Calendar::current()},
                          collaborators());
    }
    ~HostResources() {
        recorder_.reset();
        samplerQueue_.sync([this] { readers_.reset(); });
    }
    HostResources(const HostResources&) = delete;
    HostResources& operator=(const HostResources&) = delete;

    ResourceRecorder& recorder() { return *recorder_; }

    /// Takes events for the log. Any thread, until this is dropped.
    void log(const ResourceEvent& event) {
        std::optional<AppReference> app;
        if (event.appID)
            app = AppReference{*event.appID, event.appName.value_or(*event.appID)};
        if (store_)
            store_->add(event.kind, std::move(app), event.detail, event.bytes, event.at);
    }

    /// Deletes all that is logged. Does not wait.
    void deleteLog() {
        if (store_)
            store_->deleteAll();
    }

    AgentCost cost() const { return {.cost = recorder_->ownCost(), .lowered = recorder_->loweredPace()}; }

private:
    /// Batteries and heat change slowly.
    static constexpr Seconds powerInterval{10};

    struct Readers {
        explicit Readers(const Clock& clock) : machine(clock, processEnvironment), sampler(sources(clock)) {}

        ResourceSampler::Sources sources(const Clock& clock) {
            return {clock,         machine.processes,     machine.kernel,
                    machine.disks, machine.memoryTraffic, [this] { return temperature.cpuTemperature(); }};
        }

        HostMachine machine;
        LinuxSensors sensors{{}};
        TemperatureReader temperature{sensors};
        ResourceSampler sampler;
    };

    ResourceRecorder::Collaborators collaborators() {
        ResourceRecorder::Collaborators all;
        all.frontmost = [this] { return facts_.frontmost(); };
        all.runningApplications = [this] { return facts_.runningApplications(); };
        all.observeApplications = [this](auto receiver) { return facts_.observeApplications(std::move(receiver)); };
        all.observeSession = [this](auto receiver) { return facts_.observeSession(std::move(receiver)); };
        all.activity = [this] { return monitor_.published().state; };
        all.inputIdle = [this] { return facts_.inputIdle(); };
        all.power = [this] { return power(); };
        all.optimizer = [this] { return optimizer_.state(); };
        all.didSample = [this](const LiveResources& live) { optimizer_.didSample(live); };
        all.ownUse = [] { return readOwnUse(); };
        return all;
    }

    PowerState power() {
        const auto now = clock_.uptime();
        if (powerRead_ && now - *powerRead_ < powerInterval)
            return power_;
        powerRead_ = now;
        power_ = {.lowPower = powerSensors_.isLowPowerModeEnabled(),
                  .thermal = static_cast<std::int64_t>(powerSensors_.thermalState())};
        if (const auto battery = powerSensors_.battery()) {
            power_.battery = SystemSampler::batteryInfo(*battery).level;
            power_.onAC = battery->isPluggedIn;
        }
        return power_;
    }

    const Clock& clock_;
    const ActivityMonitor& monitor_;
    HostOptimizer& optimizer_;
    WorkerQueue storeQueue_{ResourceStore::queueLabel};
    WorkerQueue samplerQueue_{ResourceRecorder::samplerQueueLabel};
    WorkerQueue probeQueue_{StallProbe::queueLabel};
    std::unique_ptr<ResourceStore> store_; // null when it could not be opened
    DesktopFacts facts_;
    SavingPower savingPower_;
    LinuxSensors powerSensors_{{.isSavingPower = [this] { return savingPower_(); }}};
    PowerState power_;
    std::optional<Uptime> powerRead_;
    std::unique_ptr<Readers> readers_; // on the sampler's queue
    std::optional<ResourceRecorder> recorder_;
};

} // namespace kestrio
