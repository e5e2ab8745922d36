// In a test program every line that goes to the log is caught, and a line that no `ExpectedLog` is waiting for fails
// the test that was running.
#pragma once

#include <string>
#include <vector>

namespace kestrio {

/// Called once, by the program's `main`.
void installLogGuard();

/// While it lives, lines that go to the log are collected here instead of failing the test. At most one at a time.
class ExpectedLog {
public:
    ExpectedLog();
    ~ExpectedLog();
    ExpectedLog(const ExpectedLog&) = delete;
    ExpectedLog& operator=(const ExpectedLog&) = delete;

    /// The lines so far, in order.
    std::vector<std::string> lines() const;
};

} // namespace kestrio
