// The commands that write sessions to files and read them back. Each returns the exit status.
#pragma once

#include <string>
#include <vector>

namespace kestrio {

struct ExportOptions {
    std::string range = "all";
    std::string output; // a file, or "-" for standard output
};

int exportSessions(const ExportOptions& options);

/// Goes through the agent where one runs. `files` are paths, or "-" for standard input.
int importSessions(const std::vector<std::string>& files);

} // namespace kestrio
