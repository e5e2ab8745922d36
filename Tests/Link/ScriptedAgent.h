// An agent within the test: says what it is told to say, and remembers what it was asked to do.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/Background.h"

namespace kestrio {

/// What test and agent share; the agent itself belongs to its link.
struct AgentScript {
    AgentStatus status;
    std::vector<std::string> done; // what it was asked to do, in words
    Background::Failure failure;   // of every action
    std::optional<std::vector<BrowserReading>> browsers = std::vector<BrowserReading>();
    Signal<> browserChanges;
    Signal<AgentStatus> changed;
    Signal<> dataChanged;
    Signal<MonitorReading> readings;
    OptimizerLink* optimizer = nullptr;
    std::vector<std::string> importedFiles; // by name
    ImportOutcome importOutcome = ImportStopped{};

    void tell(AgentStatus news) {
        status = std::move(news);
        changed.emit(status);
    }
};

class ScriptedAgent final : public Background {
public:
    /// The script must outlive the agent.
    explicit ScriptedAgent(AgentScript& script) : script_(script) {}

    std::optional<AgentStatus> status() override { return script_.status; }
    Failure pause(std::optional<Seconds> length) override {
        return note(length ? "pause for " + std::to_string(static_cast<int>(length->count())) : "pause");
    }
    Failure resume() override { return note("resume"); }
    Failure openDashboard(std::optional<std::string> /*page*/) override { return note("open the dashboard"); }
    Failure openSettings(std::optional<std::string> /*tab*/) override { return note("open the settings"); }
    Failure quit() override { return note("quit"); }
    Subscription importFiles(std::vector<SessionFile> files, ImportReceiver receiver) override {
        for (const auto& file : files)
            script_.importedFiles.push_back(file.name);
        receiver.ended(script_.importOutcome);
        return {};
    }
    Failure deleteActivity(std::optional<Date> before) override {
        return note(before ? "delete before " + std::to_string(static_cast<std::int64_t>(before->seconds()))
                           : "delete all");
    }
    Failure deleteResourceLog() override { return note("delete the log"); }
    Subscription observeData(std::function<void()> receiver) override {
        return script_.dataChanged.subscribe(std::move(receiver));
    }
    std::optional<std::vector<BrowserReading>> browsers() override { return script_.browsers; }
    Subscription observeBrowsers(std::function<void()> receiver) override {
        return script_.browserChanges.subscribe(std::move(receiver));
    }
    std::optional<AgentCost> ownCost() override { return AgentCost(); }
    Subscription observe(std::function<void(const AgentStatus&)> receiver) override {
        return script_.changed.subscribe(std::move(receiver));
    }
    Subscription observeMonitor(std::function<void(const MonitorReading&)> receiver) override {
        return script_.readings.subscribe(std::move(receiver));
    }

    OptimizerLink* optimizer() override { return script_.optimizer; }

private:
    Failure note(std::string what) {
        script_.done.push_back(std::move(what));
        return script_.failure;
    }

    AgentScript& script_;
};

} // namespace kestrio
