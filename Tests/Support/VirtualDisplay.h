// A private X server for one test: Xvfb on a display of its own, which ends with the test in whatever way that ends.
// For the thread that made it: the server dies with that thread.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// A program that a test started. It ends with this, or with the test's thread.
class TestProgram {
public:
    TestProgram() = default;
    /// The first argument is the program, looked up in $PATH. The settings, "NAME=value", are added to the environment.
    /// Output goes nowhere.
    explicit TestProgram(const std::vector<std::string>& arguments, const std::vector<std::string>& settings = {},
                         std::optional<int> inheritedDescriptor = {});
    TestProgram(TestProgram&& other) noexcept;
    TestProgram& operator=(TestProgram&& other) noexcept;
    ~TestProgram();

    pid_t process() const { return process_; }
    bool isRunning();

    void signal(int number) const;
    /// Sends SIGKILL and waits for the end.
    void kill();

private:
    pid_t process_ = 0;
};

class VirtualDisplay {
public:
    /// Waits until the server takes connections, ten seconds at most; `isRunning` tells whether it does.
    VirtualDisplay();

    /// As in $DISPLAY, ":7".
    const std::string& name() const { return name_; }
    bool isRunning() { return server_.isRunning(); }

    /// Starts openbox and waits until it manages the display, ten seconds at most. False when that did not come about.
    bool startWindowManager();
    void killWindowManager();

    /// Starts a program on the display.
    TestProgram start(const std::vector<std::string>& arguments) const;

    void stop() const;       // SIGSTOP: connections stay, nobody answers
    void continueOn() const; // SIGCONT
    void kill();             // the server and the window manager
    bool restart();          // under the same name; false when that is taken

private:
    bool startServer(std::vector<std::string> arguments);

    std::string name_;
    TestProgram server_;
    TestProgram windowManager_;
};

} // namespace kestrio
