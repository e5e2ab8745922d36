// With real processes, which end with their test.
#include "Kestrio/Base/Descriptor.h"
#include "Kestrio/Platform/Linux/IOPriority.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/FileTree.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Victim.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr int skipped = 77;

/// A child of this program that runs the function, and ends with this value.
class Child {
public:
    explicit Child(const std::function<void()>& work) : process_(fork()) {
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            work();
            for (;;)
                pause();
        }
    }
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t process() const { return process_; }
    void end() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        process_ = 0;
    }

private:
    pid_t process_;
};

/// The exit status of a function that runs in a process of its own; 100 for a violent end.
int statusOf(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 100;
}

bool becomesStopped(pid_t process) {
    return eventually([process] { return stateOf(process) == 'T'; });
}

bool becomesRunning(pid_t process) {
    return eventually([process] { return stateOf(process).value_or('T') != 'T'; });
}

// --- Stopping --------------------------------------------------------------------------------------------------------

TEST(LinuxProcessSignals, stopsAProcessAndLetsItContinue) {
    LinuxProcessSignals signals({});
    const Victim victim;
    EXPECT_EQ(signals.condition(victim.key()), ProcessCondition::running);
    EXPECT_TRUE(signals.stop(victim.key()));
    EXPECT_TRUE(becomesStopped(victim.process()));
    EXPECT_EQ(signals.condition(victim.key()), ProcessCondition::stopped);
    EXPECT_FALSE(signals.stop(victim.key()));
    EXPECT_TRUE(signals.resume(victim.key()));
    EXPECT_TRUE(becomesRunning(victim.process()));
    EXPECT_EQ(signals.condition(victim.key()), ProcessCondition::running);
}

TEST(LinuxProcessSignals, letsARunningProcessBeWhenItIsToContinue) {
    LinuxProcessSignals signals({});
    const Victim victim;
    EXPECT_TRUE(signals.resume(victim.key()));
    EXPECT_EQ(signals.condition(victim.key()), ProcessCondition::running);
}

TEST(LinuxProcessSignals, doesNothingToAProcessThatHasVanished) {
    LinuxProcessSignals signals({});
    Victim victim;
    const auto key = victim.key();
    victim.kill();
    EXPECT_EQ(signals.condition(key), ProcessCondition::gone);
    EXPECT_FALSE(signals.stop(key));
    EXPECT_FALSE(signals.resume(key));
    EXPECT_FALSE(signals.priority(key));
    EXPECT_FALSE(signals.slow(key));
    EXPECT_FALSE(signals.restore(key, {}));
}

TEST(LinuxProcessSignals, takesAProcessThatNobodyHasWaitedForAsGone) {
    LinuxProcessSignals signals({});
    const Child child([] { _exit(0); });
    ASSERT_TRUE(eventually([&] { return stateOf(child.process()) == 'Z'; }));
    EXPECT_EQ(signals.condition(keyOf(child.process())), ProcessCondition::gone);
    EXPECT_FALSE(signals.stop(keyOf(child.process())));
}

TEST(LinuxProcessSignals, doesNothingToAProcessOfAnotherStart) {
    LinuxProcessSignals signals({});
    const Victim victim;
    auto key = victim.key();
    ++key.start;
    EXPECT_EQ(signals.condition(key), ProcessCondition::gone);
    EXPECT_FALSE(signals.stop(key));
    EXPECT_FALSE(signals.priority(key));
    EXPECT_FALSE(signals.slow(key));
    EXPECT_FALSE(signals.restore(key, {}));
    EXPECT_EQ(victim.priorities(), victim.usual());
    kill(victim.process(), SIGSTOP);
    ASSERT_TRUE(becomesStopped(victim.process()));
    EXPECT_FALSE(signals.resume(key));
    EXPECT_TRUE(victim.isStopped());
}

TEST(LinuxProcessSignals, doesNothingForNumbersThatAreNoProcess) {
    LinuxProcessSignals signals({});
    for (const pid_t pid : {0, -1, -getpid(), std::numeric_limits<pid_t>::max()}) {
        SCOPED_TRACE(pid);
        EXPECT_EQ(signals.condition({pid, 0}), ProcessCondition::gone);
        EXPECT_FALSE(signals.stop({pid, 0}));
        EXPECT_FALSE(signals.resume({pid, 0}));
        EXPECT_FALSE(signals.slow({pid, 0}));
    }
}

TEST(LinuxProcessSignals, neverTouchesTheFirstProcessItselfOrWhoStartedIt) {
    LinuxProcessSignals signals({});
    for (const pid_t pid : {1, getpid(), getppid()}) {
        SCOPED_TRACE(pid);
        EXPECT_EQ(signals.condition(keyOf(pid)), ProcessCondition::untouchable);
        EXPECT_FALSE(signals.stop(keyOf(pid)));
    }
    EXPECT_FALSE(signals.slow(keyOf(getpid())));
    EXPECT_FALSE(signals.slow(keyOf(1)));
}

TEST(LinuxProcessSignals, refusesAnotherUsersProcess) {
    if (getuid() != 0)
        GTEST_SKIP() << "only root can start one";
    LinuxProcessSignals signals({});
    const Child child([] {
        if (setresuid(65534, 65534, 65534) != 0)
            _exit(1);
        prctl(PR_SET_PDEATHSIG, SIGKILL); // which the change of user has cleared
    });
    ASSERT_TRUE(eventually([&] {
        return fileText("/proc/" + std::to_string(child.process()) + "/status").find("Uid:\t65534") !=
               std::string::npos;
    }));
    const auto key = keyOf(child.process());
    EXPECT_EQ(signals.condition(key), ProcessCondition::untouchable);
    EXPECT_FALSE(signals.stop(key));
    EXPECT_FALSE(signals.resume(key));
    EXPECT_FALSE(signals.priority(key));
    EXPECT_FALSE(signals.slow(key));
    EXPECT_FALSE(signals.restore(key, {}));
}

TEST(LinuxProcessSignals, refusesAProcessThatTookOnAnothersRights) {
    if (getuid() != 0)
        GTEST_SKIP() << "only root can start one";
    LinuxProcessSignals signals({});
    const Child child([] {
        if (setresuid(-1U, 65534, 0) != 0)
            _exit(1);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
    ASSERT_TRUE(eventually([&] {
        return fileText("/proc/" + std::to_string(child.process()) + "/status").find("Uid:\t0\t65534") !=
               std::string::npos;
    }));
    EXPECT_EQ(signals.condition(keyOf(child.process())), ProcessCondition::untouchable);
}

TEST(LinuxProcessSignals, refusesTheJobInFrontOfATerminalAndStopsOneBehind) {
    LinuxProcessSignals signals({});
    const Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_TRUE(grantpt(terminal.number()) == 0 && unlockpt(terminal.number()) == 0);
    const std::string name = ptsname(terminal.number());
    const pid_t shell = fork();
    if (shell == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setsid();
        if (open(name.c_str(), O_RDWR) < 0) // becomes the terminal of the session
            _exit(1);
        const pid_t behind = fork();
        if (behind == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            setpgid(0, 0);
        }
        for (;;)
            pause();
    }
    ASSERT_GT(shell, 0);
    pid_t behind = 0;
    const auto groupOf = [&] { return behind > 0 ? getpgid(behind) : 0; };
    EXPECT_TRUE(eventually([&] {
        behind = std::atoi(
            fileText("/proc/" + std::to_string(shell) + "/task/" + std::to_string(shell) + "/children").c_str());
        return behind > 0 && groupOf() == behind;
    }));
    EXPECT_EQ(signals.condition(keyOf(shell)), ProcessCondition::untouchable);
    EXPECT_FALSE(signals.stop(keyOf(shell)));
    EXPECT_EQ(signals.condition(keyOf(behind)), ProcessCondition::running);
    kill(shell, SIGKILL);
    waitpid(shell, nullptr, 0);
}

TEST(LinuxProcessSignals, leavesAProcessUnderADebuggerToTheDebugger) {
    LinuxProcessSignals signals({});
    const Child child([] {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
    });
    int status = 0;
    ASSERT_EQ(waitpid(child.process(), &status, WUNTRACED), child.process());
    ASSERT_TRUE(WIFSTOPPED(status));
    EXPECT_EQ(signals.condition(keyOf(child.process())), ProcessCondition::untouchable);
}

TEST(LinuxProcessSignals, letsContinueEvenWithoutADescriptorToSpare) {
    const Victim victim;
    const auto key = victim.key();
    LinuxProcessSignals signals({});
    ASSERT_TRUE(signals.stop(key));
    ASSERT_TRUE(becomesStopped(victim.process()));
    EXPECT_EQ(statusOf([&] {
                  const rlimit none{0, 0};
                  setrlimit(RLIMIT_NOFILE, &none);
                  return signals.resume(key) ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(becomesRunning(victim.process()));
}

/// Runs in a namespace of processes of its own, where numbers can be had again.
int meetAReusedNumber() {
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("proc", "/proc", "proc", 0, nullptr) != 0)
        return skipped;
    LinuxProcessSignals signals({});
    const auto startAt = [](pid_t number) {
        const int file = open("/proc/sys/kernel/ns_last_pid", O_WRONLY | O_CLOEXEC);
        const auto last = std::to_string(number - 1);
        if (file < 0 || write(file, last.data(), last.size()) < 0)
            return pid_t(-1);
        close(file);
        const pid_t child = fork();
        if (child == 0)
            for (;;)
                pause();
        return child;
    };
    constexpr pid_t number = 200;
    if (startAt(number) != number)
        return skipped;
    const auto former = keyOf(number);
    if (!signals.stop(former))
        return 1;
    kill(number, SIGKILL);
    waitpid(number, nullptr, 0);
    usleep(30'000); // the start is in hundredths of a second
    if (startAt(number) != number || keyOf(number).start == former.start)
        return skipped;
    if (signals.condition(former) != ProcessCondition::gone || signals.stop(former) || signals.slow(former))
        return 2;
    if (stateOf(number) == 'T')
        return 3;
    kill(number, SIGSTOP);
    waitpid(number, nullptr, WUNTRACED);
    if (signals.resume(former) || stateOf(number) != 'T')
        return 4;
    return signals.resume(keyOf(number)) ? 0 : 5;
}

TEST(LinuxProcessSignals, leavesALaterProcessOfTheSameNumberAlone) {
    const int status = statusOf([] {
        if (unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNS) != 0)
            return skipped;
        return statusOf(meetAReusedNumber);
    });
    if (status == skipped)
        GTEST_SKIP() << "namespaces are not permitted here";
    EXPECT_EQ(status, 0);
}

// --- Slowing ---------------------------------------------------------------------------------------------------------

TEST(LinuxProcessSignals, slowsEveryThreadAndRestoresEachExactly) {
    LinuxProcessSignals signals({});
    const Victim victim;
    ASSERT_GE(victim.usual().size(), 8U);
    const auto before = signals.priority(victim.key());
    ASSERT_TRUE(before);
    ASSERT_TRUE(signals.slow(victim.key()));
    const auto first = victim.priorities().at(victim.process());
    EXPECT_EQ(first.cores, signals.slowCores());
    EXPECT_EQ(first.policy, SCHED_BATCH);
    EXPECT_EQ(ioPriority::classOf(first.ioPriority), ioPriority::classIdle);
    for (const auto& [thread, priority] : victim.priorities()) {
        SCOPED_TRACE(thread);
        const auto& usual = victim.usual().at(thread);
        EXPECT_EQ(priority.policy, usual.policy == SCHED_OTHER ? SCHED_BATCH : usual.policy);
        EXPECT_EQ(ioPriority::classOf(priority.ioPriority), ioPriority::classIdle);
        EXPECT_EQ(priority.cores, usual.cores == std::vector{0} ? usual.cores : signals.slowCores());
    }
    EXPECT_TRUE(signals.restore(victim.key(), *before));
    EXPECT_EQ(victim.priorities(), victim.usual());
}

TEST(LinuxProcessSignals, slowsAndRestoresAStoppedProcess) {
    LinuxProcessSignals signals({});
    const Victim victim;
    signals.stop(victim.key());
    ASSERT_TRUE(becomesStopped(victim.process()));
    const auto before = signals.priority(victim.key());
    ASSERT_TRUE(before);
    EXPECT_TRUE(signals.slow(victim.key()));
    EXPECT_NE(victim.priorities(), victim.usual());
    EXPECT_TRUE(signals.restore(victim.key(), *before));
    EXPECT_EQ(victim.priorities(), victim.usual());
    EXPECT_TRUE(victim.isStopped());
}

TEST(LinuxProcessSignals, restoresTwiceAsOnce) {
    LinuxProcessSignals signals({});
    const Victim victim;
    const auto before = signals.priority(victim.key()).value();
    signals.slow(victim.key());
    signals.restore(victim.key(), before);
    EXPECT_TRUE(signals.restore(victim.key(), before));
    EXPECT_EQ(victim.priorities(), victim.usual());
}

TEST(LinuxProcessSignals, doesNotUndoWhatTheProcessHasChosenItself) {
    LinuxProcessSignals signals({});
    const Child child([] {});
    const auto key = keyOf(child.process());
    const auto before = signals.priority(key).value();
    signals.slow(key);
    const sched_param none{};
    sched_setscheduler(child.process(), SCHED_IDLE, &none);
    syscall(SYS_ioprio_set, ioPriority::ofProcess, child.process(), ioPriority::value(ioPriority::classBestEffort, 7));
    const auto chosen = prioritiesOf(child.process()).at(child.process());
    signals.restore(key, before);
    const auto now = prioritiesOf(child.process()).at(child.process());
    EXPECT_EQ(now.policy, chosen.policy);
    EXPECT_EQ(now.ioPriority, chosen.ioPriority);
}

TEST(LinuxProcessSignals, restoresAThreadThatWasStartedWhileSlow) {
    LinuxProcessSignals signals({});
    const Victim victim;
    const auto before = signals.priority(victim.key()).value();
    signals.slow(victim.key());
    const auto thread = victim.startThread();
    ASSERT_NE(thread, 0);
    EXPECT_EQ(victim.priorities().at(thread), victim.priorities().at(victim.process()));
    EXPECT_EQ(victim.priorities().at(thread).policy, SCHED_BATCH);
    signals.restore(victim.key(), before);
    EXPECT_EQ(victim.priorities().at(thread), victim.usual().at(victim.process()));
}

TEST(LinuxProcessSignals, restoresWithDamagedWordsWhatIsUsualWhereAThreadStandsSlowed) {
    const TemporaryFolder sysThatIsEmpty;
    for (const std::filesystem::path& sys : {std::filesystem::path("/sys"), sysThatIsEmpty.path()}) {
        SCOPED_TRACE(sys);
        LinuxProcessSignals signals({.processes = "/proc", .sys = sys});
        const Child child([] {});
        const auto key = keyOf(child.process());
        const auto usual = prioritiesOf(child.process());
        signals.slow(key);
        EXPECT_NE(prioritiesOf(child.process()), usual);
        EXPECT_TRUE(signals.restore(key, {"dam/ag@ed"}));
        EXPECT_EQ(prioritiesOf(child.process()), usual);
    }
}

TEST(LinuxProcessSignals, knowsTheCoresWhereTheSystemDoesNotListThem) {
    const TemporaryFolder sys;
    const LinuxProcessSignals listed({});
    EXPECT_EQ(LinuxProcessSignals({.processes = "/proc", .sys = sys.path()}).slowCores(), listed.slowCores());
    sys.write("devices/system/cpu/online", "nonsense\n");
    EXPECT_EQ(LinuxProcessSignals({.processes = "/proc", .sys = sys.path()}).slowCores(), listed.slowCores());
}

TEST(LinuxProcessSignals, restoresNothingOfAProcessThatWasNeverSlowed) {
    LinuxProcessSignals signals({});
    const Victim victim;
    signals.restore(victim.key(), signals.priority(victim.key()).value());
    EXPECT_EQ(victim.priorities(), victim.usual());
}

TEST(LinuxProcessSignals, findsTheChildThatASlowedProcessStarted) {
    LinuxProcessSignals signals({});
    const Victim victim;
    const Victim bystander;
    const auto before = signals.priority(victim.key()).value();
    EXPECT_TRUE(signals.heirs(before).empty());
    signals.slow(victim.key());
    const auto child = victim.startChild();
    ASSERT_NE(child, 0);
    const auto heirs = signals.heirs(before);
    EXPECT_NE(std::find(heirs.begin(), heirs.end(), keyOf(child)), heirs.end());
    EXPECT_EQ(std::find(heirs.begin(), heirs.end(), bystander.key()), heirs.end());
    signals.restore(keyOf(child), before);
    EXPECT_EQ(prioritiesOf(child).at(child), victim.usual().at(victim.process()));
    EXPECT_TRUE(signals.heirs({}).empty());
}

// --- Which cores -----------------------------------------------------------------------------------------------------

struct CoresRow {
    const char* online;
    const char* small; // of a hybrid processor
    std::vector<int> slow;
};

const CoresRow coresRows[] = {
    {"0", "", {0}},       {"0-1", "", {1}},
    {"0-3", "", {3}},     {"0-6", "", {6}},
    {"0-7", "", {6, 7}},  {"0-15", "", {12, 13, 14, 15}},
    {"0-1,4-5", "", {5}}, {"0-15", "8-15", {8, 9, 10, 11, 12, 13, 14, 15}},
    {"0-3", "2", {2}},
};

TEST(LinuxProcessSignals, slowsToTheSmallCoresOrTheLastQuarter) {
    for (const auto& row : coresRows) {
        SCOPED_TRACE(std::string(row.online) + " / " + row.small);
        const TemporaryFolder sys;
        sys.write("devices/system/cpu/online", std::string(row.online) + "\n");
        if (*row.small)
            sys.write("devices/cpu_atom/cpus", std::string(row.small) + "\n");
        EXPECT_EQ(LinuxProcessSignals({.processes = "/proc", .sys = sys.path()}).slowCores(), row.slow);
    }
}

} // namespace
} // namespace kestrio
