// The agent's side on a bus, as a face finds it.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/BackgroundService.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Tests/Link/LinkBench.h"

namespace kestrio {

/// An agent on a bus, served by a real loop. The monitor's virtual time passes in that loop's work.
class TestAgent {
public:
    explicit TestAgent(const std::string& address) {
        main.sync([&] {
            bench = std::make_unique<LinkBench>(&main);
            connection = BusConnection::open(main, address);
            offer();
        });
    }
    ~TestAgent() { end(); }
    TestAgent(const TestAgent&) = delete;
    TestAgent& operator=(const TestAgent&) = delete;

    bool isOffered() {
        return main.sync([&] { return service != nullptr; });
    }
    void end() {
        main.sync([&] {
            service.reset();
            bench.reset();
            connection.reset();
        });
    }
    /// Runs work on the agent's main queue.
    template <class Work>
    auto with(Work work) {
        return main.sync([&] { return work(*bench); });
    }

private:
    void offer() {
        if (connection)
            service = BackgroundService::offer(
                connection->connection(), [this](const auto& work) { return connection->perform(work); },
                *bench->background);
    }

    WorkerQueue main{"main"};
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinkBench> bench;
    std::unique_ptr<BackgroundService> service;
};

} // namespace kestrio
