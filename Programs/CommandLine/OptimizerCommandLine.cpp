#include "Programs/CommandLine/OptimizerCommandLine.h"

#include "Programs/CommandLine/AddCommand.h"
#include "Programs/CommandLine/OptimizerText.h"

namespace kestrio {
namespace {

using Configure = std::function<void(CLI::App&)>;

Configure withJSON(OptimizerArguments& arguments) {
    return [&arguments](CLI::App& command) { command.add_flag("--json", arguments.json, "Data for scripts"); };
}

Configure withApp(OptimizerArguments& arguments) {
    return [&arguments](CLI::App& command) {
        command.add_option("app", arguments.app, "The application: its identifier, or its name on this host")
            ->required();
    };
}

CLI::App& group(CLI::App& to, const char* name, const char* about) {
    auto* added = to.add_subcommand(name, about);
    added->require_subcommand(1);
    return *added;
}

void addTuning(CLI::App& optimizer, OptimizerArguments& arguments, int& status) {
    commandLine::add(
        optimizer, "tune", "How the optimizer goes about it", status, [&] { return tuneOptimizer(arguments.tuning); },
        [&](CLI::App& command) {
            auto& tuning = arguments.tuning;
            command.add_option("--mode", tuning.mode, "balanced or focus");
            command.add_option("--idle", tuning.idleMinutes, "Minutes in the background before freezing");
            command.add_option("--focus-idle", tuning.focusIdleMinutes, "The same in focus mode");
            command.add_option("--check-every", tuning.checkEveryMinutes, "Minutes between two checks for messages");
            command.add_option("--wake", tuning.wakeSeconds, "Seconds that such a check lasts");
            command.add_option("--efficiency-cores", tuning.useEfficiencyCores,
                               "Whether busy applications in the background are slowed: true or false");
            command.add_option("--threshold", tuning.efficiencyThreshold, "From how much of a core on");
        });
}

void addTiers(CLI::App& optimizer, OptimizerArguments& arguments, int& status) {
    auto& tiers = group(optimizer, "tiers", "What must always run, what is checked now and then, what can wait");
    commandLine::add(
        tiers, "list", "What you told about each application", status, [&] { return listTiers(arguments.json); },
        withJSON(arguments));
    commandLine::add(
        tiers, "set", "Put an application in a tier", status, [&] { return setTier(arguments.app, arguments.tier); },
        [&](CLI::App& command) {
            withApp(arguments)(command);
            command.add_option("tier", arguments.tier, tierForms)->required();
        });
    commandLine::add(
        tiers, "reset", "Say nothing about it any more", status, [&] { return resetTier(arguments.app); },
        withApp(arguments));
    commandLine::add(
        optimizer, "for-now", "A rule for the next hours; without one it ends", status,
        [&] { return setForNow(arguments.app, arguments.tierForNow, arguments.hours); },
        [&](CLI::App& command) {
            withApp(arguments)(command);
            auto* tier = command.add_option("tier", arguments.tierForNow, tierForms);
            auto* hours = command.add_option("hours", arguments.hours, "For how many hours");
            tier->needs(hours);
        });
}

void addSchedules(CLI::App& optimizer, OptimizerArguments& arguments, int& status) {
    auto& schedules = group(optimizer, "schedules", "Other tiers in certain hours");
    const auto withNumber = [&arguments](CLI::App& command) {
        command.add_option("number", arguments.number, "The schedule's number in the list")->required();
    };
    commandLine::add(
        schedules, "list", "The first that is open and names the application decides", status,
        [&] { return listSchedules(arguments.json); }, withJSON(arguments));
    commandLine::add(
        schedules, "add", "A new one, at the end of the list", status, [&] { return addSchedule(arguments.schedule); },
        [&](CLI::App& command) {
            command.add_option("name", arguments.schedule.name, "What you call it")->required();
            command.add_option("hours", arguments.schedule.hours, "From when to when: 22:00-06:00")->required();
            command.add_option("apps", arguments.schedule.apps, "Each as APP=TIER")->required();
            command.add_option("--days", arguments.schedule.days, dayForms);
        });
    commandLine::add(
        schedules, "remove", "Take one out", status, [&] { return removeSchedule(arguments.number); }, withNumber);
    commandLine::add(
        schedules, "on", "Switch one on", status, [&] { return enableSchedule(arguments.number, true); }, withNumber);
    commandLine::add(
        schedules, "off", "Keep one, but switched off", status, [&] { return enableSchedule(arguments.number, false); },
        withNumber);
}

void addNeverTouch(CLI::App& optimizer, OptimizerArguments& arguments, int& status) {
    auto& list = group(optimizer, "never-touch", "Applications that are left alone whatever else is said");
    commandLine::add(
        list, "add", "Put one on the list", status, [&] { return kestrio::addNeverTouch(arguments.app); },
        withApp(arguments));
    commandLine::add(
        list, "remove", "Take one off it", status, [&] { return removeNeverTouch(arguments.app); }, withApp(arguments));
}

void addActions(CLI::App& optimizer, OptimizerArguments& arguments, int& status) {
    const auto add = [&](const char* name, const char* about, int (*action)(const std::string&)) {
        commandLine::add(
            optimizer, name, about, status, [&arguments, action] { return action(arguments.app); }, withApp(arguments));
    };
    add("freeze", "Freeze an application until you open it", freezeApp);
    add("slow", "Move it to the slow cores until you open it", slowApp);
    add("resume", "Give it back", resumeApp);
    add("quit", "Ask it to quit", quitApp);
    commandLine::add(optimizer, "resume-all", "Give everything back", status, resumeAllApps);
}

} // namespace

void addOptimizer(CLI::App& app, OptimizerArguments& arguments, int& status) {
    auto& optimizer = group(app, "optimizer", "What is frozen and slowed while you do not use it");
    commandLine::add(optimizer, "on", "Switch it on", status, [] { return switchOptimizer(true); });
    commandLine::add(optimizer, "off", "Switch it off, and give everything back", status,
                     [] { return switchOptimizer(false); });
    commandLine::add(
        optimizer, "status", "What it holds, and how it is set", status,
        [&] { return optimizerStatus(arguments.json); }, withJSON(arguments));
    commandLine::add(
        optimizer, "plan", "What it would do now with each application, and why not", status,
        [&] { return optimizerPlan(arguments.json); }, withJSON(arguments));
    addTuning(optimizer, arguments, status);
    addTiers(optimizer, arguments, status);
    addSchedules(optimizer, arguments, status);
    addNeverTouch(optimizer, arguments, status);
    addActions(optimizer, arguments, status);
}

} // namespace kestrio
