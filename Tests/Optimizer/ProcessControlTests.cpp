#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Testing/ScriptedProcessSignals.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"
#include "Kestrio/Platform/Testing/ScriptedWatchdog.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using Calls = std::vector<std::string>;
using Keys = std::vector<ProcessKey>;

struct Bench {
    Bench() {
        for (const auto& key : {main, helper, other})
            signals.run(key.pid, key.start);
        signals.beforeCall = [this](const std::string& call) {
            journals.push_back(call + ": " + fileText(net.journal()));
        };
    }

    const ProcessKey main{10, 100};
    const ProcessKey helper{11, 101};
    const ProcessKey other{12, 102};
    TemporaryFolder folder;
    ScriptedProcessTable table;
    ScriptedProcessSignals signals;
    ScriptedWatchdog watchdog;
    SafetyNet net{{folder.path(), {42, 1}}, signals, watchdog};
    ProcessControl control{table, signals, net};
    Calls journals; // what the journal said before each call
};

// --- The processes of an application ---------------------------------------------------------------------------------

TEST(ProcessControl, listsTheMainProcessFirstAndThenThoseItIsResponsibleFor) {
    Bench bench;
    for (const auto& [pid, start] : {std::pair(11, 101), std::pair(10, 100), std::pair(12, 102), std::pair(13, 103)})
        bench.table.run(pid, "/bin/app", {.start = static_cast<std::uint64_t>(start)});
    bench.table.responsibles = {{11, 10}, {13, 10}, {12, 12}};
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}, {11, 101}, {13, 103}}));
}

TEST(ProcessControl, listsNothingForAProcessThatIsGone) {
    Bench bench;
    bench.table.run(11, "/bin/app", {.start = 101});
    bench.table.responsibles = {{11, 10}};
    EXPECT_EQ(bench.control.processes(10), Keys());
}

TEST(ProcessControl, listsTheMainProcessAloneWhereTheHostListsNone) {
    Bench bench;
    bench.table.readings[10] = {.start = 100};
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}}));
}

TEST(ProcessControl, takesAProcessThatNobodyIsResponsibleForToStandForItself) {
    Bench bench;
    bench.table.run(10, "/bin/app", {.start = 100});
    bench.table.run(11, "/bin/app", {.start = 101});
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}}));
}

TEST(ProcessControl, leavesOutAHelperThatCannotBeRead) {
    Bench bench;
    bench.table.run(10, "/bin/app", {.start = 100});
    bench.table.listed = {10, 11, 0, -1};
    bench.table.responsibles = {{11, 10}, {0, 10}, {-1, 10}};
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}}));
}

TEST(ProcessControl, asksOnceWhomAProcessBelongsTo) {
    Bench bench;
    bench.table.run(10, "/bin/app", {.start = 100});
    bench.table.run(11, "/bin/app", {.start = 101, .image = 1});
    bench.table.responsibles = {{11, 10}};
    bench.control.processes(10);
    const auto lookUps = bench.table.lookUps;
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}, {11, 101}}));
    EXPECT_EQ(bench.table.lookUps, lookUps);
}

TEST(ProcessControl, asksAgainForAnotherProcessOrAnotherProgram) {
    Bench bench;
    bench.table.run(10, "/bin/app", {.start = 100});
    bench.table.run(11, "/bin/app", {.start = 101, .image = 1});
    bench.table.responsibles = {{11, 10}};
    bench.control.processes(10);
    bench.table.responsibles = {{11, 11}};
    bench.table.readings[11].image = 2;
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}}));
    bench.table.responsibles = {{11, 10}};
    bench.table.readings[11].start = 300;
    EXPECT_EQ(bench.control.processes(10), (Keys{{10, 100}, {11, 300}}));
}

// --- Stopping --------------------------------------------------------------------------------------------------------

TEST(ProcessControl, writesTheIntentionBeforeTheFirstIsStopped) {
    Bench bench;
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), (Keys{bench.main, bench.helper}));
    EXPECT_EQ(bench.journals, (Calls{"stop 10: owner 42 1\nstop 10 100\nstop 11 101\n",
                                     "stop 11: owner 42 1\nstop 10 100\nstop 11 101\n"}));
}

TEST(ProcessControl, stopsNothingWhenTheJournalCannotBeWritten) {
    Bench bench;
    fs::remove(bench.folder.path());
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), Keys());
    EXPECT_EQ(bench.signals.calls, Calls());
}

TEST(ProcessControl, leavesOutAHelperThatHasExited) {
    Bench bench;
    bench.signals.processes.erase(11);
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper, bench.other}), (Keys{bench.main, bench.other}));
}

TEST(ProcessControl, leavesOutAHelperWhoseNumberIsAnothers) {
    Bench bench;
    bench.signals.processes[11].start = 999;
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), (Keys{bench.main}));
    EXPECT_EQ(bench.signals.processes[11].condition, ProcessCondition::running);
}

TEST(ProcessControl, leavesOutWhatSomebodyElseHasStopped) {
    Bench bench;
    bench.signals.processes[11].condition = ProcessCondition::stopped;
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), (Keys{bench.main}));
    EXPECT_EQ(bench.net.held().frozen, (Keys{bench.main}));
}

struct MainRow {
    const char* name;
    std::optional<ProcessCondition> condition;
};

TEST(ProcessControl, stopsNothingWithoutTheMainProcess) {
    for (const auto& row : {MainRow{"gone", std::nullopt}, MainRow{"untouchable", ProcessCondition::untouchable},
                            MainRow{"stopped by somebody", ProcessCondition::stopped}}) {
        SCOPED_TRACE(row.name);
        Bench bench;
        if (row.condition)
            bench.signals.processes[10].condition = *row.condition;
        else
            bench.signals.processes.erase(10);
        EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), Keys());
        EXPECT_EQ(bench.signals.calls, Calls());
        EXPECT_FALSE(fs::exists(bench.net.journal()));
    }
}

TEST(ProcessControl, stopsNothingOfNothing) {
    Bench bench;
    EXPECT_EQ(bench.control.freeze({}), Keys());
}

TEST(ProcessControl, takesBackTheIntentionOfWhatCouldNotBeStopped) {
    Bench bench;
    bench.signals.unstoppable = {11};
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), (Keys{bench.main}));
    EXPECT_EQ(fileText(bench.net.journal()), "owner 42 1\nstop 10 100\n");
}

TEST(ProcessControl, leavesNoJournalWhenNothingCouldBeStopped) {
    Bench bench;
    bench.signals.unstoppable = {10, 11};
    EXPECT_EQ(bench.control.freeze({bench.main, bench.helper}), Keys());
    EXPECT_FALSE(fs::exists(bench.net.journal()));
}

TEST(ProcessControl, keepsInTheJournalWhatIsHeldAlready) {
    Bench bench;
    bench.control.freeze({bench.main});
    bench.control.freeze({bench.other});
    EXPECT_EQ(fileText(bench.net.journal()), "owner 42 1\nstop 10 100\nstop 12 102\n");
}

TEST(ProcessControl, resumesFromTheLastToTheFirst) {
    Bench bench;
    bench.control.freeze({bench.main, bench.helper, bench.other});
    bench.signals.calls.clear();
    bench.control.resume({bench.main, bench.helper, bench.other});
    EXPECT_EQ(bench.signals.calls, (Calls{"resume 12", "resume 11", "resume 10"}));
    for (const auto& [pid, process] : bench.signals.processes)
        EXPECT_EQ(process.condition, ProcessCondition::running) << pid;
}

// --- Slowing ---------------------------------------------------------------------------------------------------------

TEST(ProcessControl, writesWhatWasBeforeTheFirstIsSlowed) {
    Bench bench;
    const auto slowed = bench.control.slow({bench.main, bench.helper});
    EXPECT_EQ(slowed, (std::vector<SlowedProcess>{{bench.main, {"usual since 0"}}, {bench.helper, {"usual since 0"}}}));
    EXPECT_EQ(bench.journals.front(), "slow 10: owner 42 1\nslow 10 100 usual since 0\nslow 11 101 usual since 0\n");
}

TEST(ProcessControl, slowsNothingWhenTheJournalCannotBeWritten) {
    Bench bench;
    fs::remove(bench.folder.path());
    EXPECT_TRUE(bench.control.slow({bench.main}).empty());
    EXPECT_EQ(bench.signals.calls, Calls());
}

TEST(ProcessControl, leavesOutWhatCannotBeSlowed) {
    Bench bench;
    bench.signals.unslowable = {11};
    bench.signals.processes[12].condition = ProcessCondition::untouchable;
    EXPECT_EQ(bench.control.slow({bench.main, bench.helper, bench.other}).size(), 1U);
    EXPECT_EQ(fileText(bench.net.journal()), "owner 42 1\nslow 10 100 usual since 0\n");
}

TEST(ProcessControl, doesNotSlowAProcessTwice) {
    Bench bench;
    bench.control.slow({bench.main});
    EXPECT_TRUE(bench.control.slow({bench.main}).empty());
}

TEST(ProcessControl, restoresExactlyWhatWas) {
    Bench bench;
    bench.signals.processes[11].priority = "nimble";
    const auto slowed = bench.control.slow({bench.main, bench.helper});
    bench.control.restore(slowed);
    EXPECT_EQ(bench.signals.processes[10].priority, "usual");
    EXPECT_EQ(bench.signals.processes[11].priority, "nimble");
}

TEST(ProcessControl, givesAHelperThatWasBornSlowWhatItsParentHad) {
    Bench bench;
    bench.signals.processes[10].priority = "nimble";
    bench.control.slow({bench.main});
    bench.signals.now = 5;
    const auto heir = bench.signals.runHeir(20, 200);
    EXPECT_EQ(bench.control.slow({bench.main, heir}), (std::vector<SlowedProcess>{{heir, {"nimble since 0"}}}));
}

TEST(ProcessControl, restoresAlsoWhatWasBornSlowSince) {
    Bench bench;
    const auto slowed = bench.control.slow({bench.main});
    bench.signals.now = 5;
    bench.signals.runHeir(20, 200);
    bench.control.restore(slowed);
    EXPECT_EQ(bench.signals.processes[20].priority, "usual");
}

TEST(ProcessControl, leavesSlowWhatIsStillHeld) {
    Bench bench;
    const auto slowed = bench.control.slow({bench.main});
    bench.signals.now = 5;
    const auto later = bench.signals.run(21, 201);
    bench.control.slow({later});
    bench.control.restore(slowed);
    EXPECT_EQ(bench.signals.processes[21].priority, "slow");
}

} // namespace
} // namespace kestrio
