// `decide` over a grid of everything that can matter, against a second account of it. The code goes from a situation to
// its decision, in blocks where the first line wins; the account here goes the other way: each decision has the lines
// under which it is made, in any order, each line complete in itself.
#include "TindraCore/Decisions.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace tindra {
namespace {

const Date now{1'750'000'000};
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double aMoment = 1.0 / 1024; // the dates of these tests can tell it exactly

// --- The account ------------------------------------------------------------------------------------------------

/// What can be true of one fact in a line: a set of its values.
using Set = unsigned;
enum : Set { no = 1, yes = 2, either = 3 };
enum : Set { running = 1, frozen = 2, waking = 4, stopped = frozen | waking };
enum : Set { alwaysOn = 1, periodic = 2, waits = 4, freezable = periodic | waits, anyTier = 7 };
enum : Set { unprotected = 1, mayBeSlowed = 2, keepsCores = 4, guarded = mayBeSlowed | keepsCores, anyGuard = 7 };

/// A situation, each fact as the set of its one value; or a line, each fact as the set of the values it allows.
struct Facts {
    Set enabled;
    Set front;
    Set state;
    Set tier;
    Set protection;
    Set due;       // the time that counts in this state has run out: idle time, period, or wake
    Set slowing;   // the setting to use efficiency cores
    Set efficient; // already moved
    Set busy;      // its use of the processor has reached the threshold

    bool allows(const Facts& situation) const {
        return (enabled & situation.enabled) && (front & situation.front) && (state & situation.state) &&
               (tier & situation.tier) && (protection & situation.protection) && (due & situation.due) &&
               (slowing & situation.slowing) && (efficient & situation.efficient) && (busy & situation.busy);
    }
};

struct Line {
    const char* decision;
    Facts when;
};

// Decisions in the order in which they are carried out.
// clang-format off
const Line account[] = {
    //                      enabled front   state              tier       protection   due     slowing efficient busy
    {"thaw(optimizerOff)", {no,     either, stopped,           anyTier,   anyGuard,    either, either, either,   either}},
    {"thaw(opened)",       {yes,    yes,    stopped,           anyTier,   anyGuard,    either, either, either,   either}},
    {"thaw(alwaysOn)",     {yes,    no,     stopped,           alwaysOn,  anyGuard,    either, either, either,   either}},
    {"thaw(protected)",    {yes,    no,     stopped,           freezable, guarded,     either, either, either,   either}},
    {"wake",               {yes,    no,     frozen,            periodic,  unprotected, yes,    either, either,   either}},
    {"freeze",             {yes,    no,     running,           freezable, unprotected, yes,    either, either,   either}},
    {"refreeze",           {yes,    no,     waking,            freezable, unprotected, yes,    either, either,   either}},
    // Slowed when busy, unless it is frozen at once or kept on the performance cores.
    {"makeEfficient",      {yes,    no,     running,           freezable, unprotected, no,     yes,    no,       yes}},
    {"makeEfficient",      {yes,    no,     running,           alwaysOn,  unprotected, either, yes,    no,       yes}},
    {"makeEfficient",      {yes,    no,     running,           anyTier,   mayBeSlowed, either, yes,    no,       yes}},
    // Given back: when off, when opened, when kept on the performance cores, when the setting is off.
    {"restorePriority",    {no,     either, running | stopped, anyTier,   anyGuard,    either, either, yes,      either}},
    {"restorePriority",    {yes,    yes,    running | stopped, anyTier,   anyGuard,    either, either, yes,      either}},
    {"restorePriority",    {yes,    no,     running,           anyTier,   keepsCores,  either, either, yes,      either}},
    {"restorePriority",    {yes,    no,     running,           freezable, unprotected, no,     no,     yes,      either}},
    {"restorePriority",    {yes,    no,     running,           alwaysOn,  unprotected, either, no,     yes,      either}},
    {"restorePriority",    {yes,    no,     running,           anyTier,   mayBeSlowed, either, no,     yes,      either}},
};
// clang-format on

std::string accountOf(const Facts& situation, double wakeSeconds) {
    std::string texts;
    for (const auto& line : account) {
        if (!line.when.allows(situation))
            continue;
        std::string text = line.decision;
        if (text == "wake")
            text = toString(Decision(decision::Wake{now + wakeSeconds}));
        texts += (texts.empty() ? "" : ", ") + text;
    }
    return "[" + texts + "]";
}

// --- The grid -----------------------------------------------------------------------------------------------------

constexpr Set asSet(bool value) {
    return value ? yes : no;
}

/// A time that has run for so long, next to the limit.
struct Elapsed {
    const char* name;
    double beyondLimit; // seconds
    bool isDue;
};
const Elapsed elapsed[] = {
    {"just below", -aMoment, false}, {"exactly", 0, true}, {"just above", aMoment, true}, {"not a number", nan, false}};

/// A state with the dates that count in it.
struct Moment {
    std::string name;
    ControlState control;
    std::optional<Date> lastActive;
    std::optional<Date> launched;
    Set state;
    bool isDue;
};

Date longAgo() {
    return now - 1e6;
}

std::vector<Moment> runningMoments(double idleSeconds) {
    std::vector<Moment> moments{
        {"running, nothing known", control::Running{}, std::nullopt, std::nullopt, running, true}};
    for (const auto& time : elapsed) {
        const Date start = now - idleSeconds - time.beyondLimit;
        const auto add = [&](const char* name, std::optional<Date> lastActive, std::optional<Date> launched) {
            moments.push_back(
                {std::string(name) + time.name, control::Running{}, lastActive, launched, running, time.isDue});
        };
        add("running, last active ", start, std::nullopt);
        add("running, launched lately, last active ", start, now);
        add("running, launched long ago, last active ", start, longAgo());
        add("running, never active, launched ", std::nullopt, start);
    }
    return moments;
}

std::vector<Moment> stoppedMoments(double periodSeconds) {
    std::vector<Moment> moments;
    for (const auto& time : elapsed) {
        const auto add = [&](const char* name, ControlState control, Set state) {
            moments.push_back({std::string(name) + time.name, std::move(control), now, now, state, time.isDue});
        };
        const Date start = now - periodSeconds - time.beyondLimit;
        add("frozen, never woken, since ", control::Frozen{start, std::nullopt}, frozen);
        add("frozen long ago, last woken ", control::Frozen{longAgo(), start}, frozen);
        add("frozen only now, last woken ", control::Frozen{now, start}, frozen);
        add("waking, its end ", control::Waking{now - time.beyondLimit, longAgo()}, waking);
    }
    return moments;
}

struct Guard {
    std::optional<Protection> protection;
    Set kind;
};
const Guard guards[] = {
    {std::nullopt, unprotected},
    {Protection::frontmost, keepsCores},
    {Protection::playingAudio, keepsCores},
    {Protection::usingMicrophone, keepsCores},
    {Protection::showingVideo, keepsCores},
    {Protection::preventingSleep, mayBeSlowed},
    {Protection::recentlyLaunched, mayBeSlowed},
    {Protection::neverTouch, keepsCores},
    {Protection::essential, keepsCores},
};

struct Tier {
    AppTier tier;
    Set kind;
};
const Tier tiers[] = {{AppTier::alwaysOn, alwaysOn}, {AppTier::checkPeriodically, periodic}, {AppTier::canWait, waits}};

struct Load {
    double cpu;
    bool isBusy;
};

/// A setting of the knobs, with its limits as they must come out.
struct Knobs {
    const char* name;
    OptimizerTuning tuning;
    double idleSeconds;
    double threshold; // NaN where none can be reached
};
std::vector<Knobs> knobs() {
    OptimizerTuning balanced;
    OptimizerTuning focus;
    focus.mode = OptimizerMode::focus;
    focus.efficiencyThreshold = 0.5; // must not matter
    focus.wakeSeconds = 20.5;
    OptimizerTuning own{OptimizerMode::balanced, 0.25, 1000, 0.5, 7, true, 2.5};
    OptimizerTuning broken = balanced;
    broken.efficiencyThreshold = nan;
    return {{"balanced", balanced, 600, 0.1},
            {"focus", focus, 180, 0.02},
            {"own", own, 15, 2.5},
            {"a threshold that is not a number", broken, 600, nan}};
}

std::vector<Load> loads(double threshold) {
    if (std::isnan(threshold))
        return {{0, false}, {1e9, false}, {nan, false}};
    return {{0, false},
            {std::nextafter(threshold, 0), false},
            {threshold, true},
            {std::nextafter(threshold, 10), true},
            {nan, false}};
}

struct Grid {
    std::size_t situations = 0;
    std::size_t faults = 0;
    std::size_t linesUsed[std::size(account)] = {};

    void check(const Knobs& knob, const Moment& moment, const Tier& tier, const Guard& guard, const Load& load,
               unsigned switches) {
        const bool enabled = switches & 1;
        const bool front = switches & 2;
        const bool slowing = switches & 4;
        const bool efficient = switches & 8;
        const Facts situation{asSet(enabled),      asSet(front),   moment.state,     tier.kind,         guard.kind,
                              asSet(moment.isDue), asSet(slowing), asSet(efficient), asSet(load.isBusy)};
        auto tuning = knob.tuning;
        tuning.useEfficiencyCores = slowing;
        const AppObservation observation{"org.example.app", front,          moment.lastActive, moment.launched,
                                         guard.protection,  moment.control, efficient,         load.cpu};

        const auto decided = toString(decide(tier.tier, observation, tuning, enabled, now));
        const auto told = accountOf(situation, tuning.wakeSeconds);
        ++situations;
        for (std::size_t line = 0; line < std::size(account); ++line)
            linesUsed[line] += account[line].when.allows(situation);
        if (decided == told || ++faults > 10)
            return;
        ADD_FAILURE() << "decided " << decided << ", expected " << told << " for: " << knob.name << "; " << moment.name
                      << "; " << rawValue(tier.tier) << "; "
                      << (guard.protection ? rawValue(*guard.protection) : "no protection") << "; cpu " << load.cpu
                      << (enabled ? "; enabled" : "; off") << (front ? "; in front" : "")
                      << (slowing ? "; uses efficiency cores" : "") << (efficient ? "; efficient" : "");
    }
};

TEST(DecisionTable, decidesEverySituationAsTold) {
    Grid grid;
    for (const auto& knob : knobs()) {
        auto moments = runningMoments(knob.idleSeconds);
        for (auto& moment : stoppedMoments(knob.tuning.checkEveryMinutes * 60))
            moments.push_back(std::move(moment));
        for (const auto& moment : moments)
            for (const auto& tier : tiers)
                for (const auto& guard : guards)
                    for (const auto& load : loads(knob.threshold))
                        for (unsigned switches = 0; switches < 16; ++switches)
                            grid.check(knob, moment, tier, guard, load, switches);
    }
    EXPECT_EQ(grid.faults, 0u);
    EXPECT_EQ(grid.situations, (3 * 5 + 3) * 33u * 3 * 9 * 16) << "the grid has lost a dimension";
    for (std::size_t line = 0; line < std::size(account); ++line)
        EXPECT_GT(grid.linesUsed[line], 0u) << "line " << line << " of the account, " << account[line].decision;
}

TEST(DecisionTable, aLimitThatIsNotANumberIsNeverReached) {
    OptimizerTuning tuning;
    tuning.idleMinutes = nan;
    tuning.checkEveryMinutes = nan;
    for (const auto& moment : runningMoments(600))
        EXPECT_EQ(toString(decide(AppTier::canWait,
                                  {"org.example.app", false, moment.lastActive, moment.launched, std::nullopt,
                                   moment.control, false, 0},
                                  tuning, true, now)),
                  "[]")
            << moment.name;
    for (const auto& moment : stoppedMoments(900)) {
        if (moment.state == waking)
            continue;
        EXPECT_EQ(toString(decide(AppTier::checkPeriodically,
                                  {"org.example.app", false, now, now, std::nullopt, moment.control, false, 0}, tuning,
                                  true, now)),
                  "[]")
            << moment.name;
    }
}

TEST(DecisionTable, aClockThatIsNotANumberStopsNothing) {
    for (auto moments : {runningMoments(600), stoppedMoments(900)})
        for (const auto& moment : moments)
            for (const auto& tier : {AppTier::checkPeriodically, AppTier::canWait})
                EXPECT_EQ(toString(decide(tier,
                                          {"org.example.app", false, moment.lastActive, moment.launched, std::nullopt,
                                           moment.control, false, 0},
                                          {}, true, Date{nan})),
                          "[]")
                    << moment.name;
}

} // namespace
} // namespace tindra
