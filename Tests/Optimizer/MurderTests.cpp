// The holder of stopped and slowed processes is killed at every step. Whatever the moment, all of them run on soon
// after, each thread with the priority that it had before.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"
#include "Kestrio/Platform/Linux/LinuxWatchdog.h"
#include "Kestrio/Platform/Testing/ScriptedWatchdog.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Victim.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t victimCount = 3;
constexpr int skipped = 77;

struct Scene {
    TemporaryFolder journals;
    TemporaryFolder notes;
    std::vector<Victim> victims{makeVictims()};
    TestProgram holder;

    static std::vector<Victim> makeVictims() {
        std::vector<Victim> made;
        for (std::size_t i = 0; i < victimCount; ++i)
            made.emplace_back();
        return made;
    }

    void startHolder(const std::string& step, const std::string& rescue = RESCUE_PROGRAM) {
        std::vector<std::string> arguments{HOLDER_PROGRAM, journals.path(), notes.path(), rescue, step};
        for (const auto& victim : victims)
            arguments.push_back(std::to_string(victim.process()));
        holder = TestProgram(arguments);
    }
    bool isThere() const {
        return eventually([this] { return fs::exists(notes.path() / "there"); });
    }
    pid_t watchdog() const { return std::atoi(fileText(notes.path() / "watchdog").c_str()); }

    bool isAllRight() const {
        return std::all_of(victims.begin(), victims.end(), [](const Victim& victim) {
            return !victim.isStopped() && victim.priorities() == victim.usual();
        });
    }
    bool becomesAllRight() const {
        return eventually([this] { return isAllRight(); });
    }
    bool isStopped() const {
        return std::all_of(victims.begin(), victims.end(), [](const Victim& victim) { return victim.isStopped(); });
    }
    bool hasJournal() const { return !fs::is_empty(journals.path()); }

    std::size_t recover() const {
        LinuxProcessSignals signals({});
        ScriptedWatchdog none;
        return SafetyNet({journals.path(), keyOf(getpid())}, signals, none).recoverEarlierRuns();
    }
};

void report(const char* what, Seconds took) {
    std::cout << "    " << what << " after " << took.count() * 1000 << " ms\n";
}

class AMurder : public testing::TestWithParam<const char*> {};

TEST_P(AMurder, leavesNothingFrozenOrSlowed) {
    Scene scene;
    scene.startHolder(GetParam());
    ASSERT_TRUE(scene.isThere());
    if (std::string(GetParam()) == "held") {
        EXPECT_TRUE(eventually([&] { return scene.isStopped(); }));
        EXPECT_FALSE(scene.isAllRight());
    }
    const SystemClock clock;
    const auto before = clock.uptime();
    scene.holder.kill(); // and waits for its end: until then it may still act
    ASSERT_TRUE(scene.becomesAllRight());
    report(GetParam(), clock.uptime() - before);
    EXPECT_TRUE(eventually([&] { return !scene.hasJournal(); }));
    EXPECT_TRUE(scene.isAllRight());
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, AMurder,
                         testing::Values("start", "slow 1", "slow 2", "slow 3", "stop 1", "stop 2", "stop 3", "held",
                                         "resume 1", "resume 2", "resume 3", "restore 1", "restore 2", "restore 3",
                                         "end"));

class ADoubleMurder : public testing::TestWithParam<const char*> {};

TEST_P(ADoubleMurder, isPutRightByTheNextStart) {
    Scene scene;
    scene.startHolder(GetParam());
    ASSERT_TRUE(scene.isThere());
    kill(scene.watchdog(), SIGKILL);
    scene.holder.kill();
    EXPECT_EQ(scene.recover(), 2 * victimCount);
    EXPECT_TRUE(scene.becomesAllRight());
    EXPECT_FALSE(scene.hasJournal());
    EXPECT_EQ(scene.recover(), 0U);
}

INSTANTIATE_TEST_SUITE_P(WithTheWatchdog, ADoubleMurder,
                         testing::Values("stop 1", "stop 2", "held", "resume 2", "restore 2"));

TEST(AWatchdog, actsOnOrdinarySignalsToItsOwnerToo) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT}) {
        SCOPED_TRACE(signal);
        Scene scene;
        scene.startHolder("held");
        ASSERT_TRUE(scene.isThere());
        scene.holder.signal(signal);
        EXPECT_TRUE(scene.becomesAllRight());
        EXPECT_TRUE(eventually([&] { return !scene.hasJournal(); }));
    }
}

TEST(AWatchdog, outlivesTheSignalsThatEndAWholeGroup) {
    Scene scene;
    scene.startHolder("held");
    ASSERT_TRUE(scene.isThere());
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT})
        kill(scene.watchdog(), signal);
    scene.holder.signal(SIGTERM);
    EXPECT_TRUE(scene.becomesAllRight());
}

TEST(AWatchdog, actsWhenItsOwnerEndsWithoutGivingBack) {
    Scene scene;
    scene.startHolder("leave");
    EXPECT_TRUE(eventually([&] { return !scene.holder.isRunning(); }));
    EXPECT_TRUE(scene.becomesAllRight());
    EXPECT_TRUE(eventually([&] { return !scene.hasJournal(); }));
}

TEST(AWatchdog, endsWithItsOwner) {
    Scene scene;
    scene.startHolder("start");
    ASSERT_TRUE(scene.isThere());
    const auto watchdog = scene.watchdog();
    ASSERT_TRUE(stateOf(watchdog));
    scene.holder.kill();
    EXPECT_TRUE(eventually([&] { return stateOf(watchdog).value_or('Z') == 'Z'; }));
}

TEST(AWatchdog, continuesWhatWasStoppedEvenWithoutTheRescueProgram) {
    Scene scene;
    scene.startHolder("held", "/nonexistent/kestrio-rescue");
    ASSERT_TRUE(scene.isThere());
    scene.holder.kill();
    EXPECT_TRUE(eventually([&] {
        return std::none_of(scene.victims.begin(), scene.victims.end(),
                            [](const Victim& victim) { return victim.isStopped(); });
    }));
    EXPECT_TRUE(scene.hasJournal()); // for the next start
    scene.recover();
    EXPECT_TRUE(scene.becomesAllRight());
}

TEST(AWatchdog, comparesTheStartsOfProcesses) {
    Scene scene;
    const auto& stopped = scene.victims[0];
    const auto& later = scene.victims[1];
    kill(stopped.process(), SIGSTOP);
    kill(later.process(), SIGSTOP);
    ASSERT_TRUE(eventually([&] { return stopped.isStopped() && later.isStopped(); }));
    const auto journal = scene.journals.path() / "held.txt";
    auto watchdog = std::make_unique<LinuxWatchdog>(LinuxWatchdog::Setup{.rescue = RESCUE_PROGRAM});
    ASSERT_EQ(watchdog->start(journal), std::nullopt);
    writeFile(journal, "stop " + std::to_string(later.process()) + " 1\nstop x 2\nstop 0 0\nstop -1 5\n\nstop\nstop " +
                           std::to_string(stopped.process()) + " " + std::to_string(stopped.key().start) + " later");
    const auto process = watchdog->process();
    watchdog.reset();
    EXPECT_TRUE(eventually([&] { return !stopped.isStopped(); }));
    EXPECT_TRUE(eventually([&] { return stateOf(process).value_or('Z') == 'Z'; }));
    EXPECT_TRUE(later.isStopped());
    EXPECT_FALSE(fs::exists(journal));
    kill(later.process(), SIGCONT);
}

TEST(AWatchdog, saysWhenItCannotBeStarted) {
    LinuxWatchdog watchdog({.rescue = RESCUE_PROGRAM, .shell = "/nonexistent/sh"});
    EXPECT_EQ(watchdog.start("/tmp/none"), "No such file or directory");
    EXPECT_FALSE(watchdog.isWatching());
}

TEST(AWatchdog, isNoticedWhenItDies) {
    LinuxWatchdog watchdog({.rescue = RESCUE_PROGRAM});
    ASSERT_EQ(watchdog.start("/nonexistent/journal"), std::nullopt);
    EXPECT_TRUE(watchdog.isWatching());
    const auto former = watchdog.process();
    EXPECT_EQ(watchdog.start("/nonexistent/journal"), std::nullopt);
    EXPECT_EQ(watchdog.process(), former);
    kill(former, SIGKILL);
    EXPECT_TRUE(eventually([&] { return !watchdog.isWatching(); }));
    EXPECT_EQ(watchdog.start("/nonexistent/journal"), std::nullopt);
    EXPECT_TRUE(watchdog.isWatching());
    EXPECT_NE(watchdog.process(), former);
}

TEST(AWatchdog, sharesItsLifelineWithNoOtherProgram) {
    Scene scene;
    const auto journal = scene.journals.path() / "held.txt";
    auto watchdog = std::make_unique<LinuxWatchdog>(LinuxWatchdog::Setup{.rescue = RESCUE_PROGRAM});
    ASSERT_EQ(watchdog->start(journal), std::nullopt);
    const TestProgram other({"sleep", "60"}); // started after the pipe was made, and lives on
    ASSERT_TRUE(
        eventually([&] { return fileText("/proc/" + std::to_string(other.process()) + "/comm") == "sleep\n"; }));
    LinuxWatchdog second({.rescue = RESCUE_PROGRAM});
    ASSERT_EQ(second.start(journal), std::nullopt);
    const auto process = watchdog->process();
    watchdog.reset();
    EXPECT_TRUE(eventually([&] { return stateOf(process).value_or('Z') == 'Z'; }));
    EXPECT_TRUE(second.isWatching());
}

TEST(AWatchdog, inheritsNothingButItsPipe) {
    Scene scene;
    scene.startHolder("start");
    ASSERT_TRUE(scene.isThere());
    std::vector<std::string> open;
    ASSERT_TRUE(eventually([&] { // once the shell has begun
        open.clear();
        for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(scene.watchdog()) + "/fd"))
            open.push_back(entry.path().filename());
        return !open.empty();
    }));
    std::sort(open.begin(), open.end());
    EXPECT_EQ(open, (std::vector<std::string>{"0", "1", "2"}));
}

/// Nothing that counts as usual for the process is slow; threads that had a priority of their own may have lost it.
bool isNotSlow(const Victim& victim) {
    const auto& usual = victim.usual().at(victim.process());
    const auto now = victim.priorities();
    return std::all_of(now.begin(), now.end(), [&](const auto& thread) {
        return victim.usual().at(thread.first) != usual || thread.second == usual;
    });
}

TEST(AJournal, cutAtAnyLengthSavesWhatItNamesAndTouchesNothingElse) {
    Scene scene;
    scene.startHolder("held");
    ASSERT_TRUE(scene.isThere());
    kill(scene.watchdog(), SIGKILL);
    const auto file = fs::directory_iterator(scene.journals.path())->path();
    const auto whole = fileText(file);
    scene.holder.kill();
    LinuxProcessSignals signals({});
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(whole.substr(0, length));
        for (const auto& victim : scene.victims) {
            signals.slow(victim.key());
            signals.stop(victim.key());
        }
        ASSERT_TRUE(eventually([&] { return scene.isStopped(); }));
        writeFile(file, whole.substr(0, length));
        ASSERT_LE(scene.recover(), 2 * victimCount);
        ASSERT_FALSE(fs::exists(file));
        for (const auto& victim : scene.victims) {
            const auto isNamed = [&](const std::string& kind) {
                const auto line = kind + std::to_string(victim.process()) + " " + std::to_string(victim.key().start);
                return whole.substr(0, length).find(line) != std::string::npos;
            };
            ASSERT_TRUE(eventually([&] { return victim.isStopped() == !isNamed("stop "); }));
            ASSERT_EQ(isNotSlow(victim), isNamed("slow "));
        }
    }
    EXPECT_TRUE(scene.becomesAllRight());
}

/// Runs where it may mount: the journal's folder is a disk that is full.
int freezeOnAFullDisk(const fs::path& folder, ProcessKey victim) {
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=16k,nr_inodes=64") != 0)
        return skipped;
    LinuxProcessSignals signals({});
    ScriptedWatchdog watchdog;
    SafetyNet net({folder, keyOf(getpid())}, signals, watchdog);
    if (!net.intendToFreeze({victim}) || !net.record({}, {}))
        return 1;
    writeFile(folder / "ballast", std::string(64 << 10, 'x'));
    if (net.intendToFreeze({victim}) || !net.held().isEmpty())
        return 2;
    if (net.intendToSlow({{victim, {"0/0/0"}}}))
        return 3;
    if (std::distance(fs::directory_iterator(folder), fs::directory_iterator()) != 1)
        return 4; // half a journal lies about
    fs::remove(folder / "ballast");
    return net.intendToFreeze({victim}) ? 0 : 5;
}

TEST(AJournal, thatFindsTheDiskFullLetsNothingBeStopped) {
    const TemporaryFolder folder;
    const Victim victim;
    const pid_t child = fork();
    if (child == 0)
        _exit(unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0
                  ? freezeOnAFullDisk(folder.path(), victim.key())
                  : skipped);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == skipped)
        GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(victim.isStopped());
}

TEST(AMurderInALoop, atAnyMomentLeavesNothingFrozenOrSlowed) {
    constexpr int murders = 40;
    Scene scene;
    std::vector<double> milliseconds;
    const SystemClock clock;
    for (int murder = 0; murder < murders; ++murder) {
        SCOPED_TRACE(murder);
        fs::remove(scene.notes.path() / "watchdog");
        scene.startHolder("loop");
        ASSERT_TRUE(eventually([&] { return !fileText(scene.notes.path() / "watchdog").empty(); }));
        const auto deadline = clock.uptime() + Seconds(0.0011 * murder);
        while (clock.uptime() < deadline) {
        }
        const auto before = clock.uptime();
        scene.holder.kill();
        ASSERT_TRUE(scene.becomesAllRight());
        milliseconds.push_back((clock.uptime() - before).count() * 1000);
        const auto watchdog = scene.watchdog();
        ASSERT_TRUE(eventually([&] { return stateOf(watchdog).value_or('Z') == 'Z'; }));
        ASSERT_TRUE(scene.isAllRight());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::cout << "    all right after " << milliseconds[murders / 2] << " ms in the middle, " << milliseconds.back()
              << " ms at most\n";
    EXPECT_EQ(scene.recover(), 0U); // removes the journals that were never finished
    EXPECT_FALSE(scene.hasJournal());
}

} // namespace
} // namespace kestrio
