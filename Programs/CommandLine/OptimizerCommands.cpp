#include "Programs/CommandLine/OptimizerCommands.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/IdentityCatalogue.h"
#include "Kestrio/Shell/FreshUUID.h"
#include "Programs/CommandLine/ExitStatus.h"
#include "Programs/CommandLine/OptimizerText.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/Terminal.h"

#include <cmath>
#include <fmt/format.h>
#include <functional>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using namespace exitStatus;
using Failure = OptimizerLink::Failure;

constexpr auto noAnswer = "Kestrio does not answer";

int refuse(const std::string& why) {
    complain(why);
    return wrongUsage;
}

std::string quoted(const std::string& typed) {
    return "\"" + text::fittedToColumns(typed, 60) + "\"";
}

std::string applicationID(const std::string& typed) {
    return IdentityCatalogue::builtIn().identifierOfDesktopID(typed);
}

/// Asks the running agent's optimizer; says so where there is none.
int withOptimizer(const std::function<int(OptimizerLink&)>& work) {
    const auto agent = runningAgent(placesOrExit());
    auto* optimizer = agent ? agent->optimizer() : nullptr;
    if (!optimizer) {
        complain("Kestrio is not running here. Start it with: kestrio");
        return failed;
    }
    return work(*optimizer);
}

int told(const Failure& failure, const std::string& words) {
    if (failure) {
        complain(*failure);
        return failed;
    }
    print(words + "\n");
    return done;
}

int withStatus(const std::function<int(OptimizerLink&, const OptimizerStatus&)>& work) {
    return withOptimizer([&](OptimizerLink& optimizer) {
        const auto status = optimizer.status();
        return status ? work(optimizer, *status) : told(noAnswer, {});
    });
}

/// Changes what the person told the optimizer, all of it at once.
int changeRules(const std::function<std::optional<std::string>(tindra::OptimizerRules&)>& change,
                const std::string& words) {
    return withStatus([&](OptimizerLink& optimizer, const OptimizerStatus& status) {
        auto rules = status.rules;
        if (const auto mistake = change(rules))
            return refuse(*mistake);
        return told(optimizer.setRules(rules), words);
    });
}

/// An action on one application.
int act(const std::string& app, Failure (OptimizerLink::*action)(const std::string&), const std::string& outcome) {
    const auto id = applicationID(app);
    return withOptimizer([&](OptimizerLink& optimizer) { return told((optimizer.*action)(id), id + outcome); });
}

std::optional<std::string> noSuchSchedule(std::int64_t number, std::size_t count) {
    if (number >= 1 && static_cast<std::uint64_t>(number) <= count)
        return std::nullopt;
    return count == 0 ? std::string("there are no schedules")
                      : fmt::format("there is no schedule {}; they go from 1 to {}", number, count);
}

std::optional<std::string> addTo(tindra::AppTiers& tiers, const std::string& typed) {
    const auto equals = typed.rfind('=');
    const auto tier = equals == std::string::npos ? std::nullopt : typedTier(typed.substr(equals + 1));
    if (!tier || equals == 0)
        return fmt::format("{} is no APP=TIER; the tier is {}", quoted(typed), tierForms);
    tiers[applicationID(typed.substr(0, equals))] = *tier;
    return std::nullopt;
}

/// What is wrong with the schedule that was typed, or it.
std::variant<tindra::Schedule, std::string> made(const NewSchedule& typed) {
    const auto hours = typedHours(typed.hours);
    const auto days = typedDays(typed.days);
    if (!hours)
        return quoted(typed.hours) + " are no hours; try 22:00-06:00";
    if (!days)
        return fmt::format("{} are no days; try {}", quoted(typed.days), dayForms);
    tindra::Schedule schedule{freshUUID(), typed.name, true, {hours->start, hours->end, *days}, {}};
    for (const auto& app : typed.apps)
        if (const auto mistake = addTo(schedule.tiers, app))
            return *mistake;
    return schedule;
}

/// Within what the settings' page offers.
std::optional<std::string> mistakeIn(const tindra::OptimizerTuning& tuning) {
    for (const double number : {tuning.idleMinutes, tuning.focusIdleMinutes, tuning.checkEveryMinutes,
                                tuning.wakeSeconds, tuning.efficiencyThreshold})
        if (!std::isfinite(number) || number < 0)
            return "lengths and loads are numbers from 0";
    return std::nullopt;
}

template <class Value>
void change(Value& value, const std::optional<Value>& wanted) {
    value = wanted.value_or(value);
}

} // namespace

int switchOptimizer(bool on) {
    return withOptimizer([&](OptimizerLink& optimizer) {
        return told(optimizer.setEnabled(on), on ? "The optimizer is on." : "The optimizer is off; all was put back.");
    });
}

int optimizerStatus(bool json) {
    return withStatus([&](OptimizerLink&, const OptimizerStatus& status) {
        if (json)
            printJSON(toJSON(status));
        else
            print(optimizerStatusText(status, SystemClock().now(), Calendar::current(), outputStyle()));
        return done;
    });
}

int optimizerPlan(bool json) {
    return withStatus([&](OptimizerLink& optimizer, const OptimizerStatus& status) {
        const auto plan = optimizer.plan();
        if (!plan)
            return told(noAnswer, {});
        if (json)
            printJSON(toJSON(*plan));
        else
            print(optimizerPlanText(status, *plan, Calendar::current(), outputStyle()));
        return done;
    });
}

int tuneOptimizer(const TuningChanges& changes) {
    const auto mode = changes.mode ? tindra::optimizerMode(*changes.mode) : std::nullopt;
    if (changes.mode && !mode)
        return refuse(quoted(*changes.mode) + " is no mode; it must be balanced or focus");
    return withStatus([&](OptimizerLink& optimizer, const OptimizerStatus& status) {
        auto tuning = status.tuning;
        change(tuning.mode, mode);
        change(tuning.idleMinutes, changes.idleMinutes);
        change(tuning.focusIdleMinutes, changes.focusIdleMinutes);
        change(tuning.checkEveryMinutes, changes.checkEveryMinutes);
        change(tuning.wakeSeconds, changes.wakeSeconds);
        change(tuning.useEfficiencyCores, changes.useEfficiencyCores);
        change(tuning.efficiencyThreshold, changes.efficiencyThreshold);
        if (const auto mistake = mistakeIn(tuning))
            return refuse(*mistake);
        const auto failure = optimizer.setTuning(tuning);
        auto after = status;
        after.tuning = tuning;
        after.held.clear();
        auto words = optimizerStatusText(after, SystemClock().now(), Calendar::current(), outputStyle());
        words.pop_back(); // the line feed that follows anyway
        return told(failure, words);
    });
}

int listTiers(bool json) {
    return withStatus([&](OptimizerLink&, const OptimizerStatus& status) {
        const auto table = tierTable(status.rules, SystemClock().now(), Calendar::current(), outputStyle());
        if (json)
            printJSON(tiersJSON(status.rules));
        else if (table.empty())
            complain("you have put no application in a tier; all are always on");
        else
            print(table);
        return done;
    });
}

int setTier(const std::string& app, const std::string& typed) {
    const auto tier = typedTier(typed);
    if (!tier)
        return refuse(fmt::format("{} is no tier; it must be {}", quoted(typed), tierForms));
    const auto id = applicationID(app);
    return withOptimizer([&](OptimizerLink& optimizer) {
        return told(optimizer.setTier(id, tier), fmt::format("{}: {}.", id, label(*tier)));
    });
}

int resetTier(const std::string& app) {
    const auto id = applicationID(app);
    return withOptimizer([&](OptimizerLink& optimizer) {
        return told(optimizer.setTier(id, std::nullopt), id + ": always on, as nobody chose otherwise.");
    });
}

int setForNow(const std::string& app, const std::optional<std::string>& typed, double hours) {
    const auto id = applicationID(app);
    if (!typed)
        return withOptimizer(
            [&](OptimizerLink& optimizer) { return told(optimizer.removeOverride(id), id + ": as usual again."); });
    const auto tier = typedTier(*typed);
    if (!tier)
        return refuse(fmt::format("{} is no tier; it must be {}", quoted(*typed), tierForms));
    return withOptimizer([&](OptimizerLink& optimizer) {
        return told(optimizer.setOverride(id, *tier, hours),
                    fmt::format("{}: {} until {}.", id, text::lowercased(label(*tier)),
                                Calendar::current().localized(SystemClock().now() + Seconds(hours * 3600), "jmm")));
    });
}

int listSchedules(bool json) {
    return withStatus([&](OptimizerLink&, const OptimizerStatus& status) {
        if (json)
            printJSON(schedulesJSON(status.rules.schedules));
        else if (status.rules.schedules.empty())
            complain("there are no schedules");
        else
            print(scheduleTable(status.rules.schedules, outputStyle()));
        return done;
    });
}

int addSchedule(const NewSchedule& typed) {
    const auto schedule = made(typed);
    if (const auto* mistake = std::get_if<std::string>(&schedule))
        return refuse(*mistake);
    return changeRules(
        [&](tindra::OptimizerRules& rules) -> std::optional<std::string> {
            rules.schedules.push_back(std::get<tindra::Schedule>(schedule));
            return std::nullopt;
        },
        "Added.");
}

int removeSchedule(std::int64_t number) {
    return changeRules(
        [&](tindra::OptimizerRules& rules) {
            auto mistake = noSuchSchedule(number, rules.schedules.size());
            if (!mistake)
                rules.schedules.erase(rules.schedules.begin() + (number - 1));
            return mistake;
        },
        "Removed.");
}

int enableSchedule(std::int64_t number, bool enabled) {
    return changeRules(
        [&](tindra::OptimizerRules& rules) {
            auto mistake = noSuchSchedule(number, rules.schedules.size());
            if (!mistake)
                rules.schedules[static_cast<std::size_t>(number - 1)].isEnabled = enabled;
            return mistake;
        },
        enabled ? "Switched on." : "Switched off.");
}

int addNeverTouch(const std::string& app) {
    const auto id = applicationID(app);
    return changeRules(
        [&](tindra::OptimizerRules& rules) {
            rules.neverTouch.insert(id);
            return std::optional<std::string>();
        },
        id + " is never touched.");
}

int removeNeverTouch(const std::string& app) {
    const auto id = applicationID(app);
    return changeRules(
        [&](tindra::OptimizerRules& rules) {
            return rules.neverTouch.erase(id) > 0 ? std::nullopt : std::optional(id + " is not on the list");
        },
        id + " is off the list.");
}

int freezeApp(const std::string& app) {
    return act(app, &OptimizerLink::freeze, " is frozen until you open it.");
}

int slowApp(const std::string& app) {
    return act(app, &OptimizerLink::slow, " is slowed until you open it.");
}

int resumeApp(const std::string& app) {
    return act(app, &OptimizerLink::resume, " runs again.");
}

int quitApp(const std::string& app) {
    return act(app, &OptimizerLink::quit, " was asked to quit.");
}

int resumeAllApps() {
    return withOptimizer(
        [](OptimizerLink& optimizer) { return told(optimizer.resumeAll(), "Everything was put back."); });
}

} // namespace kestrio
