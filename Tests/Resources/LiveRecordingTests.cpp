// The recorder on this machine, with its own threads and the system's clock.
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/LinuxDisks.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxMemoryTraffic.h"
#include "Kestrio/Platform/Linux/LinuxOwnUse.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Resources/ResourceRecorder.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

TEST(LiveRecording, recordsThisMachineOnQueuesOfItsOwn) {
    const TemporaryFolder folder;
    const SystemClock clock;
    MemoryKeyValueStore settings;
    settings.registerDefaults({{"resourceLogEnabled", true}, {"resourceDetail", std::int64_t{1}}});
    WorkerQueue main("main");
    WorkerQueue samplerQueue(ResourceRecorder::samplerQueueLabel);
    WorkerQueue probeQueue(StallProbe::queueLabel);
    WorkerQueue storeQueue(ResourceStore::queueLabel);
    LinuxProcessTable processes(LinuxProcessTable::setupOfThisMachine(), nullptr);
    LinuxKernelCounters kernel;
    LinuxMemoryTraffic memoryTraffic;
    LinuxDisks disks({});
    ResourceSampler sampler(
        {.clock = clock, .processes = processes, .kernel = kernel, .disks = disks, .memoryTraffic = memoryTraffic});
    ResourceStore store(folder.path() / ResourceStore::fileName, storeQueue, clock);
    ResourceRecorder::Collaborators collaborators;
    collaborators.ownUse = [] { return readOwnUse(); };
    std::optional<ResourceRecorder> recorder;
    main.sync([&] {
        recorder.emplace(ResourceRecorder::Host{.clock = clock,
                                                .main = main,
                                                .samplerQueue = samplerQueue,
                                                .probeQueue = probeQueue,
                                                .settings = settings,
                                                .sampler = sampler,
                                                .store = &store,
                                                .calendar = Calendar("en_US", "UTC")},
                         std::move(collaborators));
        recorder->start();
    });
    EXPECT_TRUE(eventually([&] { return main.sync([&] { return recorder->history().size() >= 3; }); }));
    settings.set("resourceDetail", std::int64_t{5}); // from another thread
    main.sync([&] {
        const auto& live = *recorder->live();
        EXPECT_GT(live.memoryTotal, live.memoryUsed);
        EXPECT_GT(live.memoryUsed, 0u);
        EXPECT_FALSE(live.apps->empty());
        recorder.reset();
    });
    EXPECT_GE(store.secondsCount({Date(0), distantFuture}), 1);
}

} // namespace
} // namespace kestrio
