// Random weeks in front of a computer, and what must hold through all of them.
//
// An observer of its own watches every tick's inputs and writes down, from the definitions of the four states alone,
// which stretches of time belong to which activity. The monitor's sessions must be those stretches.
#include "Tests/Activity/MonitorBench.h"
#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace kestrio {
namespace {

struct Stretch {
    std::string title;
    Date start;
    Date end;
};

/// Calls back at each look at the time, of which there is exactly one at the beginning of a tick.
class ObservedClock final : public Clock {
public:
    ObservedClock(const Clock& real, std::function<void()> looked) : real_(real), looked_(std::move(looked)) {}
    Date now() const override {
        looked_();
        return real_.now();
    }
    Uptime uptime() const override { return real_.uptime(); }

private:
    const Clock& real_;
    const std::function<void()> looked_;
};

class RandomLife {
public:
    explicit RandomLife(unsigned seed) : random_(seed) {}

    /// Lives for so many simulated seconds, then closes the monitor and compares.
    void live(double seconds) {
        bench_.store.inserting = [this](Date start, Date end) {
            // What was over sooner gets no row; only one that still goes on may be written so early.
            if (end - start < ActivityMonitor::shortestRow) {
                EXPECT_TRUE(open_ && open_->start == start) << "a row of " << (end - start).count() << " s";
            }
        };
        bench_.time.jumpWallClock(-ActivityMonitor::firstSampleAfter);
        monitor_ = std::make_unique<ActivityMonitor>(
            ActivityMonitor::Host{clock_, bench_.queue, bench_.workspace, bench_.titles, bench_.input, bench_.events,
                                  bench_.settings},
            bench_.store, ActivityMonitor::HostApplications{}, bench_.collaborators);
        show(0);
        monitor_->start();
        bench_.time.runPending(); // it hears of everything from now on
        const auto end = bench_.time.uptime() + Seconds(seconds);
        while (bench_.time.uptime() < end && !testing::Test::HasFailure()) {
            step();
            checkNow();
        }
        bench_.store.failInserts = bench_.store.failUpdates = false;
        stopping_ = true;
        monitor_->stop();
        checkAll();
    }

private:
    double uniform(double least, double most) { return std::uniform_real_distribution(least, most)(random_); }
    bool chance(double probability) { return uniform(0, 1) < probability; }

    void show(int which) {
        static const char* ids[] = {"editor", "browser", "chat", "com.apple.SecurityAgent", "com.apple.loginwindow"};
        front_ = which;
        bench_.show(ids[which], std::string(ids[which]) + std::to_string(static_cast<int>(uniform(0, 3))));
    }

    void touch() { lastInput_ = bench_.time.uptime(); }
    Seconds idle() const { return bench_.time.uptime() - lastInput_; }

    /// Time in small pieces, so that the idle time is right at every tick.
    void pass(double seconds) {
        const auto end = bench_.time.uptime() + Seconds(seconds);
        while (bench_.time.uptime() < end)
            bench_.time.advance(std::min(Seconds(0.25), end - bench_.time.uptime()));
    }

    void announce(SessionEvent event, const char* reason, bool holds) {
        if (!chance(0.1)) { // else the notice is lost
            bench_.queue.async([this, reason, holds] {
                if (holds)
                    reasons_[reason] = bench_.time.uptime();
                else
                    reasons_.erase(reason);
            });
            bench_.events.happen(event);
        }
        bench_.time.runPending();
    }

    void step() {
        const double dice = uniform(0, 1);
        if (dice < 0.45) { // a person at work
            touch();
            if (chance(0.7)) {
                show(chance(0.06) ? 3 : static_cast<int>(uniform(0, 3)));
                if (chance(0.7)) {
                    bench_.workspace.announce(WorkspaceNotice::activated);
                    bench_.time.runPending();
                }
            }
            pass(uniform(0.1, 40));
        } else if (dice < 0.6) { // reading, or gone
            pass(uniform(1, chance(0.2) ? 1500 : 100));
        } else if (dice < 0.68) {
            announce(SessionEvent::screenIsLocked, "lock", true);
            if (chance(0.3))
                show(4);
            pass(uniform(1, 300));
            touch();
            show(0);
            announce(SessionEvent::screenIsUnlocked, "lock", false);
            if (reasons_.contains("lock")) // the notice was lost, and only the notice ends this
                reasons_.erase("lock"), bench_.events.happen(SessionEvent::screenIsUnlocked), bench_.time.runPending();
        } else if (dice < 0.76) {
            announce(SessionEvent::willSleep, "sleep", true);
            bench_.time.sleepMachine(Seconds(uniform(2, 30'000)));
            if (chance(0.5))
                touch();
            announce(SessionEvent::didWake, "sleep", false);
            pass(uniform(0.1, 20));
        } else if (dice < 0.82) {
            announce(SessionEvent::displaysDidSleep, "display", true);
            pass(uniform(1, 400));
            touch();
            announce(SessionEvent::displaysDidWake, "display", false);
        } else if (dice < 0.86) {
            bench_.workspace.front.reset();
            front_ = -1;
            pass(uniform(0.1, 20));
            show(1);
        } else if (dice < 0.9) {
            pausedUntil_ = chance(0.2) ? distantFuture : bench_.time.now() + Seconds(uniform(-10, 200));
            monitor_->pause(pausedUntil_);
            bench_.time.runPending();
            pass(uniform(0.1, 150));
            if (chance(0.5) || (pausedUntil_ && *pausedUntil_ == distantFuture)) {
                pausedUntil_.reset();
                monitor_->pause(std::nullopt);
                bench_.time.runPending();
            }
        } else if (dice < 0.93) { // somebody sets the clock, or it creeps
            bench_.time.jumpWallClock(Seconds(chance(0.5) ? uniform(-0.9, 0.9) : uniform(-7200, 7200)));
            pass(uniform(0.1, 30));
        } else if (dice < 0.97) { // the disk is full for a while
            bench_.store.failInserts = true;
            bench_.store.failUpdates = chance(0.5);
            troubled_ = true;
            pass(uniform(1, 90));
            bench_.store.failInserts = bench_.store.failUpdates = false;
        } else {
            bench_.settings.set("idleMinutes", std::int64_t(uniform(0, 6)));
        }
        // No notice of this is lost for good.
        if (chance(0.3)) {
            touch();
            pass(2.5);
        }
    }

    // The observer.

    void tick() {
        *bench_.input.idle = idle();
        const Date raw = bench_.time.now();
        const Uptime uptime = bench_.time.uptime();
        Date now = raw;
        if (lastTick_) {
            const auto jump = (raw - *lastTick_) - (uptime - lastTickUptime_);
            if (jump >= Seconds(1) || jump <= Seconds(-1)) {
                endOpen(open_ ? openSeen_ : now);
            } else {
                now = std::max(now, *lastTick_);
            }
        }
        lastTick_ = now;
        lastTickUptime_ = uptime;
        if (stopping_) {
            endOpen(now);
            return;
        }
        follow(now);
    }

    void follow(Date now) {
        if (pausedUntil_ && *pausedUntil_ > now) {
            expected_ = TrackingState::paused;
            return endOpen(now);
        }
        pausedUntil_.reset();
        const bool ordinary = front_ >= 0 && front_ != 4;
        if (idle() < Seconds(3) && ordinary)
            for (const char* reason : {"sleep", "display"})
                if (reasons_.contains(reason) && lastInput_ > reasons_[reason])
                    reasons_.erase(reason);
        const bool nobodyThere = !reasons_.empty() || front_ == 4;
        if (nobodyThere || front_ < 0) {
            expected_ = nobodyThere ? TrackingState::away : TrackingState::idle;
            return endOpen(now);
        }
        const auto minutes = bench_.settings.get<std::int64_t>("idleMinutes").value_or(3);
        if (idle().count() >= 60.0 * static_cast<double>(std::max<std::int64_t>(minutes, 1))) {
            expected_ = TrackingState::idle;
            return endOpen(now - idle());
        }
        expected_ = TrackingState::tracking;
        if (front_ == 3 && open_) {
            openSeen_ = now;
            return;
        }
        const auto& title = bench_.titles.titles.at(100);
        if (!open_ || open_->title != title) {
            endOpen(now);
            open_ = Stretch{title, now, now};
        }
        openSeen_ = now;
    }

    void endOpen(Date end) {
        if (!open_)
            return;
        open_->end = std::max(open_->start, end);
        if (open_->end - open_->start >= Seconds(1))
            stretches_.push_back(*open_);
        open_.reset();
    }

    // What must hold.

    void checkNow() {
        const auto published = monitor_->published();
        EXPECT_EQ(published.state, expected_);
        EXPECT_EQ(published.live.has_value(), open_.has_value());
        if (!published.live)
            return;
        EXPECT_EQ(published.live->start, open_->start);
        EXPECT_EQ(published.live->lastSeen, openSeen_);
        EXPECT_GE(published.live->lastSeen, published.live->start);
        // A crash now loses at most one flush interval and a tick, unless a prompt or a full disk was in the way.
        if (std::exchange(troubled_, false) || front_ == 3 || wasPrompt_) {
            wasPrompt_ = front_ == 3;
            settled_ = bench_.time.uptime();
            return;
        }
        if (bench_.time.uptime() - settled_ < Seconds(20))
            return;
        const auto bound = ActivityMonitor::flushInterval + ActivityMonitor::sampleInterval;
        Date saved = published.live->start;
        if (published.live->rowID)
            for (const auto& row : bench_.database.sessions(published.live->start - Seconds(1), distantFuture))
                if (row.id == *published.live->rowID)
                    saved = row.end;
        EXPECT_LE(published.live->lastSeen - saved, bound + Seconds(1e-6));
    }

    void checkAll() {
        std::vector<ActivitySession> rows = bench_.database.sessions(distantPast + Seconds(1e6), distantFuture);
        std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        std::multimap<double, Stretch> wanted;
        for (const auto& stretch : stretches_)
            wanted.emplace(stretch.start.seconds(), stretch);
        for (const auto& row : rows) {
            EXPECT_GE(row.end, row.start);
            if (row.end - row.start < Seconds(1))
                continue; // it was flushed before it turned out so short
            auto [at, end] = wanted.equal_range(row.start.seconds());
            while (at != end && (at->second.title != row.title || at->second.end != row.end))
                ++at;
            ASSERT_NE(at, end) << "nobody did this: " << row.title << " from " << (row.start - origin).count() << " to "
                               << (row.end - origin).count();
            wanted.erase(at);
        }
        for (const auto& [start, stretch] : wanted)
            ADD_FAILURE() << "not recorded: " << stretch.title << " from " << (stretch.start - origin).count() << " to "
                          << (stretch.end - origin).count();
        checked = rows.size();
    }

public:
    std::size_t checked = 0;

private:
    std::mt19937 random_;
    MonitorBench bench_;
    ObservedClock clock_{bench_.time, [this] { tick(); }};
    std::unique_ptr<ActivityMonitor> monitor_;

    int front_ = 0;
    Uptime lastInput_ = bench_.time.uptime();
    std::map<std::string, Uptime> reasons_;
    std::optional<Date> pausedUntil_;
    bool troubled_ = false;
    bool wasPrompt_ = false;
    bool stopping_ = false;
    Uptime settled_ = bench_.time.uptime();

    std::optional<Date> lastTick_;
    Uptime lastTickUptime_;
    TrackingState expected_ = TrackingState::tracking;
    std::optional<Stretch> open_;
    Date openSeen_;
    std::vector<Stretch> stretches_;
};

class RandomLives : public testing::TestWithParam<unsigned> {};

TEST_P(RandomLives, recordExactlyWhatWasDone) {
    ExpectedLog log; // full disks are talked about
    RandomLife life(GetParam());
    life.live(7 * 86'400);
    EXPECT_GT(life.checked, 500u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomLives, testing::Range(1u, 13u));

} // namespace
} // namespace kestrio
