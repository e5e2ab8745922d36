// Session events of a Linux desktop: sleep, lock and session switch from logind, the lock of the desktop's own screen
// saver from the session bus, and a sleep that nobody announced from the clocks.
//
// Belongs to the queue it was made for: made, used and dropped in its work, or before its loop runs. Buses and services
// that are missing or hang hold nothing up; a logind or screen saver that starts later is found. Displays are another
// source's affair.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/SessionEvents.h"

#include <string>
#include <sys/types.h>
#include <unistd.h>

namespace kestrio {

class LogindWatch;
class LoopQueue;
class ScreenSaverWatch;
class SuspendWatch;

class LogindSessionEvents final : public SessionEvents {
public:
    struct Setup {
        /// Addresses of the buses; absent means that there is none to ask.
        std::optional<std::string> systemBus;
        std::optional<std::string> sessionBus;
        /// Whose session counts: this process's, else the one of this identifier, else the user's on the display.
        pid_t process = getpid();
        uid_t user = getuid();
        std::optional<std::string> sessionIdentifier;
        /// A request to lock counts as a lock. When neither logind's hint nor a screen saver confirms it within this
        /// time, it counts no longer: not every desktop has somebody who locks, and then nobody would unlock either.
        Seconds lockConfirmation{10};
    };

    /// The buses and the session of this process's environment.
    static Setup setupOfThisSession();

    LogindSessionEvents(LoopQueue& queue, Setup setup);
    ~LogindSessionEvents() override;

    Subscription observe(std::function<void(const SessionNotice&)> receiver) override;

    /// Waits for logind, 0.4 s at most and once only, when it has not answered yet.
    std::optional<Date> sessionStart() override;

private:
    struct Reports;

    void lockRequested();
    void lockMayHaveChanged();
    void setActive(bool active);
    void tell(SessionEvent event, std::shared_ptr<void> hold = {});
    void announceWhatIsInForce(const std::weak_ptr<std::function<void(const SessionNotice&)>>& receiver);
    void armForReceivers();

    LoopQueue& queue_;
    const Seconds lockConfirmation_;
    Signal<SessionNotice> happened_;

    bool lockRequested_ = false;
    bool lockHinted_ = false;
    bool screenSaverActive_ = false;
    bool locked_ = false;   // as told
    bool inactive_ = false; // as told
    Subscription confirmation_;

    // Tells tokens and work on the queue that this is gone.
    std::shared_ptr<LogindSessionEvents*> self_;

    std::unique_ptr<LogindWatch> logind_;
    std::unique_ptr<ScreenSaverWatch> screenSavers_;
    std::unique_ptr<SuspendWatch> suspend_;
};

} // namespace kestrio
