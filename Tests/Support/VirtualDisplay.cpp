#include "Tests/Support/VirtualDisplay.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <xcb/xcb.h>

namespace kestrio {
namespace {

constexpr std::chrono::seconds patience{10};

/// Runs in the child, with only calls that are safe after a fork of a program with threads.
[[noreturn]] void become(char* const* arguments, char* const* environment, int inherited, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(127);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int null = open("/dev/null", O_RDWR);
    for (int stream = 0; stream <= 2; ++stream)
        dup2(null, stream);
    if (inherited >= 0)
        fcntl(inherited, F_SETFD, 0);
    execvpe(arguments[0], arguments, environment);
    _exit(127);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

/// The windows that a window manager says it manages.
std::vector<xcb_window_t> managedWindows(xcb_connection_t* xcb, xcb_window_t root) {
    constexpr char name[] = "_NET_CLIENT_LIST";
    std::vector<xcb_window_t> windows;
    auto* atom = xcb_intern_atom_reply(xcb, xcb_intern_atom(xcb, 0, sizeof name - 1, name), nullptr);
    if (!atom)
        return windows;
    auto* property =
        xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, root, atom->atom, XCB_ATOM_WINDOW, 0, 1024), nullptr);
    if (property) {
        const auto* first = static_cast<const xcb_window_t*>(xcb_get_property_value(property));
        windows.assign(first, first + xcb_get_property_value_length(property) / 4);
    }
    std::free(atom);
    std::free(property);
    return windows;
}

/// Polls, for `limit` at most.
template <class Condition>
bool comesTrue(std::chrono::milliseconds limit, Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

/// A window that is mapped while the window manager is still starting may be overlooked by it for ever. So its word
/// that it is there is not enough: it manages when it takes up a window of ours.
bool manages(xcb_connection_t* xcb) {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data->root;
    const auto window = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, root, 0, 0, 10, 10, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(xcb, window);
    const auto isListed = [&] {
        const auto windows = managedWindows(xcb, root);
        return std::find(windows.begin(), windows.end(), window) != windows.end();
    };
    const bool taken = comesTrue(std::chrono::milliseconds(100), isListed);
    xcb_destroy_window(xcb, window);
    xcb_flush(xcb);
    return taken && comesTrue(patience, [&] { return !isListed(); });
}

} // namespace

TestProgram::TestProgram(const std::vector<std::string>& arguments, const std::vector<std::string>& settings,
                         std::optional<int> inheritedDescriptor) {
    auto words = arguments;
    std::vector<std::string> environment;
    for (char** entry = environ; *entry; ++entry)
        environment.emplace_back(*entry);
    for (const auto& setting : settings) {
        const auto key = setting.substr(0, setting.find('=') + 1);
        std::erase_if(environment, [&](const std::string& entry) { return entry.starts_with(key); });
        environment.push_back(setting);
    }
    const auto argumentPointers = pointers(words);
    const auto environmentPointers = pointers(environment);
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0)
        become(argumentPointers.data(), environmentPointers.data(), inheritedDescriptor.value_or(-1), parent);
    if (process_ < 0)
        process_ = 0;
}

TestProgram::TestProgram(TestProgram&& other) noexcept : process_(std::exchange(other.process_, 0)) {}

TestProgram& TestProgram::operator=(TestProgram&& other) noexcept {
    if (this != &other) {
        kill();
        process_ = std::exchange(other.process_, 0);
    }
    return *this;
}

TestProgram::~TestProgram() {
    kill();
}

bool TestProgram::isRunning() {
    if (process_ > 0 && waitpid(process_, nullptr, WNOHANG) == process_)
        process_ = 0;
    return process_ > 0;
}

void TestProgram::signal(int number) const {
    if (process_ > 0)
        ::kill(process_, number);
}

void TestProgram::kill() {
    if (process_ <= 0)
        return;
    ::kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
}

VirtualDisplay::VirtualDisplay() {
    startServer({});
}

bool VirtualDisplay::startServer(std::vector<std::string> arguments) {
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0)
        return false;
    std::vector<std::string> command{"Xvfb"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    for (const char* argument : {"-displayfd", "", "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"})
        command.emplace_back(argument);
    for (std::size_t i = 1; i < command.size(); ++i)
        if (command[i - 1] == "-displayfd")
            command[i] = std::to_string(report[1]);
    server_ = TestProgram(command, {}, report[1]);
    close(report[1]);
    std::string number;
    char byte = 0;
    pollfd readable{report[0], POLLIN, 0};
    const auto milliseconds = static_cast<int>(std::chrono::milliseconds(patience).count());
    while (poll(&readable, 1, milliseconds) > 0 && read(report[0], &byte, 1) == 1 && byte != '\n')
        number += byte;
    close(report[0]);
    if (number.empty()) {
        server_.kill();
        return false;
    }
    name_ = ":" + number;
    return true;
}

bool VirtualDisplay::startWindowManager() {
    windowManager_ = start({"openbox", "--sm-disable"});
    auto* xcb = xcb_connect(name_.c_str(), nullptr);
    const bool found = !xcb_connection_has_error(xcb) && comesTrue(patience, [&] { return manages(xcb); });
    xcb_disconnect(xcb);
    return found;
}

void VirtualDisplay::killWindowManager() {
    windowManager_.kill();
}

TestProgram VirtualDisplay::start(const std::vector<std::string>& arguments) const {
    return TestProgram(arguments, {"DISPLAY=" + name_});
}

void VirtualDisplay::stop() const {
    server_.signal(SIGSTOP);
}

void VirtualDisplay::continueOn() const {
    server_.signal(SIGCONT);
}

void VirtualDisplay::kill() {
    windowManager_.kill();
    server_.kill();
}

bool VirtualDisplay::restart() {
    kill();
    return startServer({name_});
}

} // namespace kestrio
