// A logind that a test directs, on a private bus, served by a thread of its own.
#pragma once

#include "Tests/Platform/Linux/ServedBus.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <vector>

namespace kestrio {

class MockLogind {
public:
    struct Script {
        bool knowsProcess = true;
        bool knowsIdentifier = true;
        bool hasDisplaySession = true;
        bool locked = false;
        bool active = true;
        /// Answers no question about sessions, ever.
        bool silent = false;
        std::uint64_t timestamp = 1'700'000'000'250'000;
    };

    MockLogind(const std::string& busAddress, const Script& script);
    ~MockLogind();
    MockLogind(const MockLogind&) = delete;
    MockLogind& operator=(const MockLogind&) = delete;

    void prepareForSleep(bool sleeping);
    void prepareForShutdown(bool isNear);
    void requestLock();
    void requestUnlock();
    void setLockedHint(bool locked);
    void setActive(bool active);
    void removeSession();

    /// How many delay locks for sleep somebody holds right now.
    int delayLocksHeld();

    /// Every `Inhibit` so far, "what|who|mode".
    std::vector<std::string> inhibitions();

private:
    void serveManager();
    void serveUser();
    void serveSession();

    const Script script_;
    std::atomic<bool> locked_;
    std::atomic<bool> active_;
    std::mutex mutex_; // guards the three below
    std::vector<int> lockPipes_;
    std::vector<std::string> inhibitions_;
    std::vector<sdbus::Result<sdbus::ObjectPath>> unanswered_;
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> manager_;
    std::unique_ptr<sdbus::IObject> user_;
    std::unique_ptr<sdbus::IObject> session_;
};

} // namespace kestrio
