#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/PowerOffWatch.h"
#include "Tests/Platform/Linux/MockLogind.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

/// What was told, gathered on the watch's queue.
class Told {
public:
    explicit Told(const std::string& address) {
        queue_.sync([&] {
            watch_ = std::make_unique<PowerOffWatch>(queue_, address, [this](bool isNear) { told_.push_back(isNear); });
        });
    }
    ~Told() {
        queue_.sync([this] { watch_.reset(); });
    }
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;

    std::vector<bool> all() {
        return queue_.sync([this] { return told_; });
    }

private:
    WorkerQueue queue_{"power"};
    std::vector<bool> told_;
    std::unique_ptr<PowerOffWatch> watch_;
};

TEST(PowerOffWatch, tellsThatTheMachineIsAboutToGoAndThatItStays) {
    const PrivateBus bus;
    MockLogind logind(bus.address(), {});
    Told told(bus.address());
    logind.prepareForSleep(true);
    logind.prepareForShutdown(true);
    EXPECT_TRUE(eventually([&] { return told.all() == std::vector{true}; }));
    logind.prepareForShutdown(false);
    EXPECT_TRUE(eventually([&] { return told.all() == std::vector{true, false}; }));
}

TEST(PowerOffWatch, tellsNothingWhereNobodyKnows) {
    EXPECT_TRUE(Told("").all().empty());
    EXPECT_TRUE(Told("unix:path=/nonexistent/bus").all().empty());
    const PrivateBus bus;
    EXPECT_TRUE(Told(bus.address()).all().empty());
}

} // namespace
} // namespace kestrio
