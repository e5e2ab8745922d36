#include "Programs/CommandLine/LiveScreen.h"

#include "Kestrio/Platform/Linux/Locations.h"
#include "Programs/CommandLine/Terminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr const char* toSecondScreen = "\x1B[?1049h\x1B[?25l\x1B[2J\x1B[H";
constexpr const char* toFirstScreen = "\x1B[?25h\x1B[?1049l";

/// SIGCONT is among them so that coming back is noticed.
sigset_t heardSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH})
        sigaddset(&signals, number);
    return signals;
}

} // namespace

std::string frameOf(const std::string& text) {
    std::string frame = "\x1B[H";
    std::size_t start = 0;
    while (start < text.size()) {
        const auto end = std::min(text.find('\n', start), text.size());
        frame.append(text, start, end - start);
        frame += "\x1B[K";
        start = end + 1;
        if (start < text.size())
            frame += "\r\n";
    }
    return frame + "\x1B[J";
}

bool LiveScreen::isPossible() {
    const auto terminal = processEnvironment("TERM");
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1 && terminal && *terminal != "dumb";
}

LiveScreen::LiveScreen() {
    const auto heard = heardSignals();
    sigprocmask(SIG_BLOCK, &heard, &maskBefore_);
    signals_ = Descriptor(signalfd(-1, &heard, SFD_CLOEXEC | SFD_NONBLOCK));
    tcgetattr(STDIN_FILENO, &before_);
    enter();
}

LiveScreen::~LiveScreen() {
    leave();
    sigprocmask(SIG_SETMASK, &maskBefore_, nullptr);
}

void LiveScreen::enter() {
    auto keys = before_;
    keys.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO));
    keys.c_cc[VMIN] = 0;
    keys.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &keys);
    tryToPrint(toSecondScreen);
}

void LiveScreen::leave() const {
    tryToPrint(toFirstScreen);
    tcsetattr(STDIN_FILENO, TCSADRAIN, &before_);
}

LiveScreen::Size LiveScreen::size() const {
    winsize found{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &found) != 0 || found.ws_col == 0 || found.ws_row == 0)
        return {};
    return {found.ws_col, found.ws_row};
}

bool LiveScreen::show(const std::string& text) {
    return tryToPrint(frameOf(text));
}

void LiveScreen::stopUntilContinued() {
    leave();
    raise(SIGSTOP);
    enter();
}

LiveScreen::Event LiveScreen::wait(Seconds longest) {
    std::array<pollfd, 2> sources{pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{signals_.number(), POLLIN, 0}};
    const int milliseconds = static_cast<int>(std::ceil(std::clamp(longest.count(), 0.0, 3600.0) * 1000));
    if (poll(sources.data(), sources.size(), milliseconds) <= 0)
        return TimePassed();
    signalfd_siginfo signal{};
    if ((sources[1].revents & POLLIN) != 0 && read(signals_.number(), &signal, sizeof signal) == sizeof signal) {
        switch (static_cast<int>(signal.ssi_signo)) {
        case SIGTSTP: stopUntilContinued(); return Resized();
        case SIGWINCH:
        case SIGCONT: return Resized();
        default: return Ended();
        }
    }
    if (sources[0].revents == 0)
        return TimePassed();
    char character = 0;
    const auto count = read(STDIN_FILENO, &character, 1);
    // A terminal that is gone can be read for ever and gives nothing.
    return count == 1 ? Event(Key{character}) : Event(Ended());
}

} // namespace kestrio
