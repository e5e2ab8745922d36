#include "Kestrio/Resources/OwnCost.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

OwnUse use(double cpuSeconds, std::uint64_t wakeups = 0, std::uint64_t bytesWritten = 0, std::uint64_t memory = 0) {
    return {.cpu = Seconds(cpuSeconds), .memory = memory, .wakeups = wakeups, .bytesWritten = bytesWritten};
}

TEST(OwnCostWatch, measuresFromItsSecondReadingOn) {
    OwnCostWatch watch;
    EXPECT_EQ(watch.cost(), std::nullopt);
    watch.add(use(1, 100, 1'000, 7), Uptime(1'000));
    EXPECT_EQ(watch.cost(), std::nullopt);
    watch.add(use(1.5, 200, 6'000, 9), Uptime(1'050));
    EXPECT_EQ(
        watch.cost(),
        (OwnCost{
            .span = Seconds(50), .cores = 0.01, .memory = 9, .wakeupsPerSecond = 2, .bytesWrittenPerSecond = 100}));
}

TEST(OwnCostWatch, countsNothingForACounterThatFell) {
    OwnCostWatch watch;
    watch.add(use(1, 100, 100), Uptime(0));
    watch.add(use(1, 50, 50), Uptime(10));
    EXPECT_EQ(watch.cost()->wakeupsPerSecond, 0);
    EXPECT_EQ(watch.cost()->bytesWrittenPerSecond, 0);
}

TEST(OwnCostWatch, wantsAReadingOnceAMinute) {
    OwnCostWatch watch;
    EXPECT_TRUE(watch.isReadingDue(Uptime(5)));
    watch.add(use(0), Uptime(5));
    EXPECT_FALSE(watch.isReadingDue(Uptime(64.9)));
    EXPECT_TRUE(watch.isReadingDue(Uptime(65)));
}

TEST(OwnCostWatch, isOverBudgetOnlyAfterAWholeWindowAboveIt) {
    const struct {
        double cpuPerMinute;
        int minutes;
        bool over;
    } rows[] = {{0.3, 10, false}, {0.31, 10, true}, {3, 9, false}, {3, 10, true}, {0.1, 60, false}};
    for (const auto& row : rows) {
        OwnCostWatch watch;
        for (int minute = 0; minute <= row.minutes; ++minute)
            watch.add(use(row.cpuPerMinute * minute), Uptime(60.0 * minute));
        EXPECT_EQ(watch.isOverBudget(), row.over) << row.cpuPerMinute << " for " << row.minutes;
    }
}

TEST(OwnCostWatch, forgetsWhatIsOlderThanAWindow) {
    OwnCostWatch watch;
    double cpu = 100; // of a long import
    watch.add(use(0), Uptime(0));
    for (int minute = 1; minute <= 10; ++minute)
        watch.add(use(cpu), Uptime(60.0 * minute));
    EXPECT_TRUE(watch.isOverBudget());
    watch.add(use(cpu), Uptime(660));
    EXPECT_FALSE(watch.isOverBudget());
    EXPECT_EQ(watch.cost()->span, Seconds(600));
}

TEST(OwnCostWatch, measuresAnewWhenItIsTold) {
    OwnCostWatch watch;
    watch.add(use(0), Uptime(0));
    watch.add(use(100), Uptime(600));
    watch.beginAnew();
    EXPECT_FALSE(watch.isOverBudget());
    EXPECT_EQ(watch.cost(), std::nullopt);
}

TEST(OwnCostWatch, takesNoReadingThatIsNotLater) {
    OwnCostWatch watch;
    watch.add(use(0), Uptime(10));
    watch.add(use(5), Uptime(10));
    EXPECT_EQ(watch.cost(), std::nullopt);
}

} // namespace
} // namespace kestrio
