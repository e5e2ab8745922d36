#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Testing/ScriptedProcessSignals.h"
#include "Kestrio/Platform/Testing/ScriptedWatchdog.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

struct Bench {
    TemporaryFolder folder;
    ScriptedProcessSignals signals;
    ScriptedWatchdog watchdog;
    SafetyNet net{{folder.path(), {42, 100}}, signals, watchdog};

    std::string journal() const { return fileText(net.journal()); }
    std::size_t fileCount() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }
    /// As an earlier run left it.
    fs::path leave(const std::string& name, const std::string& text) const { return folder.write(name, text); }
};

const ProcessKey first{7, 11};
const ProcessKey second{8, 12};

TEST(SafetyNet, keepsAJournalNamedAfterTheProcessOfWhatIsHeld) {
    Bench bench;
    EXPECT_TRUE(bench.net.record({first, second}, {{first, {"usual"}}}));
    EXPECT_EQ(bench.net.journal(), bench.folder.path() / "optimizer-held-42.txt");
    EXPECT_EQ(bench.journal(), "owner 42 100\nstop 7 11\nstop 8 12\nslow 7 11 usual\n");
    EXPECT_EQ(bench.fileCount(), 1U);
}

TEST(SafetyNet, keepsTheJournalForItsOwnerAlone) {
    Bench bench;
    bench.net.record({first}, {});
    struct stat status {};
    ASSERT_EQ(stat(bench.net.journal().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(SafetyNet, leavesNoJournalWithNothingHeld) {
    Bench bench;
    EXPECT_TRUE(bench.net.record({}, {}));
    bench.net.record({first}, {});
    EXPECT_TRUE(bench.net.record({}, {}));
    EXPECT_EQ(bench.fileCount(), 0U);
}

TEST(SafetyNet, doesNotWriteAgainWhatTheJournalSaysAlready) {
    Bench bench;
    bench.net.record({first}, {});
    const auto written = fs::last_write_time(bench.net.journal());
    struct stat before {};
    stat(bench.net.journal().c_str(), &before);
    EXPECT_TRUE(bench.net.record({first}, {}));
    struct stat after {};
    stat(bench.net.journal().c_str(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(fs::last_write_time(bench.net.journal()), written);
}

TEST(SafetyNet, writesAgainAJournalThatSomebodyRemoved) {
    Bench bench;
    bench.net.record({first}, {});
    fs::remove(bench.net.journal());
    EXPECT_TRUE(bench.net.record({first}, {}));
    EXPECT_TRUE(fs::exists(bench.net.journal()));
}

TEST(SafetyNet, addsWhatIsIntendedToWhatIsHeld) {
    Bench bench;
    bench.net.record({first}, {});
    EXPECT_TRUE(bench.net.intendToFreeze({first, second}));
    EXPECT_TRUE(bench.net.intendToSlow({{second, {"usual"}}}));
    EXPECT_EQ(bench.journal(), "owner 42 100\nstop 7 11\nstop 8 12\nslow 8 12 usual\n");
}

TEST(SafetyNet, remembersOfAProcessWhatItWasBeforeItWasFirstSlowed) {
    Bench bench;
    bench.net.intendToSlow({{first, {"usual"}}});
    bench.net.intendToSlow({{first, {"slow"}}});
    EXPECT_EQ(bench.net.held().slowed, (std::vector<SlowedProcess>{{first, {"usual"}}}));
}

TEST(SafetyNet, tellsWhenTheJournalCannotBeWrittenAndTriesAgain) {
    Bench bench;
    fs::remove(bench.folder.path());
    EXPECT_FALSE(bench.net.intendToFreeze({first}));
    EXPECT_TRUE(bench.net.held().isEmpty());
    fs::create_directory(bench.folder.path());
    EXPECT_TRUE(bench.net.intendToFreeze({first}));
    EXPECT_EQ(bench.journal(), "owner 42 100\nstop 7 11\n");
}

TEST(SafetyNet, startsOneWatcherOverTheJournal) {
    Bench bench;
    bench.net.startWatcher();
    bench.net.startWatcher();
    EXPECT_EQ(bench.watchdog.starts, 1);
    EXPECT_EQ(bench.watchdog.journal, bench.net.journal());
}

TEST(SafetyNet, startsTheWatcherAnewBeforeMoreIsHeldWhenItDied) {
    Bench bench;
    bench.net.startWatcher();
    bench.watchdog.watches = false;
    bench.net.intendToFreeze({first});
    EXPECT_EQ(bench.watchdog.starts, 2);
}

TEST(SafetyNet, startsNoWatcherUntilItIsToldTo) {
    Bench bench;
    bench.net.record({first}, {});
    EXPECT_EQ(bench.watchdog.starts, 0);
}

TEST(SafetyNet, saysOnceThatTheWatcherCannotBeStartedAndGoesOn) {
    Bench bench;
    bench.watchdog.problem = "No such file or directory";
    const ExpectedLog log;
    bench.net.startWatcher();
    EXPECT_TRUE(bench.net.record({first}, {}));
    EXPECT_EQ(log.lines(), (std::vector<std::string>{
                               "Kestrio: couldn't start the optimizer's safety net: No such file or directory"}));
}

// --- The pass at the start -------------------------------------------------------------------------------------------

TEST(SafetyNet, putsRightWhatAnEarlierRunLeftAndRemovesTheJournal) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped, "usual"}},
                               {8, {12, ProcessCondition::running, "slow"}}};
    bench.leave("optimizer-held-41.txt", "owner 41 90\nstop 7 11\nslow 8 12 nimble since 5\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 2U);
    EXPECT_EQ(bench.signals.processes[7].condition, ProcessCondition::running);
    EXPECT_EQ(bench.signals.processes[8].priority, "nimble");
    EXPECT_EQ(bench.fileCount(), 0U);
}

TEST(SafetyNet, passesOverAProcessThatHasExitedSince) {
    Bench bench;
    bench.leave("optimizer-held-41.txt", "owner 41 90\nstop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
    EXPECT_EQ(bench.fileCount(), 0U);
}

TEST(SafetyNet, passesOverANumberThatIsAnothersNow) {
    Bench bench;
    bench.signals.processes = {{7, {99, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-41.txt", "owner 41 90\nstop 7 11\nslow 7 11 usual since 1\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
    EXPECT_EQ(bench.signals.processes[7].condition, ProcessCondition::stopped);
    EXPECT_EQ(bench.fileCount(), 0U);
}

TEST(SafetyNet, passesOverADamagedLineAndHonoursTheOthers) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}, {8, {12, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-41.txt", "stop 7\nstop x 11\nstop 8 12\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 1U);
    EXPECT_EQ(bench.signals.processes[8].condition, ProcessCondition::running);
    EXPECT_EQ(bench.signals.processes[7].condition, ProcessCondition::stopped);
}

TEST(SafetyNet, takesTheOwnerOfAJournalWithoutANumberForGone) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-abc.txt", "stop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 1U);
    EXPECT_EQ(bench.fileCount(), 0U);
}

TEST(SafetyNet, leavesItsOwnJournalAlone) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}};
    bench.net.record({first}, {});
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
    EXPECT_EQ(bench.signals.processes[7].condition, ProcessCondition::stopped);
    EXPECT_TRUE(fs::exists(bench.net.journal()));
}

TEST(SafetyNet, putsRightWhatAnEarlierRunOfItsOwnNumberLeft) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-42.txt", "owner 42 77\nstop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 1U);
    EXPECT_EQ(bench.fileCount(), 0U);
}

TEST(SafetyNet, leavesTheJournalOfALivingOwnerToThem) {
    Bench bench;
    bench.signals.processes = {{41, {90}}, {7, {11, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-41.txt", "owner 41 90\nstop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
    EXPECT_EQ(bench.signals.processes[7].condition, ProcessCondition::stopped);
    EXPECT_EQ(bench.fileCount(), 1U);
}

TEST(SafetyNet, doesNotTakeALaterProcessOfTheOwnersNumberForTheOwner) {
    Bench bench;
    bench.signals.processes = {{41, {91}}, {7, {11, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-41.txt", "owner 41 90\nstop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 1U);
}

TEST(SafetyNet, putsRightTheJournalsOfSeveralRuns) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}, {8, {12, ProcessCondition::stopped}}};
    bench.leave("optimizer-held-40.txt", "owner 40 80\nstop 7 11\n");
    bench.leave("optimizer-held-41.txt", "owner 41 90\nstop 8 12\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 2U);
}

TEST(SafetyNet, leavesOtherFilesAlone) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}};
    for (const auto* name : {"optimizer-held-41.text", "optimizer-held-41.txt.old", "held-41.txt", "activity.sqlite"})
        bench.leave(name, "stop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
    EXPECT_EQ(bench.fileCount(), 4U);
}

TEST(SafetyNet, removesAJournalThatWasNeverFinishedWithoutActingOnIt) {
    Bench bench;
    bench.signals.processes = {{7, {11, ProcessCondition::stopped}}};
    bench.leave(".optimizer-held-41.txt.new-Ab12Cd", "owner 41 90\nstop 7 11\n");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
    EXPECT_EQ(bench.fileCount(), 0U);
    EXPECT_TRUE(bench.signals.calls.empty());
}

TEST(SafetyNet, takesAnUnreadableJournalForAnEmptyOne) {
    Bench bench;
    fs::create_directory(bench.folder.path() / "optimizer-held-41.txt");
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
}

TEST(SafetyNet, findsNothingToPutRightWithoutAFolder) {
    Bench bench;
    fs::remove(bench.folder.path());
    EXPECT_EQ(bench.net.recoverEarlierRuns(), 0U);
}

} // namespace
} // namespace kestrio
