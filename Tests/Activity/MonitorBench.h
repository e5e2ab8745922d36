// Everything an activity monitor stands on, with virtual time and a real database: tests set the desktop's state, let
// time pass, and look at the rows.
#pragma once

#include "Kestrio/Activity/ActivityMonitor.h"
#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Kestrio/Platform/Testing/ScriptedSessionEvents.h"
#include "Tests/Activity/FaultyStore.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>

namespace kestrio {

/// 2023-11-14 22:13:20 UTC; the tests name moments by the seconds since then.
inline constexpr Date origin{1'700'000'000};

struct MonitorBench {
    TemporaryFolder folder;
    VirtualTime time{origin};
    VirtualQueue databaseQueue{time, "Kestrio.database"};
    VirtualQueue queue{time, "Kestrio.monitor"};
    Database database{folder.path() / "activity.sqlite", databaseQueue};
    FaultyStore store{database};
    ScriptedWorkspace workspace;
    ScriptedWindowTitles titles;
    ScriptedInputIdle input;
    ScriptedSessionEvents events{queue};
    MemoryKeyValueStore settings;
    ActivityMonitor::Collaborators collaborators;
    std::unique_ptr<ActivityMonitor> monitor;

    /// Makes the monitor without starting it.
    void make() {
        monitor = std::make_unique<ActivityMonitor>(
            ActivityMonitor::Host{time, queue, workspace, titles, input, events, settings}, store,
            ActivityMonitor::HostApplications{{"org.example.locker"}, {"org.example.prompt"}}, collaborators);
    }

    /// Makes the monitor and lets it tick at `origin` and every two seconds from there.
    void start() {
        time.jumpWallClock(-ActivityMonitor::firstSampleAfter);
        make();
        monitor->start();
        pass(ActivityMonitor::firstSampleAfter.count());
    }

    /// Puts an application in front, silently: the next tick sees it.
    void show(const std::string& id, const std::string& title, pid_t pid = 100) {
        workspace.front = RunningApplication{id, id + " name", pid};
        titles.titles[pid] = title;
    }

    /// Puts an application in front as the desktop does, with its notice.
    void activate(const std::string& id, const std::string& title, pid_t pid = 100) {
        show(id, title, pid);
        workspace.announce(WorkspaceNotice::activated);
        time.runPending();
    }

    void happen(SessionEvent event) {
        events.happen(event);
        time.runPending();
    }

    void pass(double seconds) { time.advance(Seconds(seconds)); }

    /// Lets time pass without a touch: the idle time grows with it. Ticks must fall on whole half
    /// seconds.
    void passUntouched(double seconds) {
        for (double left = seconds; left > 0; left -= 0.5) {
            *input.idle += Seconds(std::min(left, 0.5));
            time.advance(Seconds(std::min(left, 0.5)));
        }
    }

    TrackingState state() const { return monitor->published().state; }

    /// "title start-end" of each session, live ones included, in the order given.
    std::vector<std::string> shown(Date from = origin - Seconds(1e6), Date to = origin + Seconds(1e8)) {
        return described(monitor->sessions({from, to}));
    }
    /// The same of the stored rows alone.
    std::vector<std::string> rows() {
        return described(database.sessions(origin - Seconds(1e6), origin + Seconds(1e8)));
    }

    static std::vector<std::string> described(const std::vector<ActivitySession>& sessions) {
        std::vector<std::string> texts;
        for (const auto& session : sessions)
            texts.push_back(
                fmt::format("{}{} {:g}-{:g}", session.title,
                            session.kind == SessionKind::focus ? "" : fmt::format("({})", label(session.kind)),
                            (session.start - origin).count(), (session.end - origin).count()));
        return texts;
    }
};

using Rows = std::vector<std::string>;

} // namespace kestrio
