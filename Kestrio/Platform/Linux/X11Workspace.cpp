#include "Kestrio/Platform/Linux/X11Workspace.h"

#include "Kestrio/Platform/Linux/DetachedProgram.h"

#include <algorithm>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr Seconds patienceForEnding{5};
constexpr Seconds betweenQuestionsToASilentServer{1};

bool isSameProcess(const RunningApplication& a, const RunningApplication& b) {
    if (a.processIdentifier || b.processIdentifier)
        return a.processIdentifier == b.processIdentifier;
    return a.bundleIdentifier == b.bundleIdentifier;
}

bool has(const std::vector<RunningApplication>& applications, const RunningApplication& wanted) {
    return std::any_of(applications.begin(), applications.end(),
                       [&](const auto& application) { return isSameProcess(application, wanted); });
}

/// Whether `all` has an application that `some` lacks.
bool hasMore(const std::vector<RunningApplication>& all, const std::vector<RunningApplication>& some) {
    return std::any_of(all.begin(), all.end(), [&](const auto& application) { return !has(some, application); });
}

/// A panel of this program, beside the bar. Whoever glances at it still uses what was in front before.
bool isOwnPanel(const X11Window& window) {
    return !window.isRegular && window.instanceName == "kestrio-window";
}

} // namespace

X11Workspace::X11Workspace(Queue& queue, X11Windows& windows, ApplicationIdentity& identity)
    : queue_(queue), windows_(windows), identity_(identity) {}

RunningApplication X11Workspace::applicationOf(const X11Window& window) {
    auto found = identity_.identify({window.process, window.className, window.instanceName});
    return {std::move(found.bundleIdentifier), std::move(found.localizedName), window.process};
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    auto window = windows_.active();
    if (!window)
        return std::nullopt;
    if (window != frontWindow_) {
        if (frontWindow_ && isOwnPanel(*window))
            return front_;
        front_ = applicationOf(*window);
        frontWindow_ = std::move(window);
    }
    return front_;
}

std::vector<RunningApplication> X11Workspace::running() {
    const auto* windows = windows_.managed();
    if (!windows)
        return {};
    if (runningVersion_ == windows_.managedVersion())
        return running_;
    running_.clear();
    for (const auto& window : *windows) {
        if (!window.isRegular)
            continue;
        if (auto application = applicationOf(window); !has(running_, application))
            running_.push_back(std::move(application));
    }
    runningVersion_ = windows_.managedVersion();
    return running_;
}

std::vector<RunningApplication> X11Workspace::runningApplications() {
    return running();
}

Subscription X11Workspace::observe(std::function<void(WorkspaceNotice)> receiver) {
    if (!changes_.isActive()) {
        toldFront_ = frontmostApplication();
        toldRunning_ = running();
        changes_ = windows_.observe([this] { tellChanges(); });
    }
    return notices_.subscribe(std::move(receiver));
}

void X11Workspace::tellChanges() {
    auto front = frontmostApplication();
    auto applications = running();
    if (windows_.isSilent()) { // nothing has ended because nobody answers
        tellingAgain_ = queue_.after(betweenQuestionsToASilentServer, [this] { tellChanges(); });
        return;
    }
    const bool isActivated = front != toldFront_;
    const bool isLaunched = hasMore(applications, toldRunning_);
    const bool isTerminated = hasMore(toldRunning_, applications);
    toldFront_ = std::move(front);
    toldRunning_ = std::move(applications);
    if (isLaunched)
        notices_.emit(WorkspaceNotice::launched);
    if (isActivated)
        notices_.emit(WorkspaceNotice::activated);
    if (isTerminated)
        notices_.emit(WorkspaceNotice::terminated);
}

std::optional<std::string> X11Workspace::applicationName(const std::string& bundleIdentifier) {
    return identity_.name(bundleIdentifier);
}

std::optional<std::string> X11Workspace::applicationIcon(const std::string& bundleIdentifier) {
    return identity_.icon(bundleIdentifier);
}

bool X11Workspace::open(const std::string& fileOrAddress) {
    // What begins with a dash is a file of that name, not an option.
    const auto operand = fileOrAddress.starts_with('-') ? "./" + fileOrAddress : fileOrAddress;
    return !fileOrAddress.empty() && (startDetached({"xdg-open", operand}) || startDetached({"gio", "open", operand}));
}

bool X11Workspace::terminate(const RunningApplication& application) {
    bool isAsked = false;
    // By value: what is asked about a window may bring news of all of them.
    const auto* managed = windows_.managed();
    const auto windows = managed ? *managed : std::vector<X11Window>();
    for (const auto& window : windows)
        if (application.processIdentifier ? window.process == application.processIdentifier
                                          : applicationOf(window).bundleIdentifier == application.bundleIdentifier)
            isAsked |= windows_.close(window.id);
    if (application.processIdentifier)
        isAsked |= endSoon(*application.processIdentifier);
    return isAsked;
}

bool X11Workspace::endSoon(pid_t process) {
    const auto start = readStartTicks(identity_.processes(), process);
    if (!start || process <= 1 || process == getpid())
        return false;
    const bool isUnderWay = std::any_of(endings_.begin(), endings_.end(), [&](const Ending& ending) {
        return ending.process == process && ending.start == *start;
    });
    if (isUnderWay)
        return true;
    auto& ending = endings_.emplace_back(Ending{process, *start, {}});
    ending.timer = queue_.after(patienceForEnding, [this, process, startTicks = *start] { end(process, startTicks); });
    return true;
}

void X11Workspace::end(pid_t process, std::uint64_t start) {
    std::erase_if(endings_, [&](const Ending& ending) { return ending.process == process && ending.start == start; });
    const auto* windows = windows_.managed();
    if (windows &&
        std::any_of(windows->begin(), windows->end(), [&](const auto& window) { return window.process == process; }))
        return;
    if (windows_.isSilent()) // whether it refused cannot be known
        return;
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0)
        return;
    // With the descriptor held the number cannot pass to another process; it may have before.
    if (readStartTicks(identity_.processes(), process) == start)
        syscall(SYS_pidfd_send_signal, descriptor, SIGTERM, nullptr, 0);
    close(descriptor);
}

} // namespace kestrio
