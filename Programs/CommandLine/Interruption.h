// Ctrl-C, and the other signals by which somebody ends a program, as a request to stop in order.
#pragma once

#include <csignal>
#include <stop_token>
#include <thread>

namespace kestrio {

/// While it lives, the first such signal requests the stop; at the second the program ends at once. Made before any
/// other thread.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    std::stop_token token() const { return stop_.get_token(); }

private:
    void wait(const std::stop_token& over);

    sigset_t signals_{};
    sigset_t before_{};
    std::stop_source stop_;
    std::jthread thread_;
};

} // namespace kestrio
