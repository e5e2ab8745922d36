// Random months of a machine, and what must hold after each step of them: what is stopped is what the optimizer says it
// holds and what the journal would give back, and it is never something that must not be stopped.
#include "Tests/Optimizer/OptimizerBench.h"

#include <gtest/gtest.h>
#include <random>

namespace kestrio {
namespace {

using tindra::AppTier;

class RandomMonth {
public:
    explicit RandomMonth(unsigned seed) : random_(seed) {
        for (const auto* id : {"com.apple.Terminal", "org.example.panel", OptimizerBench::own, "org.example.foreign"})
            identifiers_.emplace_back(id);
        for (int number = 0; number < 8; ++number)
            identifiers_.push_back("org.example.app" + std::to_string(number));
        bench_.machine.quit(OptimizerBench::chatPID);
        bench_.machine.quit(OptimizerBench::mailPID);
    }

    void live(int steps) {
        auto& optimizer = bench_.begin();
        tindra::OptimizerRules rules;
        for (const auto& id : identifiers_)
            rules.tiers[id] = chance(50) ? AppTier::canWait : AppTier::checkPeriodically;
        optimizer.setRules(rules);
        for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
            const auto what = happen();
            bench_.time.advance(Seconds(chance(30) ? number(0, 3000) : number(0, 20)));
            // Who comes to the front without a notice is noticed within a second, and its timer's tolerance.
            bench_.time.advance(Seconds(1.2));
            check(fmt::format("step {}: {}", step, what));
        }
        release();
    }

    std::size_t freezes = 0;
    std::size_t mostFrozen = 0;

private:
    FakeMachine& machine() { return bench_.machine; }
    Optimizer& optimizer() { return *bench_.optimizer; }

    int number(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }
    bool chance(int percent) { return number(1, 100) <= percent; }
    const std::string& anyIdentifier() {
        return identifiers_[static_cast<std::size_t>(number(0, static_cast<int>(identifiers_.size()) - 1))];
    }
    std::optional<pid_t> anyApplication() {
        const auto count = static_cast<int>(machine().applications.size());
        if (count == 0)
            return std::nullopt;
        return machine().applications[static_cast<std::size_t>(number(0, count - 1))].pid;
    }
    void toggle(std::set<std::string>& set) {
        const auto& id = anyIdentifier();
        if (set.erase(id) == 0)
            set.insert(id);
    }

    std::string happen() {
        const auto pid = anyApplication();
        switch (number(0, 21)) {
        case 0:
        case 1:
        case 2: return launch();
        case 3: return pid ? quit(*pid) : "";
        case 4: return pid ? relaunch(*pid) : "";
        case 5:
        case 6: return pid ? (machine().activate(*pid), "activated") : "";
        case 7: return (machine().front = pid, "in front without a notice");
        case 8: return worstInstant();
        case 9: return (toggle(bench_.media.playing), "sound");
        case 10: return (toggle(bench_.media.recording), "recording");
        case 11: return (toggle(bench_.media.keepAwake), "a download");
        case 12: return failures();
        case 13: return (bench_.time.jumpWallClock(Seconds(number(-5000, 5000))), "the clock jumps");
        case 14: return (bench_.time.sleepMachine(Seconds(number(0, 50'000))), "sleep");
        case 15: return pid ? (optimizer().freezeNow(machine().application(*pid)), "frozen by hand") : "";
        case 16: return pid ? (optimizer().moveToEfficiencyCores(machine().application(*pid)), "slowed by hand") : "";
        case 17: return (optimizer().resume(anyIdentifier()), "resumed by hand");
        case 18: return (optimizer().setOverride(AppTier::alwaysOn, anyIdentifier(), "x", 0.5), "an override");
        case 19: return (optimizer().setEnabled(chance(80)), "switched");
        case 20: return refuse();
        default: return sample();
        }
    }

    std::string launch() {
        if (machine().applications.size() > 14)
            return "";
        const auto& id = anyIdentifier();
        const pid_t pid = pids_ += 10;
        machine().launch(id, pid, number(0, 3), chance(80) ? std::optional(bench_.time.now()) : std::nullopt);
        if (id == "org.example.foreign")
            machine().unstoppable.insert({pid, pid + 1, pid + 2, pid + 3});
        if (chance(50))
            machine().announce(WorkspaceNotice::launched);
        return "launched " + id;
    }
    std::string quit(pid_t pid) {
        if (chance(30)) { // the window alone, or the main process alone: the rest lives on
            machine().loseWindow(pid);
            if (chance(50))
                machine().endProcess(pid);
        } else {
            machine().quit(pid);
        }
        if (chance(70))
            machine().announce(WorkspaceNotice::terminated);
        // The window system may tell of nothing for a while.
        if (chance(10)) {
            auto applications = std::exchange(machine().applications, {});
            bench_.time.advance(Seconds(number(0, 10)));
            machine().applications = std::move(applications);
        }
        // What only lost its window is given back with the next pass.
        bench_.time.advance(Seconds(6));
        return "quit";
    }
    std::string relaunch(pid_t pid) {
        const auto id = *machine().application(pid).bundleIdentifier;
        machine().quit(pid);
        machine().launch(id, pids_ += 10, 1, bench_.time.now());
        if (id == "org.example.foreign")
            machine().unstoppable.insert({pids_, pids_ + 1});
        return "relaunched " + id;
    }
    std::string worstInstant() {
        machine().beforeStop = [this] {
            if (const auto pid = anyApplication())
                machine().activate(*pid);
        };
        bench_.time.advance(Seconds(number(0, 1000)));
        machine().beforeStop = [] {};
        return "the worst instant";
    }
    std::string failures() {
        if (chance(50)) {
            machine().isJournalWritable = chance(80);
            return "journal";
        }
        if (const auto pid = anyApplication();
            pid && machine().application(*pid).bundleIdentifier != "org.example.foreign")
            chance(50) ? (void)machine().unstoppable.insert(*pid) : (void)machine().unstoppable.erase(*pid);
        if (const auto pid = anyApplication())
            chance(50) ? (void)machine().unslowable.insert(*pid) : (void)machine().unslowable.erase(*pid);
        return "signals";
    }
    std::string refuse() {
        const auto& id = anyIdentifier();
        if (bench_.refusals.erase(id) == 0)
            bench_.refusals[id] = "it must not be.";
        // What is frozen is given back with the next pass.
        bench_.time.advance(Seconds(6));
        return "refusal of " + id;
    }
    std::string sample() {
        std::vector<AppProcesses> apps;
        for (const auto& id : identifiers_)
            apps.push_back({.id = id,
                            .name = id,
                            .appPath = {},
                            .bundleID = id,
                            .cpuCores = number(0, 3) * 0.1,
                            .footprint = 1000,
                            .processes = {}});
        bench_.sample(apps, chance(90));
        return "a sample";
    }

    static bool contains(const std::vector<ProcessKey>& keys, const ProcessKey& key) {
        return std::ranges::find(keys, key) != keys.end();
    }

    void check(const std::string& when) {
        SCOPED_TRACE(when);
        std::vector<ProcessKey> frozen;
        std::vector<ProcessKey> slowed;
        for (const auto& [id, app] : optimizer().managed().value()) {
            EXPECT_EQ(id, app.id);
            EXPECT_EQ(app.isFrozen(), !app.frozen.empty());
            frozen.insert(frozen.end(), app.frozen.begin(), app.frozen.end());
            slowed.insert(slowed.end(), app.slowed.begin(), app.slowed.end());
        }
        mostFrozen = std::max(mostFrozen, optimizer().frozenCount());
        for (const auto& [pid, process] : machine().table) {
            EXPECT_EQ(process.isStopped, contains(frozen, process.key)) << pid;
            EXPECT_EQ(process.isSlowed, contains(slowed, process.key)) << pid;
            if (process.isStopped) {
                EXPECT_TRUE(contains(machine().journalFrozen, process.key)) << pid;
                checkMayBeStopped(process);
            }
            if (process.isSlowed) {
                EXPECT_TRUE(contains(machine().journalSlowed, process.key)) << pid;
            }
        }
        if (machine().isJournalWritable && optimizer().isEnabled().value() && !machine().applications.empty()) {
            optimizer().tick(); // a journal that could not be written is made up for
            EXPECT_EQ(machine().journalFrozen.size(), count(&ManagedApp::frozen));
            EXPECT_EQ(machine().journalSlowed.size(), count(&ManagedApp::slowed));
        }
        freezes += static_cast<std::size_t>(
            std::ranges::count_if(bench_.events, [](const auto& event) { return event.starts_with("freeze"); }));
        bench_.forget();
    }

    std::size_t count(std::vector<ProcessKey> ManagedApp::*keys) {
        std::size_t sum = 0;
        for (const auto& [id, app] : optimizer().managed().value())
            sum += (app.*keys).size();
        return sum;
    }

    void checkMayBeStopped(const FakeMachine::Process& process) {
        const auto application = machine().application(process.main);
        ASSERT_TRUE(application.bundleIdentifier) << "held without being known";
        EXPECT_FALSE(optimizer().isLocked(*application.bundleIdentifier));
        EXPECT_NE(*application.bundleIdentifier, "org.example.foreign");
        EXPECT_FALSE(bench_.refusals.contains(*application.bundleIdentifier));
        EXPECT_TRUE(optimizer().isEnabled().value());
        EXPECT_NE(process.main, machine().front);
    }

    void release() {
        switch (number(0, 2)) {
        case 0: optimizer().releaseAll(); break;
        case 1: optimizer().setEnabled(false); break;
        default: bench_.optimizer.reset(); break;
        }
        EXPECT_TRUE(machine().stopped().empty());
        EXPECT_TRUE(machine().slowed().empty());
    }

    std::mt19937 random_;
    OptimizerBench bench_;
    std::vector<std::string> identifiers_;
    pid_t pids_ = 1000;
};

TEST(OptimizerProperties, overManyMonthsWhatIsStoppedIsWhatIsHeldAndNothingElse) {
    std::size_t freezes = 0;
    std::size_t mostFrozen = 0;
    for (unsigned seed = 1; seed <= 12 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomMonth month(seed);
        month.live(1500);
        freezes += month.freezes;
        mostFrozen = std::max(mostFrozen, month.mostFrozen);
    }
    // The months were worth living.
    EXPECT_GT(freezes, 100U);
    EXPECT_GT(mostFrozen, 3U);
}

} // namespace
} // namespace kestrio
