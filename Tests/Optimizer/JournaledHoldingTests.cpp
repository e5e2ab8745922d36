#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Optimizer/JournaledHolding.h"
#include "Kestrio/Optimizer/Optimizer.h"
#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Kestrio/Platform/Testing/ScriptedProcessSignals.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"
#include "Kestrio/Platform/Testing/ScriptedWatchdog.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Texts = std::vector<std::string>;
using Keys = std::vector<ProcessKey>;

struct HoldingBench {
    TemporaryFolder folder;
    ScriptedProcessTable table;
    ScriptedProcessSignals signals;
    ScriptedWatchdog watchdog;
    SafetyNet net{{folder.path(), ProcessKey{1, 1}}, signals, watchdog};
    ProcessControl control{table, signals, net};
    JournaledHolding holding{table, control, net};

    ProcessKey run(pid_t pid, pid_t responsible) {
        const auto start = static_cast<std::uint64_t>(pid) * 10;
        table.run(pid, "/bin/program", ProcessCounters{.start = start});
        table.responsibles[pid] = responsible;
        return signals.run(pid, start);
    }
    std::string journal() const { return fileText(net.journal()); }
};

TEST(JournaledHolding, oneSweepFindsTheProcessesOfSeveralApplications) {
    HoldingBench bench;
    const auto helper = bench.run(19, 20);
    const auto first = bench.run(20, 20);
    const auto second = bench.run(30, 30);
    const auto child = bench.run(31, 30);
    bench.run(40, 40);
    const ProcessesByMain expected{{20, Keys{first, helper}}, {30, Keys{second, child}}};
    EXPECT_EQ(bench.holding.rememberedProcesses({20, 30, 99}), expected);
    EXPECT_EQ(bench.holding.processes(20), (Keys{first, helper}));
    EXPECT_TRUE(bench.holding.processes(99).empty());
    EXPECT_TRUE(bench.holding.rememberedProcesses({99}).empty());
}

TEST(JournaledHolding, whomAProcessBelongsToIsLookedUpWhenItIsFirstSeen) {
    HoldingBench bench;
    const auto first = bench.run(20, 20);
    const auto ended = bench.run(21, 20);
    bench.run(30, 30);
    EXPECT_EQ(bench.holding.rememberedProcesses({20}), (ProcessesByMain{{20, Keys{first, ended}}}));
    EXPECT_EQ(bench.table.lookUps, 3);
    const auto later = bench.run(22, 20);
    bench.table.end(21);
    EXPECT_EQ(bench.holding.rememberedProcesses({20}), (ProcessesByMain{{20, Keys{first, later}}}));
    EXPECT_EQ(bench.table.lookUps, 4);
    const auto again = bench.run(21, 20);
    EXPECT_EQ(bench.holding.rememberedProcesses({20}), (ProcessesByMain{{20, Keys{first, later, again}}}));
    EXPECT_EQ(bench.table.lookUps, 5);
}

TEST(JournaledHolding, whatWasSlowedGetsBackWhatItHad) {
    HoldingBench bench;
    const auto key = bench.run(20, 20);
    bench.signals.processes[20].priority = "batch";
    EXPECT_EQ(bench.holding.slow({key}), Keys{key});
    bench.holding.record({}, {key});
    EXPECT_EQ(bench.journal(), "owner 1 1\nslow 20 200 batch since 0\n");
    bench.holding.restore({key});
    bench.holding.record({}, {});
    EXPECT_EQ(bench.signals.calls.back(), "restore 20 batch since 0");
    EXPECT_EQ(bench.signals.processes[20].priority, "batch");
    EXPECT_EQ(bench.journal(), "");
}

TEST(JournaledHolding, watcherAndRecoveryAreThoseOfTheSafetyNet) {
    HoldingBench bench;
    bench.run(20, 20);
    bench.signals.processes[20].condition = ProcessCondition::stopped;
    bench.folder.write("optimizer-held-77.txt", "owner 77 7\nstop 20 200\n");
    EXPECT_EQ(bench.holding.recoverEarlierRuns(), 1U);
    EXPECT_EQ(bench.signals.processes[20].condition, ProcessCondition::running);
    bench.holding.startWatcher();
    EXPECT_TRUE(bench.watchdog.watches);
}

TEST(JournaledHolding, theOptimizerStandsOnIt) {
    HoldingBench bench;
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue queue{time, "Kestrio.main"};
    const Calendar calendar{"en_GB", "UTC"};
    MemoryKeyValueStore settings{{{Optimizer::enabledKey, true}}};
    ScriptedWorkspace workspace;
    const RunningApplication chat{"org.example.chat", "Chat", 20};
    workspace.running = {{"org.example.editor", "Editor", 10}, chat};
    workspace.front = workspace.running[0];
    bench.run(10, 10);
    bench.run(20, 20);
    bench.run(21, 20);
    Optimizer optimizer({time, queue, calendar, workspace, settings, bench.holding}, {.ownBundleID = "self"});
    optimizer.start();
    optimizer.moveToEfficiencyCores(chat);
    optimizer.freezeNow(chat);
    EXPECT_EQ(bench.journal(),
              "owner 1 1\nstop 20 200\nstop 21 210\nslow 20 200 usual since 0\nslow 21 210 usual since 0\n");
    EXPECT_EQ(bench.signals.condition({21, 210}), ProcessCondition::stopped);
    const auto before = bench.signals.calls;
    optimizer.tick();
    EXPECT_EQ(bench.signals.calls, before);
    workspace.front = chat;
    workspace.announce(WorkspaceNotice::activated);
    time.runPending();
    EXPECT_EQ(bench.signals.condition({20, 200}), ProcessCondition::running);
    EXPECT_EQ(bench.signals.condition({21, 210}), ProcessCondition::running);
    EXPECT_EQ(bench.signals.processes[21].priority, "usual");
    EXPECT_EQ(bench.journal(), "");
}

} // namespace
} // namespace kestrio
