// Everything around the windows but the windows: a made-up history, settings in memory, an agent that follows a script,
// all in virtual time. Friday 20 November 2026, half past five in the afternoon.
#pragma once

#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Views/Window/WindowParts.h"
#include "Tests/Link/ScriptedAgent.h"
#include "Tests/Reports/ReportBench.h"

namespace kestrio {

struct WindowStage {
    enum class Agent { there, away };
    explicit WindowStage(std::vector<ActivitySession> history = {}, RangeMode mode = RangeMode::day,
                         Agent presence = Agent::there)
        : isAgentThere(presence == Agent::there),
          sessions(std::move(history)),
          dashboard(storeParts(), calendar, mode, ReportStore::Follows::itsPerson),
          today(storeParts(), calendar, RangeMode::day, ReportStore::Follows::now) {
        const auto reload = [this] { dashboard.reload(); };
        tokens.push_back(classification.categorizer().observe(reload));
        tokens.push_back(classification.projectRules().observe(reload));
        agent.start();
        load();
    }

    ReportStore::Parts storeParts() {
        return {.clock = time,
                .queue = main,
                .loadingQueue = loading,
                .sessions = [this](DateInterval) { return trouble ? FoundSessions(*trouble) : sessions; },
                .classification =
                    [this] {
                        return Classification{classification.categorizer().snapshot(),
                                              classification.projectRules().rules()};
                    }};
    }

    /// The present history, as a fresh report.
    void load() {
        dashboard.reload();
        settle();
    }

    void agentDies() {
        isAgentThere = false;
        agentQueue.async(tellGone);
        settle();
    }
    void agentReturns() {
        isAgentThere = true;
        time.advance(AgentLink::retryInterval);
        settle();
    }

    /// Everything that is under way comes to its end.
    void settle() { time.runPending(); }

    Calendar calendar{"en_GB", "Europe/Berlin"};
    VirtualTime time{calendar.date(2026, 11, 20, 17, 30)};
    VirtualQueue main{time, "main"};
    VirtualQueue loading{time, "loading"};
    VirtualQueue agentQueue{time, "agent"};
    MemoryKeyValueStore settings;
    ClassificationSettings classification{settings};
    AgentScript script;
    bool isAgentThere;
    std::function<void()> tellGone; // that the agent which was there is not any more
    AgentLink agent{main, agentQueue, [this](auto gone) -> std::optional<AgentConnection> {
                        tellGone = std::move(gone);
                        if (!isAgentThere)
                            return std::nullopt;
                        AgentConnection connection;
                        connection.background = std::make_unique<ScriptedAgent>(script);
                        connection.deliver = [] {};
                        return connection;
                    }};
    std::vector<ActivitySession> sessions;
    std::optional<DatabaseTrouble> trouble; // why they cannot be read
    ReportStore dashboard;
    ReportStore today;
    WindowParts parts{.clock = time,
                      .queue = main,
                      .calendar = calendar,
                      .settings = settings,
                      .classification = classification,
                      .agent = agent,
                      .dashboard = dashboard,
                      .today = today,
                      .host = {.isBrowser = [](const std::string& id) { return id == "org.example.Browser"; }}};
    std::vector<Subscription> tokens;
};

inline const std::vector<ActivitySession> noHistory;

/// A browser on two sites, an editor in a project, a player that only played.
inline std::vector<ActivitySession> exampleWorkday() {
    constexpr double nine = 9 * hour;
    using enum SessionKind;
    ReportBench bench;
    bench.add(nine, 600, {.app = "Browser", .title = "Alpha", .url = "https://a.org/1"})
        .add(nine + 600, 300, {.app = "Editor", .title = "main.cpp", .project = "harbour"})
        .add(nine + 900, 1200, {.app = "Browser", .title = "Beta", .url = "https://b.org/"})
        .add(nine + 2100, 100, {.app = "Browser", .title = "Alpha again", .url = "https://a.org/2"})
        .add(nine + 2200, 60, {.app = "Editor", .title = "notes.md", .project = "harbour"})
        .add(nine + 2300, 30, {.app = "Terminal", .title = "quay", .project = "quay"})
        .add(nine, 1000, {.app = "Player", .title = "Song", .kind = listening})
        .add(nine, 120, {.app = "Browser", .title = "Film", .url = "https://a.org/film", .kind = watching});
    return bench.sessions;
}

} // namespace kestrio
