// A watchdog that watches nothing, for tests. Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/Watchdog.h"

namespace kestrio {

class ScriptedWatchdog final : public Watchdog {
public:
    std::optional<std::string> problem; // why it does not start
    bool watches = false;
    int starts = 0;
    std::filesystem::path journal;

    std::optional<std::string> start(const std::filesystem::path& newJournal) override {
        if (watches || problem)
            return watches ? std::nullopt : problem;
        journal = newJournal;
        watches = true;
        ++starts;
        return std::nullopt;
    }
    bool isWatching() override { return watches; }
};

} // namespace kestrio
