// The words of `kestrioctl optimizer`.
#pragma once

#include "Programs/CommandLine/OptimizerCommands.h"

namespace CLI {
class App;
}

namespace kestrio {

/// Where the arguments end up; lives until the command line was read.
struct OptimizerArguments {
    bool json = false;
    std::string app;
    std::string tier;
    std::optional<std::string> tierForNow;
    double hours = 0;
    std::int64_t number = 0;
    NewSchedule schedule;
    TuningChanges tuning;
};

/// `arguments` and `status`, which becomes the exit status, must outlive the reading of the command line.
void addOptimizer(CLI::App& app, OptimizerArguments& arguments, int& status);

} // namespace kestrio
