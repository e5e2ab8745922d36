// A recorder that is killed while it writes, again and again, into the same file.
#include "Kestrio/Base/Descriptor.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Tests/Resources/RecorderBench.h"

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t mostSecondsLost = 30;

/// What a writer has measured: each line of its report is two numbers, written once the store has taken what it was
/// handed before.
struct Progress {
    std::int64_t seconds = 0;
    std::int64_t minutes = 0; // that are over
};

/// Records a second of virtual time per round, as fast as the store can write, until it is killed.
[[noreturn]] void record(const fs::path& file, Date start, int report) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    MachineBench machine(start);
    for (pid_t process = 1; process <= 20; ++process)
        machine.run(process, "/opt/program-" + std::to_string(process), 300'000'000);
    VirtualQueue main(machine.time, "main");
    VirtualQueue samplerQueue(machine.time, ResourceRecorder::samplerQueueLabel);
    VirtualQueue probeQueue(machine.time, StallProbe::queueLabel);
    WorkerQueue storeQueue(ResourceStore::queueLabel);
    MemoryKeyValueStore settings;
    settings.registerDefaults({{"resourceLogEnabled", true},
                               {"resourceLogDays", std::int64_t{90}},
                               {"resourceDetail", std::int64_t{1}},
                               {"resourceDetailDays", std::int64_t{7}}});
    const SystemClock clock; // the store's thread must not read the time that this one moves
    ResourceStore store(file, storeQueue, clock);
    ResourceRecorder recorder({.clock = machine.time,
                               .main = main,
                               .samplerQueue = samplerQueue,
                               .probeQueue = probeQueue,
                               .settings = settings,
                               .sampler = machine.sampler,
                               .store = &store,
                               .calendar = Calendar("en_US", "UTC")},
                              {});
    recorder.start();
    for (Progress done;; ++done.seconds) {
        machine.time.advance(Seconds(1));
        storeQueue.sync([] {});
        done.minutes = static_cast<std::int64_t>(machine.time.now().seconds() / 60) -
                       static_cast<std::int64_t>(start.seconds() / 60);
        // The tick that closes a minute comes a moment after the minute.
        if (std::fmod(machine.time.now().seconds(), 60) < 1)
            --done.minutes;
        char line[64];
        const int length = std::snprintf(line, sizeof line, "%lld %lld\n", static_cast<long long>(done.seconds),
                                         static_cast<long long>(done.minutes));
        if (write(report, line, static_cast<std::size_t>(length)) != length)
            _exit(1);
    }
}

class Writer {
public:
    Writer(const fs::path& file, Date start) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            std::abort();
        report_ = Descriptor(ends[0]);
        Descriptor written(ends[1]);
        process_ = fork();
        if (process_ == 0)
            record(file, start, written.number());
    }
    ~Writer() { end(); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /// Lets it go on for so many rounds, kills it, and tells how far it had come.
    Progress killAfter(int rounds, unsigned microseconds) {
        FILE* report = fdopen(dup(report_.number()), "r");
        char line[64];
        for (int round = 0; round < rounds && std::fgets(line, sizeof line, report); ++round)
            take(line);
        usleep(microseconds); // into the middle of whatever it does
        end();
        while (std::fgets(line, sizeof line, report))
            take(line);
        std::fclose(report);
        return done_;
    }

private:
    void end() {
        if (process_ <= 0)
            return;
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = 0;
    }
    void take(const char* line) {
        if (std::string_view(line).find('\n') == std::string_view::npos)
            return; // cut off by its death
        char* rest = nullptr;
        done_.seconds = std::strtoll(line, &rest, 10);
        done_.minutes = std::strtoll(rest, nullptr, 10);
    }

    Descriptor report_;
    pid_t process_ = 0;
    Progress done_;
};

TEST(ResourceLog, losesAtMostThirtySecondsAndTheOpenMinuteWhenItIsKilled) {
    const TemporaryFolder folder;
    const auto file = folder.path() / ResourceStore::fileName;
    constexpr Date begin{1'699'999'980};
    constexpr Seconds apart{9'960}; // whole minutes, and all together less than what is pruned
    std::mt19937 random(4'711);
    std::uniform_int_distribution rounds(1, 400);
    std::uniform_int_distribution microseconds(0u, 3'000u);
    std::vector<Progress> runs;
    for (int run = 0; run < 50; ++run) {
        const auto start = begin + apart * static_cast<double>(run);
        Writer writer(file, start);
        runs.push_back(writer.killAfter(rounds(random), microseconds(random)));

        VirtualTime time(start);
        VirtualQueue queue(time, ResourceStore::queueLabel);
        ResourceStore store(file, queue, time);
        for (std::size_t earlier = 0; earlier < runs.size(); ++earlier) {
            const auto from = begin + apart * static_cast<double>(earlier);
            const DateInterval range{from, from + apart};
            EXPECT_GE(store.secondsCount(range), runs[earlier].seconds - mostSecondsLost) << earlier << " in " << run;
            const auto minutes = static_cast<std::int64_t>(store.systemMinutes(range).size());
            EXPECT_GE(minutes, runs[earlier].minutes) << earlier << " in " << run;
            EXPECT_EQ(static_cast<std::int64_t>(store.appMinutes(range).size()), minutes * 20)
                << "a minute is whole or not there";
        }
        sqlite3* raw = nullptr;
        sqlite3_open(file.c_str(), &raw);
        const sqlite::Connection connection(raw);
        sqlite::Statement check(raw, "PRAGMA integrity_check");
        ASSERT_EQ(check.step(), sqlite::Step::row);
        EXPECT_EQ(check.text(0), "ok");
    }
}

} // namespace
} // namespace kestrio
