// With real processes, a real terminal and a real tracer.
#include "Kestrio/Platform/Linux/LaunchDate.h"
#include "Kestrio/Platform/Linux/ProcessHazards.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/VirtualDisplay.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

TEST(TerminalJob, isReadFromTheKernelsLine) {
    struct Row {
        const char* stat;
        std::optional<TerminalJob> job;
    };
    const Row rows[] = {
        {"42 (vi) S 1 42 7 34816 42 0 0", TerminalJob{42, 42, 7, 34816, 42}},
        {"42 (a) b) (c) S 1 43 7 0 -1 0", TerminalJob{42, 43, 7, 0, -1}},
        {"42 (vi) S 1 42 7", std::nullopt},
        {"", std::nullopt},
        {"42", std::nullopt},
        {"x (vi) S 1 42 7 34816 42", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseTerminalJob(row.stat), row.job) << row.stat;
}

TEST(TerminalJob, isInFrontWhereItsGroupHasTheTerminal) {
    EXPECT_TRUE((TerminalJob{42, 42, 7, 34816, 42}).isInFront());
    EXPECT_FALSE((TerminalJob{42, 42, 7, 34816, 43}).isInFront());
    EXPECT_FALSE((TerminalJob{42, 0, 7, 0, 0}).isInFront()) << "no terminal";
}

TEST(Tracer, isReadFromTheStatus) {
    EXPECT_EQ(parseTracer("Name:\tvi\nTracerPid:\t77\nUid:\t0\n"), 77);
    EXPECT_EQ(parseTracer("TracerPid:\t0\n"), 0);
    EXPECT_EQ(parseTracer("TracerPid:\tx\n"), 0);
    EXPECT_EQ(parseTracer("Name:\tTracerPid: 5\n"), 0);
    EXPECT_EQ(parseTracer(""), 0);
}

TEST(ProcessHazard, isNoneForAnOrdinaryProcess) {
    const TestProgram program({"sleep", "60"});
    EXPECT_EQ(processHazard(program.process()), std::nullopt);
}

TEST(ProcessHazard, isNoneForOneThatIsGone) {
    TestProgram program({"sleep", "60"});
    const auto process = program.process();
    program.kill();
    EXPECT_EQ(processHazard(process), std::nullopt);
    EXPECT_EQ(processHazard(0), std::nullopt);
}

TEST(ProcessHazard, isThatOfADebugger) {
    const TestProgram program({"sleep", "60"});
    ASSERT_EQ(ptrace(PTRACE_SEIZE, program.process(), nullptr, nullptr), 0);
    EXPECT_EQ(processHazard(program.process()), ProcessHazard::traced);
    kill(program.process(), SIGSTOP);
    waitpid(program.process(), nullptr, 0);
    ASSERT_EQ(ptrace(PTRACE_DETACH, program.process(), nullptr, nullptr), 0);
    EXPECT_EQ(processHazard(program.process()), std::nullopt);
}

TEST(ProcessHazard, isThatOfOurAncestors) {
    EXPECT_TRUE(isAncestor(getppid(), getpid()));
    EXPECT_FALSE(isAncestor(getpid(), getpid()));
    EXPECT_FALSE(isAncestor(1, getpid())) << "the first of all is nobody's application";
    const TestProgram program({"sleep", "60"});
    EXPECT_TRUE(isAncestor(getpid(), program.process()));
    EXPECT_FALSE(isAncestor(program.process(), getpid()));
}

/// A shell with one job in a terminal of their own. They end with this.
class Terminal {
public:
    Terminal() {
        screen_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        grantpt(screen_);
        unlockpt(screen_);
        const std::string keyboard = ptsname(screen_);
        shell_ = fork();
        if (shell_ == 0) {
            setsid();
            const int terminal = open(keyboard.c_str(), O_RDWR); // the first that a session opens becomes its own
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                dup2(terminal, descriptor);
            execlp("sh", "sh", "-c", "set -m; sleep 60", nullptr);
            _exit(1);
        }
    }
    ~Terminal() {
        kill(shell_, SIGKILL);
        waitpid(shell_, nullptr, 0);
        close(screen_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    pid_t shell() const { return shell_; }
    /// The group that the terminal listens to.
    pid_t inFront() const { return tcgetpgrp(screen_); }

private:
    int screen_ = -1;
    pid_t shell_ = 0;
};

TEST(ProcessHazard, isThatOfTheJobThatAShellWaitsFor) {
    const Terminal terminal;
    ASSERT_TRUE(eventually([&] { return terminal.inFront() > 0 && terminal.inFront() != terminal.shell(); }));
    const auto job = terminal.inFront();
    EXPECT_EQ(processHazard(job), ProcessHazard::jobInFront);
    EXPECT_EQ(processHazard(terminal.shell()), std::nullopt) << "it waits behind the job";
    kill(job, SIGKILL);
    // The shell ends then, too: it had nothing else to do.
    EXPECT_TRUE(eventually([&] { return processHazard(job) != ProcessHazard::jobInFront; }));
}

TEST(LaunchDate, isThatOfTheProcess) {
    const SystemClock clock;
    const auto before = clock.now();
    const TestProgram program({"sleep", "60"});
    const auto launched = launchDate(program.process(), clock);
    ASSERT_TRUE(launched);
    // The kernel counts in hundredths of a second.
    EXPECT_GE(*launched, before - Seconds(0.05));
    EXPECT_LE(*launched, clock.now());
    EXPECT_EQ(launchDate(0, clock), std::nullopt);
}

} // namespace
} // namespace kestrio
