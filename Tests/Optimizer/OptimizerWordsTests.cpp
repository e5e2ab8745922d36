#include "Kestrio/Optimizer/OptimizerWords.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using namespace OptimizerWords;
using tindra::ThawReason;

TEST(OptimizerWords, everyReasonOfAThawHasItsWords) {
    EXPECT_EQ(resumed(ThawReason::opened), "Resumed: you opened it.");
    EXPECT_EQ(resumed(ThawReason::alwaysOn), "Resumed: it's always on now.");
    EXPECT_EQ(resumed(ThawReason::protected_), "Resumed: it started playing, recording or downloading.");
    EXPECT_EQ(resumed(ThawReason::optimizerOff), "Resumed: optimization was switched off.");
}

TEST(OptimizerWords, aFreezeTellsTheIdleTimeAndTheProcesses) {
    EXPECT_EQ(frozen(Seconds(0), 1), "Idle for 0s. 1 process.");
    EXPECT_EQ(frozen(Seconds(7500), 12), "Idle for 2h 5m. 12 processes.");
}

TEST(OptimizerWords, aWakeTellsWholeSeconds) {
    EXPECT_EQ(checking(45), "Checking for new messages for 45 s.");
    EXPECT_EQ(checking(59.99), "Checking for new messages for 59 s.");
}

TEST(OptimizerWords, aMoveTellsTheLoadAsTheLocaleWritesIt) {
    EXPECT_EQ(slowed(0.02, Calendar("en_GB", "UTC")), "Using 2% of a core in the background.");
    EXPECT_EQ(slowed(2.25, Calendar("de_DE", "UTC")), "Using 2,2 cores in the background.");
}

TEST(OptimizerWords, aTemporaryRuleTellsTheTimeWithoutADate) {
    const Date evening{1'700'000'000};
    EXPECT_EQ(overridden(tindra::AppTier::canWait, evening, Calendar("en_GB", "UTC")), "Can wait until 22:13.");
    EXPECT_EQ(overridden(tindra::AppTier::alwaysOn, evening, Calendar("de_DE", "Europe/Berlin")),
              "Always on until 23:13.");
}

} // namespace
} // namespace kestrio
