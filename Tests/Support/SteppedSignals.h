// Signals that stand still for ever before a chosen deed, for tests that murder whoever sends them: "stop 3" is before
// the third process is stopped. Single-threaded.
#pragma once

#include "Kestrio/Platform/ProcessSignals.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <string>
#include <unistd.h>

namespace kestrio {

/// Counts the deeds of each kind. At the wanted one it writes a file "there" into the folder of notes, and never
/// returns.
class Steps {
public:
    Steps(std::string wanted, std::filesystem::path notes) : wanted_(std::move(wanted)), notes_(std::move(notes)) {}

    bool isWanted(const std::string& step) const { return step == wanted_; }

    void reach(const std::string& step) const {
        if (!isWanted(step))
            return;
        std::ofstream(notes_ / "there") << step;
        for (;;)
            pause();
    }

    void reachNext(const std::string& kind) { reach(fmt::format("{} {}", kind, ++counts_[kind])); }

private:
    const std::string wanted_;
    const std::filesystem::path notes_;
    std::map<std::string, int> counts_;
};

/// Passes everything on, and lets the test stop it before each deed.
class SteppedSignals final : public ProcessSignals {
public:
    SteppedSignals(ProcessSignals& real, Steps& steps) : real_(real), steps_(steps) {}

    ProcessCondition condition(ProcessKey key) override { return real_.condition(key); }
    bool stop(ProcessKey key) override { return steps_.reachNext("stop"), real_.stop(key); }
    bool resume(ProcessKey key) override { return steps_.reachNext("resume"), real_.resume(key); }
    std::optional<ProcessPriority> priority(ProcessKey key) override { return real_.priority(key); }
    bool slow(ProcessKey key) override { return steps_.reachNext("slow"), real_.slow(key); }
    bool restore(ProcessKey key, const ProcessPriority& before) override {
        return steps_.reachNext("restore"), real_.restore(key, before);
    }
    std::vector<ProcessKey> heirs(const ProcessPriority& before) override { return real_.heirs(before); }

private:
    ProcessSignals& real_;
    Steps& steps_;
};

} // namespace kestrio
