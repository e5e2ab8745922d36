#include "Kestrio/Platform/Testing/ScriptedProcessSignals.h"
#include "Kestrio/Platform/Testing/ScriptedWatchdog.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ScriptedProcessSignals, stopsAndResumesAProcessOfThatStart) {
    ScriptedProcessSignals signals;
    const auto key = signals.run(7, 11);
    EXPECT_FALSE(signals.stop({7, 12}));
    EXPECT_TRUE(signals.stop(key));
    EXPECT_EQ(signals.condition(key), ProcessCondition::stopped);
    EXPECT_FALSE(signals.stop(key));
    EXPECT_TRUE(signals.resume(key));
    EXPECT_EQ(signals.condition(key), ProcessCondition::running);
    EXPECT_EQ(signals.condition({7, 12}), ProcessCondition::gone);
    EXPECT_EQ(signals.calls, (std::vector<std::string>{"stop 7", "stop 7", "stop 7", "resume 7"}));
}

TEST(ScriptedProcessSignals, slowsAndRestoresWithHeirs) {
    ScriptedProcessSignals signals;
    const auto key = signals.run(7, 11);
    signals.now = 5;
    const auto before = signals.priority(key).value();
    EXPECT_TRUE(signals.slow(key));
    const auto heir = signals.runHeir(8, 12);
    EXPECT_EQ(signals.heirs(before), (std::vector<ProcessKey>{heir}));
    EXPECT_TRUE(signals.restore(key, before));
    EXPECT_EQ(signals.processes[7].priority, "usual");
    EXPECT_TRUE(signals.heirs({}).empty());
}

TEST(ScriptedProcessSignals, touchesNothingUntouchable) {
    ScriptedProcessSignals signals;
    const auto key = signals.run(7, 11);
    signals.processes[7].condition = ProcessCondition::untouchable;
    EXPECT_FALSE(signals.stop(key));
    EXPECT_FALSE(signals.resume(key));
    EXPECT_FALSE(signals.priority(key));
    EXPECT_FALSE(signals.slow(key));
    EXPECT_FALSE(signals.restore(key, {}));
}

TEST(ScriptedWatchdog, startsOnceUnlessThereIsAProblem) {
    ScriptedWatchdog watchdog;
    watchdog.problem = "none left";
    EXPECT_EQ(watchdog.start("/a"), "none left");
    EXPECT_FALSE(watchdog.isWatching());
    watchdog.problem.reset();
    EXPECT_EQ(watchdog.start("/a"), std::nullopt);
    EXPECT_EQ(watchdog.start("/b"), std::nullopt);
    EXPECT_EQ(watchdog.journal, "/a");
    EXPECT_EQ(watchdog.starts, 1);
}

} // namespace
} // namespace kestrio
