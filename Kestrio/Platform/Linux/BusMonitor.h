// Seeing the calls that other programs make to each other on a bus of the person's own, where nothing else tells of
// what they mean. Only calls that fit a rule arrive, and of their content nothing is read.
//
// Belongs to the queue that it was made for; waits for the bus at its making only, 0.8 s at most.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrio {

class LoopQueue;

class BusMonitor {
public:
    struct Call {
        std::string sender; // the unique name of the caller's connection
        std::string interface;
        std::string member;
    };

    /// Null when the bus does not let us. `seen` is called on the queue, `ended` once, when the bus died. The queue
    /// must outlive the answer, which must not be dropped from within `seen`.
    static std::unique_ptr<BusMonitor> open(LoopQueue& queue, const std::string& address,
                                            const std::vector<std::string>& rules,
                                            std::function<void(const Call&)> seen, std::function<void()> ended);

    ~BusMonitor();
    BusMonitor(const BusMonitor&) = delete;
    BusMonitor& operator=(const BusMonitor&) = delete;

private:
    struct Connection;

    BusMonitor(std::unique_ptr<Connection> connection, std::function<void(const Call&)> seen,
               std::function<void()> ended);
    void read();

    const std::unique_ptr<Connection> connection_;
    const std::function<void(const Call&)> seen_;
    const std::function<void()> ended_;
    Subscription watch_;
    Subscription first_;
};

} // namespace kestrio
