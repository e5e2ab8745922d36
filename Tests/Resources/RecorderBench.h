// A recorder on a scripted machine and virtual time, with a real store in a folder of its own.
#pragma once

#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Kestrio/Platform/Testing/ScriptedSessionEvents.h"
#include "Kestrio/Resources/ResourceRecorder.h"
#include "Tests/Resources/LateClock.h"
#include "Tests/Resources/MachineBench.h"
#include "Tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kestrio {

struct RecorderBench {
    enum class Log { kept, unavailable };

    explicit RecorderBench(std::map<std::string, SettingValue> changed = {}, Log log = Log::kept) {
        settings.registerDefaults({{"resourceLogEnabled", true},
                                   {"resourceLogDays", std::int64_t{90}},
                                   {"resourceDetail", std::int64_t{1}},
                                   {"resourceDetailDays", std::int64_t{7}},
                                   {"idleMinutes", std::int64_t{3}}});
        for (auto& [key, value] : changed)
            settings.set(key, std::move(value));
        if (log == Log::kept)
            store = std::make_unique<ResourceStore>(folder.path() / ResourceStore::fileName, storeQueue, machine.time);
        recorder = make(samplerQueue);
    }

    std::unique_ptr<ResourceRecorder> make(Queue& onSamplerQueue) {
        ResourceRecorder::Collaborators all;
        all.frontmost = [this] { return workspace.frontmostApplication(); };
        all.runningApplications = [this] { return workspace.runningApplications(); };
        all.observeApplications = [this](auto changed) {
            return workspace.observe([changed = std::move(changed)](WorkspaceNotice notice) {
                if (notice != WorkspaceNotice::activated)
                    changed();
            });
        };
        all.observeSession = [this](auto receiver) { return session.observe(std::move(receiver)); };
        all.activity = [this] {
            beforeTick();
            return activity;
        };
        all.inputIdle = [this] { return idle; };
        all.power = [this] { return power; };
        all.optimizer = [this] { return optimizer; };
        all.didSample = [this](const LiveResources&) { ++scans; };
        all.ownUse = [this] { return ownUse; };
        return std::make_unique<ResourceRecorder>(ResourceRecorder::Host{.clock = clock,
                                                                         .main = main,
                                                                         .samplerQueue = onSamplerQueue,
                                                                         .probeQueue = probeQueue,
                                                                         .settings = settings,
                                                                         .sampler = machine.sampler,
                                                                         .store = store.get(),
                                                                         .calendar = Calendar("en_US", "UTC")},
                                                  std::move(all));
    }

    void advance(double seconds) { machine.time.advance(Seconds(seconds)); }

    /// One more tick, whatever the pace.
    void tick() {
        bool ticked = false;
        const auto seen = recorder->observe([&] { ticked = true; });
        for (int step = 0; step < 1'000 && !ticked; ++step)
            advance(0.1);
    }

    /// The events' texts, the earliest first.
    std::vector<std::string> events(ResourceEventKind kind) {
        std::vector<std::string> texts;
        for (const auto& event : store->events(always, 10'000))
            if (event.kind == kind)
                texts.insert(texts.begin(), event.detail);
        return texts;
    }
    std::int64_t seconds() { return store->secondsCount(always); }
    std::size_t minutes() { return store->systemMinutes(always).size(); }

    static RunningApplication application(const std::string& name, pid_t process) {
        return {.bundleIdentifier = "org.example." + name, .localizedName = name, .processIdentifier = process};
    }

    const DateInterval always{Date(0), distantFuture};
    const TemporaryFolder folder;
    MachineBench machine;
    LateClock clock{machine.time};
    VirtualQueue main{machine.time, "main"};
    VirtualQueue samplerQueue{machine.time, ResourceRecorder::samplerQueueLabel};
    VirtualQueue probeQueue{machine.time, StallProbe::queueLabel};
    VirtualQueue storeQueue{machine.time, ResourceStore::queueLabel};
    MemoryKeyValueStore settings;
    ScriptedWorkspace workspace;
    ScriptedSessionEvents session{main};
    TrackingState activity = TrackingState::tracking;
    std::optional<Seconds> idle;
    PowerState power;
    OptimizerState optimizer;
    std::optional<OwnUse> ownUse;
    int scans = 0;
    /// Called at each tick before anything is read: the machine can move on here.
    std::function<void()> beforeTick = [] {};
    std::unique_ptr<ResourceStore> store;
    std::unique_ptr<ResourceRecorder> recorder;
};

} // namespace kestrio
