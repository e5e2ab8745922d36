// An agent for tests of the windows: says what it is told to say, and does what it is asked to without doing anything.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/AgentLink.h"

namespace kestrio {

/// What the scripted agent says, and what it was asked for. Outlives it.
struct AgentScript {
    bool isRunning = true;
    AgentStatus status = recording();
    std::vector<std::optional<Seconds>> pauses;
    int resumes = 0;
    Signal<AgentStatus> changed;
    Signal<> dataChanged;

    static AgentStatus recording() {
        AgentStatus status;
        status.isAccessibilityGranted = true;
        status.version = "1.0.0";
        return status;
    }

    /// The agent's state is another from now on.
    void tell(AgentStatus now) {
        status = std::move(now);
        changed.emit(status);
    }
};

class ScriptedBackground final : public Background {
public:
    ScriptedBackground(AgentScript& script, const Clock& clock) : script_(script), clock_(clock) {}

    std::optional<AgentStatus> status() override { return script_.status; }
    Failure pause(std::optional<Seconds> length) override {
        script_.pauses.push_back(length);
        auto now = script_.status;
        now.state = TrackingState::paused;
        now.pausedUntil = length ? clock_.now() + *length : distantFuture;
        script_.tell(now);
        return std::nullopt;
    }
    Failure resume() override {
        ++script_.resumes;
        auto now = script_.status;
        now.state = TrackingState::tracking;
        now.pausedUntil.reset();
        script_.tell(now);
        return std::nullopt;
    }
    Failure openDashboard(std::optional<std::string> /*page*/) override { return std::nullopt; }
    Failure openSettings(std::optional<std::string> /*tab*/) override { return std::nullopt; }
    Subscription importFiles(std::vector<SessionFile> /*files*/, ImportReceiver /*receiver*/) override { return {}; }
    Subscription observeData(std::function<void()> receiver) override {
        return script_.dataChanged.subscribe(std::move(receiver));
    }
    std::optional<std::vector<BrowserReading>> browsers() override { return std::vector<BrowserReading>(); }
    std::optional<AgentCost> ownCost() override { return std::nullopt; }
    OptimizerLink* optimizer() override { return nullptr; }
    Subscription observe(std::function<void(const AgentStatus&)> receiver) override {
        return script_.changed.subscribe(std::move(receiver));
    }
    Subscription observeMonitor(std::function<void(const MonitorReading&)> /*receiver*/) override { return {}; }

private:
    AgentScript& script_;
    const Clock& clock_;
};

/// Connects to the scripted agent while it runs.
inline AgentLink::Connect connectToScript(AgentScript& script, const Clock& clock) {
    return [&script, &clock](const auto& /*gone*/) -> std::optional<AgentConnection> {
        if (!script.isRunning)
            return std::nullopt;
        return AgentConnection{std::make_unique<ScriptedBackground>(script, clock), [] {}, {}};
    };
}

} // namespace kestrio
