// The monitor on this machine, with threads of its own.
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Monitor/SystemMonitor.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"
#include "Tests/Support/Eventually.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct LiveMonitor : testing::Test {
    SystemClock clock;
    LinuxKernelCounters kernel;
    LinuxProcessTable processes{LinuxProcessTable::setupOfThisMachine(), nullptr};
    LinuxSensors sensors{{}};
    SystemSampler sampler{kernel, processes, sensors, clock};
    WorkerQueue main{"main"};
    WorkerQueue worker{SystemMonitor::queueLabel};
    std::unique_ptr<SystemMonitor> monitor = main.sync([this] {
        return std::make_unique<SystemMonitor>(main, worker, sampler,
                                               SystemMonitor::Setup{"", Calendar("en_GB", "UTC"), [] { return true; }});
    });

    ~LiveMonitor() override {
        main.sync([this] { monitor.reset(); });
    }
    SystemMonitor::State state() {
        return main.sync([this] { return monitor->state(); });
    }
};

TEST_F(LiveMonitor, seesThisMachine) {
    main.sync([this] { monitor->start(); });
    ASSERT_TRUE(eventually([this] { return state().snapshot.has_value(); }));
    const auto snapshot = state().snapshot.value();
    EXPECT_GT(snapshot.memoryTotal, snapshot.memoryUsed);
    EXPECT_GT(snapshot.memoryUsed, 0u);
    EXPECT_FALSE(state().insights.empty());
}

TEST_F(LiveMonitor, listsApplicationsWhileThePanelIsOpen) {
    main.sync([this] { monitor->setPanelVisible(true); });
    ASSERT_TRUE(eventually([this] { return !state().cpuHistory.empty() && state().snapshot->hasAppCPU; }));
    EXPECT_FALSE(state().snapshot->topMemory.empty());
    EXPECT_LE(state().snapshot->topMemory.size(), SystemSampler::mostTopApps);
}

TEST_F(LiveMonitor, goesWhileASampleIsUnderWay) {
    main.sync([this] {
        monitor->refresh();
        monitor.reset();
    });
    worker.sync([] {});
    main.sync([] {});
}

} // namespace
} // namespace kestrio
