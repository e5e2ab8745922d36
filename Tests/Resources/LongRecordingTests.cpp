// Ninety days of recording on virtual time into a real file: every kept row against what the made-up machine did.
#include "Tests/Resources/RecorderBench.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace kestrio {
namespace {

constexpr double day = 86'400;
constexpr std::int64_t keptDays = 30;
constexpr std::int64_t keptDetailDays = 3;

/// What happened in one minute, by the machine's own account.
struct TrueMinute {
    std::array<double, 4> seconds{}; // by activity
    std::uint64_t swapIn = 0;
    std::uint64_t swapOut = 0;
    std::int64_t pressure = 1;
    std::map<std::string, double> inFront;
};
struct TrueApp {
    std::uint64_t diskRead = 0;
    double frontSeconds = 0;
};

/// Moves the machine on at each tick, and keeps the books.
class World {
public:
    explicit World(RecorderBench& bench) : bench_(bench) {
        bench_.machine.kernel.statistics = MemoryStatistics{.total = 8'000'000'000};
        bench_.beforeTick = [this] { passTick(); };
        for (int i = 0; i < 6; ++i)
            open();
    }

    double random(double from, double to) { return std::uniform_real_distribution(from, to)(random_); }
    bool chance(double probability) { return random(0, 1) < probability; }

    void sleep(Seconds span) {
        note(ResourceEventKind::macSlept);
        bench_.session.happen(SessionEvent::willSleep);
        bench_.machine.time.sleepMachine(span);
        note(ResourceEventKind::macWoke);
        bench_.session.happen(SessionEvent::didWake);
    }

    void set(const char* key, SettingValue value) {
        bench_.settings.set(key, std::move(value));
        bench_.machine.time.runPending();
    }
    bool isLogging() const { return bench_.settings.boolean("resourceLogEnabled"); }

    /// A program that begins to run, with a window.
    void open() {
        const auto name = "App" + std::to_string(random_() % 12);
        const auto process = nextProcess_++;
        bench_.machine.run(process, "/opt/" + name, 200'000'000, "org.example." + name);
        bench_.workspace.running.push_back(RecorderBench::application(name, process));
        announce(ResourceEventKind::appOpened);
    }
    void close() {
        auto& running = bench_.workspace.running;
        if (running.size() < 3)
            return;
        const auto which = running.begin() + static_cast<std::ptrdiff_t>(random_() % running.size());
        bench_.machine.processes.end(*which->processIdentifier);
        running.erase(which);
        announce(ResourceEventKind::appClosed);
    }

    std::map<std::int64_t, TrueMinute> minutes;
    std::map<std::pair<std::int64_t, std::string>, TrueApp> apps;
    std::set<std::int64_t> seconds;
    std::vector<std::pair<Date, ResourceEventKind>> events;
    int ticks = 0;
    int restarts = 0;

private:
    void note(ResourceEventKind kind) {
        if (isLogging() && started_)
            events.emplace_back(bench_.machine.time.now(), kind);
    }
    void announce(ResourceEventKind kind) {
        note(kind);
        bench_.workspace.announce(kind == ResourceEventKind::appOpened ? WorkspaceNotice::launched
                                                                       : WorkspaceNotice::terminated);
    }

    void passTick() {
        const auto now = bench_.machine.time.now();
        const auto minute = static_cast<std::int64_t>(std::floor(now.seconds() / 60)) * 60;
        if (started_ && minute != minute_)
            closeMinute();
        minute_ = minute;
        const double elapsed = started_ ? std::clamp((now - lastTick_).count(), 0.0, 30.0) : 0;
        changeActivity();
        truth_.seconds[static_cast<std::size_t>(bench_.activity)] += elapsed;
        moveSwap();
        movePressure();
        const auto& front = *bench_.workspace.front->bundleIdentifier;
        truth_.inFront[front] += elapsed;
        frontSinceScan_[front] += elapsed;
        for (auto& [process, counters] : bench_.machine.processes.readings)
            counters.diskRead = chance(0.001) ? 0 : counters.diskRead.value_or(0) + random_() % 1'000'000;
        if (isScan(now))
            creditScan();
        keepSecond(now);
        lastTick_ = now;
        started_ = true;
        ++ticks;
    }

    void closeMinute() {
        minutes[minute_] = std::exchange(truth_, {});
        for (auto& [key, app] : std::exchange(trueApps_, {}))
            apps[{minute_, key}] = app;
    }

    void changeActivity() {
        const auto before = bench_.activity;
        if (chance(0.01))
            bench_.activity = allTrackingStates[random_() % allTrackingStates.size()];
        if (started_ && before != bench_.activity)
            note(ResourceEventKind::activity);
        const auto& running = bench_.workspace.running;
        if (!bench_.workspace.front || chance(0.05))
            bench_.workspace.front = running[random_() % running.size()];
    }

    void moveSwap() {
        auto& statistics = *bench_.machine.kernel.statistics;
        if (chance(0.0005)) { // as after a restart of the machine
            statistics.swapIns = statistics.swapOuts = 0;
            ++restarts;
            return;
        }
        const auto in = chance(0.3) ? 4'096 * (random_() % 100) : 0;
        const auto out = chance(0.3) ? 4'096 * (random_() % 100) : 0;
        // So that counters that begin anew are seen to have fallen.
        statistics.swapIns += in + 1;
        statistics.swapOuts += out + 1;
        if (!started_)
            return;
        truth_.swapIn += in + 1;
        truth_.swapOut += out + 1;
    }

    void movePressure() {
        const bool was = bench_.machine.kernel.pressure == MemoryPressure::warning;
        const bool is = was ? !chance(0.2) : chance(0.002);
        bench_.machine.kernel.pressure = is ? MemoryPressure::warning : MemoryPressure::normal;
        if (is && !was)
            note(ResourceEventKind::pressure);
        if (is)
            truth_.pressure = 2;
    }

    bool isScan(Date now) {
        if (started_ && now >= lastScan_ && (now - lastScan_).count() < 9.6)
            return false;
        lastScan_ = now;
        return true;
    }

    void creditScan() {
        const auto uptime = bench_.machine.time.uptime();
        if (uptime - std::exchange(lastScanUptime_, uptime) > ResourceSampler::maxScanBaselineAge)
            lastReadings_.clear(); // nothing was recorded for a while
        std::map<pid_t, std::uint64_t> readings;
        for (const auto& [process, counters] : bench_.machine.processes.readings) {
            const auto& key = bench_.machine.processes.applications[process].bundleIdentifier;
            readings[process] = *counters.diskRead;
            const auto before = lastReadings_.find(process);
            const bool grew = before != lastReadings_.end() && *counters.diskRead > before->second;
            trueApps_[key].diskRead += grew ? *counters.diskRead - before->second : 0;
        }
        for (auto& [key, app] : trueApps_)
            if (hasProcess(key))
                app.frontSeconds += frontSinceScan_[key];
        frontSinceScan_.clear();
        lastReadings_ = std::move(readings);
    }
    bool hasProcess(const std::string& key) const {
        const auto& applications = bench_.machine.processes.applications;
        return std::any_of(applications.begin(), applications.end(),
                           [&](const auto& entry) { return entry.second.bundleIdentifier == key; });
    }

    void keepSecond(Date now) {
        const auto detail = bench_.recorder->detailSeconds();
        if (detail == 0 || !started_)
            return;
        if (lastSecond_ && now >= *lastSecond_ && (now - *lastSecond_).count() < static_cast<double>(detail) - 0.4)
            return;
        lastSecond_ = now;
        seconds.insert(static_cast<std::int64_t>(now.seconds()));
    }

    RecorderBench& bench_;
    std::mt19937 random_{20'261'121};
    pid_t nextProcess_ = 100;
    bool started_ = false;
    std::int64_t minute_ = 0;
    Date lastTick_;
    Date lastScan_;
    Uptime lastScanUptime_;
    std::optional<Date> lastSecond_;
    TrueMinute truth_; // of the minute under way
    std::map<std::string, TrueApp> trueApps_;
    std::map<std::string, double> frontSinceScan_;
    std::map<pid_t, std::uint64_t> lastReadings_;
};

/// Compares the rows of a range with the world's books, and counts what it compared.
class Audit {
public:
    Audit(RecorderBench& bench, World& world) : bench_(bench), world_(world) {}

    void check(DateInterval range) {
        checkMinutes(range);
        checkApps(range);
        checkEvents(range);
    }

    std::size_t minutes = 0;
    std::size_t apps = 0;
    std::size_t events = 0;

private:
    void checkMinutes(DateInterval range) {
        const auto rows = bench_.store->systemMinutes(range);
        ASSERT_EQ(rows.size(), countIn(world_.minutes, range));
        for (const auto& row : rows) {
            const auto at = static_cast<std::int64_t>(row.minute.seconds());
            ASSERT_TRUE(world_.minutes.contains(at));
            const auto& truth = world_.minutes[at];
            const std::array stored{row.activeSeconds, row.idleSeconds, row.awaySeconds, row.pausedSeconds};
            for (std::size_t state = 0; state < stored.size(); ++state)
                EXPECT_NEAR(static_cast<double>(stored[state]), truth.seconds[state], 0.5001) << at;
            ASSERT_EQ(row.swapIn, truth.swapIn) << at;
            ASSERT_EQ(row.swapOut, truth.swapOut) << at;
            ASSERT_EQ(row.pressure, truth.pressure) << at;
            double longest = 0;
            for (const auto& [key, time] : truth.inFront)
                longest = std::max(longest, time);
            EXPECT_NEAR(truth.inFront.at(row.frontApp.value_or("")), longest, 1e-6) << at;
        }
        minutes += rows.size();
    }

    void checkApps(DateInterval range) {
        const auto rows = bench_.store->appMinutes(range);
        std::size_t expected = 0;
        for (const auto& [at, app] : world_.apps)
            expected += range.contains(Date(static_cast<double>(at.first))) ? 1 : 0;
        ASSERT_EQ(rows.size(), expected);
        for (const auto& row : rows) {
            const auto truth = world_.apps.find({static_cast<std::int64_t>(row.minute.seconds()), row.appID});
            ASSERT_NE(truth, world_.apps.end());
            ASSERT_EQ(row.diskRead, truth->second.diskRead);
            ASSERT_NEAR(row.frontSeconds, truth->second.frontSeconds, 1e-6);
        }
        apps += rows.size();
    }

    void checkEvents(DateInterval range) {
        std::map<std::string, int> stored;
        std::map<std::string, int> expected;
        for (const auto& event : bench_.store->events(range, 1'000'000))
            ++stored[std::string(storedText(event.kind))];
        for (const auto& [at, kind] : world_.events) {
            if (!range.contains(at))
                continue;
            ++expected[std::string(storedText(kind))];
            ++events;
        }
        EXPECT_EQ(stored, expected);
    }

    static std::size_t countIn(const std::map<std::int64_t, TrueMinute>& all, DateInterval range) {
        return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [&](const auto& entry) {
            return range.contains(Date(static_cast<double>(entry.first)));
        }));
    }

    RecorderBench& bench_;
    World& world_;
};

TEST(LongRecording, keepsTrueBooksForNinetyDays) {
    RecorderBench bench(
        {{"resourceDetail", std::int64_t{10}}, {"resourceLogDays", keptDays}, {"resourceDetailDays", keptDetailDays}});
    World world(bench);
    Audit audit(bench, world);
    bench.recorder->start();
    const auto now = [&] { return bench.machine.time.now(); };
    const auto begin = now();
    auto audited = begin;
    int jumps = 0;
    while (now() - begin < Seconds(90 * day)) {
        bench.advance(world.random(300, 3'000));
        if (world.chance(0.4))
            world.open();
        if (world.chance(0.4))
            world.close();
        if (world.chance(0.3))
            world.sleep(Seconds(world.random(60, 40'000)));
        if (world.chance(0.01)) {
            bench.machine.time.jumpWallClock(Seconds(world.random(-5'000, 5'000)));
            ++jumps;
        }
        if (world.chance(0.05))
            world.set("resourceDetail",
                      std::array<std::int64_t, 4>{0, 5, 10, 10}[static_cast<std::size_t>(world.random(0, 3.99))]);
        if (world.chance(0.02))
            world.set("resourceLogEnabled", !world.isLogging());
        else if (world.chance(0.5))
            world.set("resourceLogEnabled", true);
        if (now() - audited < Seconds(10 * day))
            continue;
        audit.check({audited, now() - Seconds(7'200)}); // the rest may yet be written anew by a clock put back
        audited = now() - Seconds(7'200);
        if (testing::Test::HasFailure())
            return;
    }
    bench.advance(30);
    bench.recorder->stop();

    // What is older than the setting was given up at the latest pruning, a quarter of a day ago or a sleep longer.
    constexpr double slack = 2 * day;
    EXPECT_GE(*bench.store->earliestMinute(), now() - Seconds(keptDays * day + slack));
    EXPECT_LE(*bench.store->earliestMinute(), now() - Seconds(keptDays * day - slack));
    EXPECT_EQ(bench.store->secondsCount({Date(0), now() - Seconds(keptDetailDays * day + slack)}), 0);
    const DateInterval detailed{now() - Seconds(keptDetailDays * day), now() + Seconds(1)};
    EXPECT_EQ(bench.store->secondsCount(detailed),
              std::count_if(world.seconds.begin(), world.seconds.end(),
                            [&](std::int64_t at) { return detailed.contains(Date(static_cast<double>(at))); }));

    EXPECT_GT(jumps, 5);
    EXPECT_GT(world.restarts, 20);
    EXPECT_GT(audit.minutes, 20'000u);
    EXPECT_GT(audit.apps, 50'000u);
    EXPECT_GT(audit.events, 1'000u);
    RecordProperty("ticks", world.ticks);
    RecordProperty("minutes", static_cast<int>(audit.minutes));
    RecordProperty("applications", static_cast<int>(audit.apps));
    RecordProperty("events", static_cast<int>(audit.events));
}

} // namespace
} // namespace kestrio
