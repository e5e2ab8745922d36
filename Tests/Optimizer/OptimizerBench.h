// An optimizer on a made-up machine in virtual time. An editor is in front; a chat program with two helpers and a mail
// program stand behind it.
#pragma once

#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Optimizer/Optimizer.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Tests/Optimizer/FakeMachine.h"

#include <fmt/format.h>

namespace kestrio {

struct OptimizerBench {
    /// 2023-11-14 22:13:20 UTC, a Tuesday.
    static constexpr Date origin{1'700'000'000};

    static constexpr auto own = "dev.example.optimizer";
    static constexpr auto editor = "org.example.editor";
    static constexpr auto chat = "org.example.chat";
    static constexpr auto mail = "org.example.mail";
    static constexpr pid_t editorPID = 100;
    static constexpr pid_t chatPID = 200; // its helpers are 201 and 202
    static constexpr pid_t mailPID = 300;

    VirtualTime time{origin};
    VirtualQueue queue{time, "Kestrio.main"};
    Calendar calendar{"en_GB", "UTC"};
    MemoryKeyValueStore settings;
    FakeMachine machine;
    MediaUse media;
    std::map<std::string, std::string> refusals; // by application
    std::vector<std::string> events;             // as `described`
    std::vector<std::optional<std::string>> alertChecks;
    std::unique_ptr<Optimizer> optimizer;

    OptimizerBench() {
        machine.launch(editor, editorPID);
        machine.launch(chat, chatPID, 2);
        machine.launch(mail, mailPID);
        machine.front = editorPID;
    }

    /// Makes the optimizer, without starting it.
    Optimizer& make() {
        optimizer = std::make_unique<Optimizer>(
            Optimizer::Host{time, queue, calendar, machine, settings, machine},
            Optimizer::Collaborators{
                .ownBundleID = own,
                .hostEssentials = {"org.example.panel"},
                .launchDate = [this](pid_t pid) { return machine.launchDate(pid); },
                .mediaUse = [this] { return media; },
                .refusal = [this](const auto& question) { return refusal(question.application); },
                .log = [this](const ResourceEvent& event) { events.push_back(described(event)); },
                .checkAlerts = [this](const SampledApps&,
                                      const std::optional<std::string>& front) { alertChecks.push_back(front); }});
        return *optimizer;
    }

    /// Makes an optimizer that is switched on, starts it and forgets what that did.
    Optimizer& begin() {
        settings.set(Optimizer::enabledKey, true);
        make().start();
        forget();
        return *optimizer;
    }

    /// The same with the chat program in a tier.
    Optimizer& begin(tindra::AppTier tier) {
        begin().setTier(tier, chat);
        forget();
        return *optimizer;
    }

    /// The same with the chat program frozen, ten minutes later.
    Optimizer& beginFrozen(tindra::AppTier tier = tindra::AppTier::canWait) {
        begin(tier);
        tickAfter(600);
        forget();
        return *optimizer;
    }

    /// Lets the wall clock go on without the timers, and does one pass.
    void tickAfter(double seconds) {
        time.jumpWallClock(Seconds(seconds));
        optimizer->tick();
    }

    void forget() {
        events.clear();
        machine.signals.clear();
    }

    void sample(std::vector<AppProcesses> apps, bool hasCPU = true) {
        optimizer->didSample({apps, hasCPU, MemoryPressure::normal});
    }
    /// As a sample that has the application use so many cores and bytes.
    void use(const std::string& id, double cores, std::uint64_t bytes = 0) {
        sample({AppProcesses{.id = id,
                             .name = id,
                             .appPath = {},
                             .bundleID = id,
                             .cpuCores = cores,
                             .footprint = bytes,
                             .processes = {}}});
    }

    const ManagedApp* held(const std::string& id) const {
        const auto& all = optimizer->managed().value();
        const auto found = all.find(id);
        return found == all.end() ? nullptr : &found->second;
    }
    /// "running", "frozen(since: 600, lastWake: nil)", in seconds since `origin`; "nothing" when it isn't held.
    std::string control(const std::string& id) const {
        const auto* app = held(id);
        return app ? tindra::toString(sinceOrigin(app->control)) : "nothing";
    }

    /// "freeze chat: Idle for 10m. 3 processes. (512)".
    static std::string described(const ResourceEvent& event) {
        return fmt::format("{}{}: {}{}", storedText(event.kind), event.appName ? " " + *event.appName : "",
                           event.detail, event.bytes ? fmt::format(" ({})", *event.bytes) : "");
    }

private:
    std::optional<std::string> refusal(const RunningApplication& application) const {
        const auto found = refusals.find(application.bundleIdentifier.value_or(""));
        return found == refusals.end() ? std::nullopt : std::optional(found->second);
    }

    static tindra::ControlState sinceOrigin(tindra::ControlState control) {
        const auto moved = [](tindra::Date& date) { date.seconds -= origin.seconds(); };
        if (auto* frozen = std::get_if<tindra::control::Frozen>(&control)) {
            moved(frozen->since);
            if (frozen->lastWake)
                moved(*frozen->lastWake);
        } else if (auto* waking = std::get_if<tindra::control::Waking>(&control)) {
            moved(waking->until);
            moved(waking->frozenSince);
        }
        return control;
    }
};

} // namespace kestrio
