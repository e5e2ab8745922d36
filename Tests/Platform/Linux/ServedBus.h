// The other side of a test on a private bus: a connection that a thread of its own serves until it goes, or until the
// bus dies.
#pragma once

#include <atomic>
#include <memory>
#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <thread>

namespace kestrio {

class ServedBus {
public:
    explicit ServedBus(const std::string& address) : bus_(sdbus::createSessionBusConnectionWithAddress(address)) {}
    ~ServedBus() { stop(); }
    ServedBus(const ServedBus&) = delete;
    ServedBus& operator=(const ServedBus&) = delete;

    sdbus::IConnection& connection() { return *bus_; }

    /// After the objects were made.
    void serve(const std::string& name) {
        bus_->requestName(name);
        thread_ = std::thread([this] { loop(); });
    }

    /// Lets everything lie that arrives, as a stopped process does, until told to go on.
    void pause(bool isPaused) { paused_ = isPaused; }

    /// Before the objects go.
    void stop() {
        ending_ = true;
        if (thread_.joinable())
            thread_.join();
    }

private:
    void loop() {
        try {
            while (!ending_) {
                while (!paused_ && bus_->processPendingRequest()) {
                }
                pollfd descriptor{bus_->getEventLoopPollData().fd, POLLIN, 0};
                poll(&descriptor, 1, 10);
            }
        } catch (const sdbus::Error&) {
            // The bus died, as some tests want.
        }
    }

    std::unique_ptr<sdbus::IConnection> bus_;
    std::atomic<bool> ending_ = false;
    std::atomic<bool> paused_ = false;
    std::thread thread_;
};

} // namespace kestrio
