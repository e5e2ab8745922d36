// How a command is put into the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <utility>

namespace kestrio::commandLine {

/// A command without arguments of its own beyond what `configure` adds; `run` gives the exit status.
inline void add(CLI::App& to, const char* name, const char* about, int& status, std::function<int()> run,
                const std::function<void(CLI::App&)>& configure = {}) {
    auto* command = to.add_subcommand(name, about);
    if (configure)
        configure(*command);
    command->callback([&status, run = std::move(run)] { status = run(); });
}

} // namespace kestrio::commandLine
