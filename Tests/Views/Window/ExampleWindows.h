// The windows over a made-up history and a scripted agent, on a Friday afternoon that never passes. For tests, pictures
// and benchmarks. One at a time, on the main thread.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/ScriptedBackground.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <functional>

namespace kestrio {

/// Wall time stands still; time awake passes.
class StandingClock final : public Clock {
public:
    explicit StandingClock(Date now) : now_(now) {}
    Date now() const override { return now_; }
    Uptime uptime() const override { return system_.uptime(); }

private:
    const Date now_;
    const SystemClock system_;
};

struct ExampleWindowsOptions {
    /// In days; none for an empty history.
    int days = 30;
    int sessionsPerWorkday = 250;
    std::map<std::string, SettingValue> settings = {};
    Queue* loadingQueue = nullptr; // a worker of its own when null
    WindowHost host = {};
};

class ExampleWindows {
public:
    using Options = ExampleWindowsOptions;

    explicit ExampleWindows(Queue& main, Options options = {})
        : main_(main),
          sessions_(history(options)),
          settings_(std::move(options.settings)),
          classification_(settings_),
          agent_(main, main, connectToScript(script, clock_)),
          loadingQueue_(options.loadingQueue ? *options.loadingQueue : worker_),
          dashboard_(storeParts(), calendar_, RangeMode::day, ReportStore::Follows::itsPerson),
          parts_{.clock = clock_,
                 .queue = main,
                 .calendar = calendar_,
                 .settings = settings_,
                 .classification = classification_,
                 .agent = agent_,
                 .dashboard = dashboard_,
                 .host = std::move(options.host)} {
        std::map<std::string, SettingValue> registered;
        for (const auto& setting : knownSettings())
            if (setting.registered)
                registered.emplace(setting.key, *setting.registered);
        settings_.registerDefaults(std::move(registered));
    }

    const WindowParts& parts() const { return parts_; }
    AgentLink& agent() { return agent_; }
    ReportStore& dashboard() { return dashboard_; }
    MemoryKeyValueStore& settings() { return settings_; }
    const Calendar& calendar() const { return calendar_; }
    Windows& windows() {
        if (!windows_)
            windows_ = std::make_unique<Windows>(parts_);
        return *windows_;
    }
    std::size_t sessionCount() const { return sessions_.size(); }

    /// Serves events until the condition holds, or for so long; whether it held.
    static bool waitFor(const std::function<bool()>& condition, int milliseconds = 10'000) {
        QElapsedTimer timer;
        timer.start();
        while (!condition()) {
            if (timer.elapsed() > milliseconds)
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
        return true;
    }

    AgentScript script;

private:
    std::vector<ActivitySession> history(const Options& options) const {
        if (options.days == 0)
            return {};
        auto made = exampleHistory(clock_.now(), calendar_,
                                   {.days = options.days, .sessionsPerWorkday = options.sessionsPerWorkday});
        std::erase_if(made, [&](const ActivitySession& session) { return session.end > clock_.now(); });
        return made;
    }

    ReportStore::Parts storeParts() {
        return {.clock = clock_,
                .queue = main_,
                .loadingQueue = loadingQueue_,
                .sessions = [this](DateInterval interval) { return sessionsIn(interval); },
                .classification =
                    [this] {
                        return Classification{classification_.categorizer().snapshot(),
                                              classification_.projectRules().rules()};
                    }};
    }

    std::vector<ActivitySession> sessionsIn(DateInterval interval) const {
        std::vector<ActivitySession> found;
        for (const auto& session : sessions_)
            if (session.end > interval.start && session.start < interval.end)
                found.push_back(session);
        return found;
    }

    Queue& main_;
    const Calendar calendar_{"en_GB", "Europe/Berlin"};
    const StandingClock clock_{calendar_.date(2026, 11, 20, 17, 30)};
    const std::vector<ActivitySession> sessions_;
    MemoryKeyValueStore settings_;
    ClassificationSettings classification_;
    AgentLink agent_;
    WorkerQueue worker_{"Kestrio.reports"};
    Queue& loadingQueue_;
    ReportStore dashboard_;
    const WindowParts parts_;
    std::unique_ptr<Windows> windows_;
};

} // namespace kestrio
