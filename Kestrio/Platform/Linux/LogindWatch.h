// What logind on the system bus tells about the machine's sleep and the person's session.
//
// Belongs to the queue it was made for, on which reports come. Talks to logind without waiting for it: one that hangs
// or is missing holds nothing up, and one that starts later is found.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

namespace sdbus {
class Error;
class IProxy;
class Message;
class Variant;
} // namespace sdbus

namespace kestrio {

class BusConnection;
class LoopQueue;

enum class LogindReport {
    willSleep,
    didWake,
    lockRequested, // somebody asked for a lock; whether one comes is another matter
    unlockRequested,
    locked,
    unlocked,
    active,
    inactive,
    lost, // logind or the session is gone; nothing is known of either any more
};

/// Whose session it is.
struct SessionOwner {
    pid_t process;
    uid_t user;
    /// What the session's start put in the environment; helps where the process belongs to no session, as below a
    /// service manager of the user.
    std::optional<std::string> sessionIdentifier;
};

class LogindWatch {
public:
    LogindWatch(LoopQueue& queue, const std::string& busAddress, SessionOwner owner,
                std::function<void(LogindReport)> report);
    ~LogindWatch();
    LogindWatch(const LogindWatch&) = delete;
    LogindWatch& operator=(const LogindWatch&) = delete;

    /// While armed, the machine's sleep waits (five seconds at most, by logind's own bound) for whoever is told of it.
    void setArmed(bool armed);

    /// At `willSleep`: what holds the machine awake until the last copy goes. Null when there is nothing to hold.
    std::shared_ptr<void> takeDelayLock() { return std::move(delayLock_); }

    /// When the session began. Waits for logind, 0.4 s at most and once only, when it has not answered yet.
    std::optional<Date> sessionStart();

private:
    enum class Search { running, found, nothing };
    using Properties = std::map<std::string, sdbus::Variant>;

    void connect();
    void ownerChanged(sdbus::Message& message);
    void managerTold(sdbus::Message& message);
    void sessionTold(sdbus::Message& message);
    void forgetSession();

    // The search for the session, each step asking the next when it fails.
    void search();
    void askByIdentifier();
    void askByUser();
    void askDisplaySession(const std::string& userPath);
    void nothingFound();
    /// True when logind didn't answer at all; it is then asked again from the start, a little later.
    bool isSilent(const sdbus::Error& error);

    void adoptSession(const std::string& path);
    void readSession();
    void applySession(const Properties& properties);
    void takeLock();
    std::optional<Date> askSessionStart();

    LoopQueue& queue_;
    const std::string busAddress_;
    const SessionOwner owner_;
    const std::function<void(LogindReport)> report_;

    bool armed_ = false;
    bool sleeping_ = false;
    std::shared_ptr<void> delayLock_;
    Search search_ = Search::running;
    bool startWasAsked_ = false;
    std::string sessionPath_;
    std::optional<bool> locked_;
    std::optional<bool> active_;
    std::optional<Date> sessionStart_;

    std::unique_ptr<BusConnection> bus_; // everything below goes before it
    Subscription ownerMatch_;
    Subscription managerMatch_;
    Subscription sessionMatch_;
    Subscription again_;
    std::unique_ptr<sdbus::IProxy> manager_;
    std::unique_ptr<sdbus::IProxy> user_;
    std::unique_ptr<sdbus::IProxy> session_;
};

} // namespace kestrio
