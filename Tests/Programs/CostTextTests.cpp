#include "Programs/CommandLine/CostText.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Calendar calendar("en_GB", "UTC");

TEST(CostText, saysWhatTheMachineGaveForIt) {
    const OwnCost cost{.span = Seconds(600),
                       .cores = 0.00314,
                       .memory = 14 << 20,
                       .wakeupsPerSecond = 3.44,
                       .bytesWrittenPerSecond = 1'234.6};
    EXPECT_EQ(costText(cost, calendar),
              "0.31% of a core, 14 MB of memory, 3.4 wake-ups and 1 KB written a second, over 10m");
    EXPECT_EQ(costText(OwnCost{.span = Seconds(60)}, calendar),
              "0.00% of a core, 0 bytes of memory, 0.0 wake-ups and 0 bytes written a second, over 1m");
}

TEST(CostText, saysUntilWhenThePaceIsLowAndWhy) {
    const LoweredPace lowered{Date(1'700'049'600), Date(1'700'053'200), OwnCost{.cores = 0.0081}};
    EXPECT_EQ(loweredPaceText(lowered, calendar), "minutes alone until 13:00: Kestrio itself took 0.81% of a core");
}

} // namespace
} // namespace kestrio
