// A machine with applications whose processes can be stopped and slowed, for tests of the optimizer: what happens to
// each process shows in its state and, in order, in `signals`. Signals, slowing and the journal fail when told to.
// Belongs to the test's thread.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Optimizer/ProcessHolding.h"
#include "Kestrio/Platform/Workspace.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

class FakeMachine final : public Workspace, public ProcessHolding {
public:
    struct Process {
        ProcessKey key;
        pid_t main = 0; // the process that is responsible for it
        bool isStopped = false;
        bool isSlowed = false;
    };
    struct Application {
        std::string id;
        std::string name;
        pid_t pid = 0;
        std::optional<Date> launched;
    };

    std::map<pid_t, Process> table;
    std::vector<Application> applications; // those with a window, in the workspace's order
    std::optional<pid_t> front;

    std::set<pid_t> unstoppable; // stopping fails, as of another person's process
    std::set<pid_t> unslowable;
    bool isJournalWritable = true;
    std::function<void()> beforeStop = [] {}; // the worst instant
    std::size_t leftByEarlierRuns = 0;

    std::vector<std::string> signals; // "stop 100", "continue 100", "slow 100", "restore 100"
    std::vector<ProcessKey> journalFrozen;
    std::vector<ProcessKey> journalSlowed;
    int records = 0;
    int sweeps = 0; // over all processes
    int watchers = 0;
    int recoveries = 0;
    std::vector<pid_t> terminated;

    // What happens on it.

    void launch(const std::string& id, pid_t pid, int helpers = 0, std::optional<Date> launched = {}) {
        start(pid, pid);
        for (int helper = 1; helper <= helpers; ++helper)
            start(pid + helper, pid);
        applications.push_back({id, shownName(id), pid, launched});
    }
    void start(pid_t pid, pid_t main) { table[pid] = Process{.key = {pid, ++starts_}, .main = main}; }
    void endProcess(pid_t pid) { table.erase(pid); }

    /// The application ends with all its processes; the notice is the test's.
    void quit(pid_t pid) {
        std::erase_if(table, [&](const auto& process) { return process.second.main == pid; });
        loseWindow(pid);
    }
    /// Its processes live on.
    void loseWindow(pid_t pid) {
        std::erase_if(applications, [&](const auto& application) { return application.pid == pid; });
        if (front == pid)
            front.reset();
    }

    void announce(WorkspaceNotice notice) { notices_.emit(notice); }
    void activate(pid_t pid) {
        front = pid;
        announce(WorkspaceNotice::activated);
    }

    // How it stands.

    std::vector<pid_t> stopped() const { return having(&Process::isStopped); }
    std::vector<pid_t> slowed() const { return having(&Process::isSlowed); }
    RunningApplication application(pid_t pid) const {
        const auto found =
            std::ranges::find_if(applications, [&](const auto& application) { return application.pid == pid; });
        return found == applications.end() ? RunningApplication{} : asRunning(*found);
    }
    std::optional<Date> launchDate(pid_t pid) const {
        const auto found =
            std::ranges::find_if(applications, [&](const auto& application) { return application.pid == pid; });
        return found == applications.end() ? std::nullopt : found->launched;
    }
    /// "org.example.chat" is shown as "chat".
    static std::string shownName(const std::string& id) { return id.substr(id.rfind('.') + 1); }

    // Workspace

    std::optional<RunningApplication> frontmostApplication() override {
        return front ? std::optional(application(*front)) : std::nullopt;
    }
    std::vector<RunningApplication> runningApplications() override {
        std::vector<RunningApplication> running;
        for (const auto& application : applications)
            running.push_back(asRunning(application));
        return running;
    }
    Subscription observe(std::function<void(WorkspaceNotice)> receiver) override {
        return notices_.subscribe(std::move(receiver));
    }
    std::optional<std::string> applicationName(const std::string&) override { return std::nullopt; }
    std::optional<std::string> applicationIcon(const std::string&) override { return std::nullopt; }
    bool open(const std::string&) override { return false; }
    bool terminate(const RunningApplication& application) override {
        signals.push_back("terminate " + std::to_string(application.processIdentifier.value_or(0)));
        terminated.push_back(application.processIdentifier.value_or(0));
        return true;
    }

    // ProcessHolding

    std::vector<ProcessKey> processes(pid_t mainProcess) override {
        auto found = rememberedProcesses({mainProcess});
        return std::move(found[mainProcess]);
    }
    ProcessesByMain rememberedProcesses(const std::set<pid_t>& mainProcesses) override {
        ++sweeps;
        ProcessesByMain found;
        for (const auto main : mainProcesses) {
            if (table.contains(main))
                found[main].push_back(table.at(main).key);
        }
        for (const auto& [pid, process] : table) {
            if (pid != process.main && found.contains(process.main))
                found[process.main].push_back(process.key);
        }
        return found;
    }
    std::vector<ProcessKey> freeze(const std::vector<ProcessKey>& keys) override {
        beforeStop();
        if (!announceToJournal(journalFrozen, keys))
            return {};
        return touched(keys, "stop", [this](Process& process) {
            process.isStopped = process.isStopped || !unstoppable.contains(process.key.pid);
            return process.isStopped;
        });
    }
    void resume(const std::vector<ProcessKey>& keys) override {
        touched({keys.rbegin(), keys.rend()}, "continue", [](Process& process) {
            process.isStopped = false;
            return true;
        });
    }
    std::vector<ProcessKey> slow(const std::vector<ProcessKey>& keys) override {
        if (!announceToJournal(journalSlowed, keys))
            return {};
        return touched(keys, "slow", [this](Process& process) {
            process.isSlowed = process.isSlowed || !unslowable.contains(process.key.pid);
            return process.isSlowed;
        });
    }
    void restore(const std::vector<ProcessKey>& keys) override {
        touched(keys, "restore", [](Process& process) {
            process.isSlowed = false;
            return true;
        });
    }
    void record(const std::vector<ProcessKey>& frozen, const std::vector<ProcessKey>& slowed) override {
        ++records;
        if (!isJournalWritable)
            return;
        journalFrozen = frozen;
        journalSlowed = slowed;
    }
    void startWatcher() override { ++watchers; }
    std::size_t recoverEarlierRuns() override {
        ++recoveries;
        return leftByEarlierRuns;
    }

private:
    static RunningApplication asRunning(const Application& application) {
        return {.bundleIdentifier = application.id,
                .localizedName = application.name,
                .processIdentifier = application.pid};
    }

    std::vector<pid_t> having(bool Process::*state) const {
        std::vector<pid_t> pids;
        for (const auto& [pid, process] : table) {
            if (process.*state)
                pids.push_back(pid);
        }
        return pids;
    }

    bool announceToJournal(std::vector<ProcessKey>& journal, const std::vector<ProcessKey>& keys) const {
        if (isJournalWritable)
            journal.insert(journal.end(), keys.begin(), keys.end());
        return isJournalWritable;
    }

    /// Does it to each process that is still the same, and answers where it worked.
    template <class Do>
    std::vector<ProcessKey> touched(const std::vector<ProcessKey>& keys, const std::string& what, Do act) {
        std::vector<ProcessKey> done;
        for (const auto& key : keys) {
            const auto found = table.find(key.pid);
            if (found == table.end() || found->second.key != key || !act(found->second))
                continue;
            signals.push_back(what + " " + std::to_string(key.pid));
            done.push_back(key);
        }
        return done;
    }

    std::uint64_t starts_ = 0;
    Signal<WorkspaceNotice> notices_;
};

} // namespace kestrio
