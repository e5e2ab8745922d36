// What `kestrio-tabs` does all its life: hands what a browser's extension tells on to the running agent.
//
// The extension always tells everything, so of what waits only the newest counts, and an agent that starts later is
// told the last of it at once. Single-threaded; sleeps while nothing arrives.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/TabFrames.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kestrio {

class TabRelay {
public:
    /// How long an agent that hung up is left alone, unless it starts anew: it may not have liked what it was told.
    static constexpr Seconds patience{30.0};

    /// `input` is where the browser writes; it stays the caller's.
    TabRelay(int input, std::filesystem::path socket);

    /// Until the browser closes its end (true) or breaks the form of the messages (false).
    bool run();

private:
    bool readBrowser();
    void watchFolder();
    void folderChanged();
    void connect();
    void connectIfDue();
    void hangUp();
    void readAgent();
    void send();
    bool isSending() const { return agent_ && (!sending_.empty() || isUnsent_); }
    int waitMilliseconds() const;

    const int input_;
    const std::filesystem::path socket_;
    const SystemClock clock_;
    TabFrameReader frames_;
    std::optional<std::string> last_; // the last message, as a frame
    bool isUnsent_ = false;           // the agent has not been sent it
    std::string sending_;             // what is left of a frame under way
    Descriptor agent_;
    std::optional<Uptime> notBefore_; // after the agent hung up
    Descriptor notices_;              // of the socket's folder; without it, the agent is looked for now and then
    bool hasEnded_ = false;
    bool isBroken_ = false;
};

} // namespace kestrio
