// The commands about the machine: what uses it, how it stands, how fast its drive is. Each returns the exit status.
#pragma once

#include <string>

namespace kestrio {

struct TopOptions {
    std::string by = "cpu"; // or "memory"
    bool once = false;      // one table, for reading or for a pipe; so too where there is no terminal
    bool json = false;
};

int top(const TopOptions& options);
int machine(bool json);
int diskTest(bool json);

} // namespace kestrio
