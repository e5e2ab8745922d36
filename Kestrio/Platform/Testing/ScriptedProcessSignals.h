// Processes in memory that can be stopped and slowed, for tests. What was done stands in `calls`, in order. Belongs to
// the test's thread.
#pragma once

#include "Kestrio/Platform/ProcessSignals.h"

#include <charconv>
#include <fmt/format.h>
#include <functional>
#include <map>
#include <set>

namespace kestrio {

class ScriptedProcessSignals final : public ProcessSignals {
public:
    struct Process {
        std::uint64_t start = 0;
        ProcessCondition condition = ProcessCondition::running;
        std::string priority = "usual";
        std::uint64_t born = 0; // on the scale of `now`
    };

    /// By number; those that are not here are gone.
    std::map<pid_t, Process> processes;
    /// The processes that cannot be stopped, or slowed, though nothing tells so before.
    std::set<pid_t> unstoppable;
    std::set<pid_t> unslowable;
    /// Goes into the words of each priority; heirs were born at or after it.
    std::uint64_t now = 0;
    /// "stop 1", "resume 1", "slow 1", "restore 1 WORDS".
    std::vector<std::string> calls;
    /// Called before each of them is carried out.
    std::function<void(const std::string& call)> beforeCall = [](const std::string&) {};

    ProcessKey run(pid_t pid, std::uint64_t start) {
        processes[pid] = {.start = start, .born = now};
        return {pid, start};
    }

    /// As a slowed process starts another.
    ProcessKey runHeir(pid_t pid, std::uint64_t start) {
        processes[pid] = {.start = start, .priority = "slow", .born = now};
        return {pid, start};
    }

    ProcessCondition condition(ProcessKey key) override {
        const auto* process = find(key);
        return process ? process->condition : ProcessCondition::gone;
    }

    bool stop(ProcessKey key) override {
        call(fmt::format("stop {}", key.pid));
        if (condition(key) != ProcessCondition::running || unstoppable.contains(key.pid))
            return false;
        find(key)->condition = ProcessCondition::stopped;
        return true;
    }

    bool resume(ProcessKey key) override {
        call(fmt::format("resume {}", key.pid));
        auto* process = touchable(key);
        if (process)
            process->condition = ProcessCondition::running;
        return process != nullptr;
    }

    std::optional<ProcessPriority> priority(ProcessKey key) override {
        const auto* process = touchable(key);
        return process ? std::optional(ProcessPriority{fmt::format("{} since {}", process->priority, now)})
                       : std::nullopt;
    }

    bool slow(ProcessKey key) override {
        call(fmt::format("slow {}", key.pid));
        auto* process = touchable(key);
        if (!process || unslowable.contains(key.pid))
            return false;
        process->priority = "slow";
        return true;
    }

    bool restore(ProcessKey key, const ProcessPriority& before) override {
        call(fmt::format("restore {} {}", key.pid, before.words));
        auto* process = touchable(key);
        if (process && process->priority == "slow")
            process->priority = before.words.empty() ? "usual" : before.words.substr(0, before.words.find(' '));
        return process != nullptr;
    }

    std::vector<ProcessKey> heirs(const ProcessPriority& before) override {
        std::vector<ProcessKey> found;
        const auto moment = before.words.substr(before.words.rfind(' ') + 1);
        std::uint64_t since = 0;
        if (std::from_chars(moment.data(), moment.data() + moment.size(), since).ec != std::errc())
            return found;
        for (const auto& [pid, process] : processes)
            if (process.priority == "slow" && process.born >= since)
                found.push_back({pid, process.start});
        return found;
    }

private:
    void call(const std::string& text) {
        beforeCall(text);
        calls.push_back(text);
    }
    Process* find(ProcessKey key) {
        const auto found = processes.find(key.pid);
        return found != processes.end() && found->second.start == key.start ? &found->second : nullptr;
    }
    Process* touchable(ProcessKey key) {
        auto* process = find(key);
        return process && process->condition != ProcessCondition::untouchable ? process : nullptr;
    }
};

} // namespace kestrio
