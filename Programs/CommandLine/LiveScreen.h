// A terminal taken over by a program that shows something that changes: its second screen, without a cursor, keys one
// by one. Everything is as it was before when this is dropped, however the program ends short of being killed outright.
//
// For the main thread, once at a time; signals that end or stop the program arrive here while this lives.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Platform/Linux/Descriptor.h"

#include <csignal>
#include <cstddef>
#include <optional>
#include <string>
#include <termios.h>
#include <variant>

namespace kestrio {

class LiveScreen {
public:
    /// Whether both standard input and standard output are a terminal that can do this.
    static bool isPossible();

    LiveScreen();
    ~LiveScreen();
    LiveScreen(const LiveScreen&) = delete;
    LiveScreen& operator=(const LiveScreen&) = delete;

    struct Size {
        std::size_t columns = 80;
        std::size_t rows = 24;

        friend bool operator==(const Size&, const Size&) = default;
    };
    Size size() const;

    /// Puts the lines of the text in the place of what is shown, in one piece, so that nothing flickers. False when
    /// nobody looks any more.
    bool show(const std::string& text);

    struct Key {
        char character;
    };
    struct Resized {}; // or come back after having been stopped: everything is to be shown again
    struct Ended {};   // the program is to end
    struct TimePassed {};
    using Event = std::variant<Key, Resized, Ended, TimePassed>;

    /// Waits until something happens, or so long.
    Event wait(Seconds longest);

private:
    void enter();
    void leave() const;
    void stopUntilContinued();

    termios before_{};
    sigset_t maskBefore_{};
    Descriptor signals_;
};

/// One frame: the text's lines put over the ones before, each cleared to its end, and nothing left below.
std::string frameOf(const std::string& text);

} // namespace kestrio
