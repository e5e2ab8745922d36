// Who keeps the display or the machine awake, by the word of everything on this host that knows: the X server, the
// session managers of the desktops, the login manager, and the calls to the screen saver service.
//
// Belongs to the queue that it was made for. All but the X server give notices, so that a question costs nothing but
// that server's answer (1 ms), and that is asked for rarely while nothing plays.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/SleepInhibitors.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

namespace kestrio {

class BusConnection;
class GnomeInhibitors;
class KdeInhibitors;
class LogindInhibitors;
class LoopQueue;
class ScreenSaverHolders;
class X11Connection;

class LinuxSleepInhibitors final : public SleepInhibitors {
public:
    /// The X server is asked at most so often while something plays or keeps it awake, and otherwise.
    static constexpr Seconds busyPace{2.0};
    static constexpr Seconds quietPace{20.0};

    struct Setup {
        std::optional<std::string> sessionBus; // addresses; absent where there is none
        std::optional<std::string> systemBus;
        uid_t user = 0;
        X11Connection* x11 = nullptr; // outlives this
        /// Whether any sound is to be heard, the usual companion of a display that is kept awake.
        std::function<bool()> isAnythingPlaying = [] { return true; };
    };

    /// The buses of this session and this user, without an X server.
    static Setup setupOfThisSession();

    /// Queue and clock must outlive this.
    LinuxSleepInhibitors(LoopQueue& queue, const Clock& clock, Setup setup);
    ~LinuxSleepInhibitors() override;
    LinuxSleepInhibitors(const LinuxSleepInhibitors&) = delete;
    LinuxSleepInhibitors& operator=(const LinuxSleepInhibitors&) = delete;

    std::vector<SleepInhibitor> held() override;

private:
    void openSessionBus(LoopQueue& queue);
    void openSystemBus(LoopQueue& queue);
    void askX11IfDue();

    const Clock& clock_;
    const Setup setup_;
    std::vector<pid_t> x11Processes_; // as the X server last told
    std::optional<Uptime> lastAsked_;

    std::unique_ptr<BusConnection> sessionBus_; // those below go before it
    std::unique_ptr<GnomeInhibitors> gnome_;
    std::unique_ptr<KdeInhibitors> kde_;
    std::unique_ptr<ScreenSaverHolders> screenSaver_;
    std::unique_ptr<BusConnection> systemBus_; // the one below goes before it
    std::unique_ptr<LogindInhibitors> logind_;
};

} // namespace kestrio
