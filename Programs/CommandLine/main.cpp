#include "Kestrio/Shell/AppInfo.h"
#include "Programs/CommandLine/AddCommand.h"
#include "Programs/CommandLine/ClassificationCommands.h"
#include "Programs/CommandLine/Commands.h"
#include "Programs/CommandLine/MachineCommands.h"
#include "Programs/CommandLine/MonitorCommand.h"
#include "Programs/CommandLine/OptimizerCommandLine.h"
#include "Programs/CommandLine/ReportCommand.h"
#include "Programs/CommandLine/ResourceLogCommands.h"
#include "Programs/CommandLine/SessionFiles.h"
#include "Programs/StandardStreams.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <sys/stat.h>

namespace {

using kestrio::commandLine::add;

/// Where the options and arguments of the commands about categories and projects end up.
struct ClassificationArguments {
    bool json = false;
    bool everything = false;
    bool preview = false;
    kestrio::CategoryTarget target;
    std::string category;
    kestrio::NewProjectRule rule;
    std::int64_t number = 0;
    std::int64_t to = 0;
    kestrio::ExplainOptions explained;
};

void addCategories(CLI::App& app, ClassificationArguments& arguments, int& result) {
    auto* categories = app.add_subcommand("categories", "What counts as work, learning, entertainment and so on");
    categories->require_subcommand(1);
    const auto withTarget = [&arguments](CLI::App& command) {
        command.add_option("--app", arguments.target.app, "An application: its identifier, or its name on this host");
        command.add_option("--site", arguments.target.site, "A site with all below it: a host, or a page's address");
        command.add_flag("--preview", arguments.preview, "Only count the past sessions that would change");
    };
    add(
        *categories, "list", "The categories that you set", result,
        [&] { return kestrio::listCategories(arguments.everything, arguments.json); },
        [&](CLI::App& command) {
            command.add_flag("--all", arguments.everything, "The built-in ones too");
            command.add_flag("--json", arguments.json, "Data for scripts");
        });
    add(
        *categories, "set", "Set the category of an application or a site, for all that was ever recorded", result,
        [&] { return kestrio::setCategory(arguments.target, arguments.category, arguments.preview); },
        [&](CLI::App& command) {
            command
                .add_option("category", arguments.category,
                            "development, work, learning, communication, entertainment, social or other")
                ->required();
            withTarget(command);
        });
    add(
        *categories, "reset", "Back to the built-in category", result,
        [&] { return kestrio::resetCategory(arguments.target, arguments.preview); }, withTarget);
}

void addProjects(CLI::App& app, ClassificationArguments& arguments, int& result) {
    auto* projects = app.add_subcommand("projects", "Your rules for what belongs to which project");
    projects->require_subcommand(1);
    const auto withNumber = [&arguments](CLI::App& command) {
        command.add_option("number", arguments.number, "The rule's number in the list")->required();
    };
    add(
        *projects, "list", "Your rules; the first that matches decides", result,
        [&] { return kestrio::listProjects(arguments.json); },
        [&](CLI::App& command) { command.add_flag("--json", arguments.json, "Data for scripts"); });
    add(
        *projects, "add", "Put what holds a keyword into a project, for all that was ever recorded", result,
        [&] { return kestrio::addProject(arguments.rule); },
        [&](CLI::App& command) {
            auto& rule = arguments.rule;
            command.add_option("keyword", rule.keyword, "Part of a title, an address or a detected project")
                ->required();
            command.add_option("project", rule.project, "The project's name");
            command.add_flag("--ignore", rule.ignore, "No project, whatever was detected");
            command.add_option("--at", rule.at, "The new rule's number; the last unless said");
            command.add_flag("--preview", rule.preview, "Only count the past sessions that would change");
        });
    add(
        *projects, "move", "Give a rule another place in the list", result,
        [&] { return kestrio::moveProject(arguments.number, arguments.to); },
        [&](CLI::App& command) {
            withNumber(command);
            command.add_option("to", arguments.to, "Its new number")->required();
        });
    add(
        *projects, "remove", "Take a rule out of the list", result,
        [&] { return kestrio::removeProject(arguments.number); }, withNumber);
}

void addExplain(CLI::App& app, ClassificationArguments& arguments, int& result) {
    add(
        app, "explain", "Why something has its category and its project", result,
        [&] { return kestrio::explain(arguments.explained); },
        [&](CLI::App& command) {
            auto& explained = arguments.explained;
            command.add_option("--app", explained.app, "The application: its identifier, or its name on this host")
                ->required();
            command.add_option("--name", explained.name, "What the desktop calls it; looked up unless said");
            command.add_option("--title", explained.title, "The title of its window or tab");
            command.add_option("--url", explained.url, "The address of the page");
            command.add_flag("--json", explained.json, "Data for scripts");
        });
}

/// What was wrong with the words on the command line, and where to read on.
std::string complaint(const CLI::App& app, const CLI::ParseError& error) {
    std::string command = app.get_name();
    const auto* at = &app;
    while (!at->get_subcommands().empty()) {
        at = at->get_subcommands().front();
        command += " " + at->get_name();
    }
    std::string problem = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        problem = problem.substr(0, problem.find(':')) + " wants a value";
    else if (problem == "A subcommand is required")
        problem = "which command? There are several";
    return problem + ". Try " + command + " --help.";
}

void addReport(CLI::App& app, kestrio::ReportOptions& options, int& status) {
    add(
        app, "report", "What you did on a day, in a week or a month", status, [&] { return kestrio::report(options); },
        [&](CLI::App& command) {
            command.add_option("--day", options.day, "The day of a moment: today (so unless said), 2026-11-21");
            command.add_option("--week", options.week, "The week of a moment");
            command.add_option("--month", options.month, "The month of a moment");
            command.add_option("--from", options.from, "Beginning of any other range: today unless said");
            command.add_option("--to", options.to, "Its end: now unless said");
            command.add_option("--section", options.section,
                               "overview (so unless said), apps, websites, youtube, projects or timeline");
            command.add_flag("--json", options.json, "The whole report as data for scripts");
        });
}

/// Where the options of the commands about the resource log end up.
struct LogArguments {
    bool json = false;
    kestrio::LogExportOptions exported;
    kestrio::LogReportOptions report;
    kestrio::LogEventsOptions events;
    kestrio::LogSecondsOptions seconds;
    std::optional<std::string> at;
};

void addLog(CLI::App& app, LogArguments& arguments, int& status) {
    auto* log = app.add_subcommand("log", "How the machine performed: what the resource log holds");
    log->require_subcommand(1);
    add(
        *log, "status", "How much is logged, since when, and at what pace", status,
        [&] { return kestrio::logStatus(arguments.json); },
        [&](CLI::App& command) { command.add_flag("--json", arguments.json, "Data for scripts"); });
    add(
        *log, "export", "Write the log into a new folder: tables, a report, data and a copy of the database", status,
        [&] { return kestrio::logExport(arguments.exported); },
        [&](CLI::App& command) {
            command.add_option("folder", arguments.exported.folder, "Where the new folder goes")->required();
            command.add_option("--from", arguments.exported.from, "Beginning of a range: today unless said");
            command.add_option("--to", arguments.exported.to, "Its end: now unless said");
            command.add_flag("--all", arguments.exported.all, "Everything (so unless a range is said)");
        });
    add(
        *log, "report", "A summary of a day, a week, a month or another range, in Markdown", status,
        [&] { return kestrio::logReport(arguments.report); },
        [&](CLI::App& command) {
            command.add_option("--day", arguments.report.day, "The day of a moment: today (so unless said)");
            command.add_option("--week", arguments.report.week, "The week of a moment");
            command.add_option("--month", arguments.report.month, "The month of a moment");
            command.add_option("--from", arguments.report.from, "Beginning of any other range: today unless said");
            command.add_option("--to", arguments.report.to, "Its end: now unless said");
            command.add_option("-o,--output", arguments.report.output, "A file, or - for standard output");
        });
    add(
        *log, "events", "What happened: slowdowns, applications that came and went, sleep, heat", status,
        [&] { return kestrio::logEvents(arguments.events); },
        [&](CLI::App& command) {
            command.add_option("--from", arguments.events.from, "Beginning: today unless said");
            command.add_option("--to", arguments.events.to, "End: now unless said");
            command.add_option("--limit", arguments.events.limit, "At most so many, the latest: 200 unless said");
            command.add_flag("--json", arguments.events.json, "Data for scripts");
        });
    add(
        *log, "seconds", "The detailed readings of a range", status,
        [&] { return kestrio::logSeconds(arguments.seconds); },
        [&](CLI::App& command) {
            command.add_option("--from", arguments.seconds.from, "Beginning")->required();
            command.add_option("--to", arguments.seconds.to, "End: now unless said");
            command.add_flag("--csv", arguments.seconds.csv, "As a table for spreadsheets");
            command.add_flag("--json", arguments.seconds.json, "Data for scripts");
        });
}

} // namespace

int main(int argc, char** argv) {
    kestrio::openStandardStreams();
    umask(077);
    CLI::App app("Kestrio from a terminal: what you did, what it does now, and its settings.", "kestrioctl");
    app.set_version_flag("--version", "Kestrio " + kestrio::AppInfo::version());
    app.require_subcommand(1);
    app.footer("Everything is read and written below KESTRIO_HOME when that is set.");
    int result = 0;

    add(app, "record", "Record in the foreground, until Ctrl-C; with or without a screen", result, kestrio::record);

    bool json = false;
    const auto withJSON = [&json](CLI::App& command) { command.add_flag("--json", json, "Data for scripts"); };
    add(
        app, "watch", "A line for each change, until Kestrio ends or Ctrl-C", result,
        [&] { return kestrio::watch(json); }, withJSON);
    add(
        app, "status", "What Kestrio is doing now", result, [&] { return kestrio::status(json); }, withJSON);
    add(
        app, "doctor", "What each reader of the system answers, what is missing, and the remedy", result,
        [&] { return kestrio::doctor(json); }, withJSON);

    bool install = false;
    bool remove = false;
    add(
        app, "browsers", "Which browsers tell their tabs, and what is left to do", result,
        [&] {
            return install  ? kestrio::installNativeHosts()
                   : remove ? kestrio::removeNativeHosts()
                            : kestrio::browsers(json);
        },
        [&](CLI::App& command) {
            withJSON(command);
            auto* letThem = command.add_flag("--install", install, "Let browsers start kestrio-tabs for the extension");
            command.add_flag("--remove", remove, "Let none of them do so any more")->excludes(letThem);
        });

    kestrio::SessionsOptions range;
    add(
        app, "sessions", "What was recorded, today or in a range", result, [&] { return kestrio::sessions(range); },
        [&](CLI::App& command) {
            command.add_option("--from", range.from,
                               "Beginning: today (so unless said), yesterday, 14:30, 2026-11-21, 2h ago");
            command.add_option("--to", range.to, "End: now unless said");
            command.add_flag("--json", range.json, "Data for scripts");
        });

    kestrio::TopOptions topOptions;
    add(
        app, "top", "The applications, and what each of them uses with all its processes", result,
        [&] { return kestrio::top(topOptions); },
        [&](CLI::App& command) {
            command.add_option("--by", topOptions.by, "What to order by: cpu (so unless said) or memory");
            command.add_flag("--once", topOptions.once, "One table, and done");
            command.add_flag("--json", topOptions.json, "Data for scripts");
        });
    add(
        app, "machine", "The cores, the memory and the drives, and what cannot be told here", result,
        [&] { return kestrio::machine(json); }, withJSON);
    add(
        app, "monitor", "How the machine feels now, what to know about it, and who uses it most", result,
        [&] { return kestrio::monitor(json); }, withJSON);
    add(
        app, "disk-test", "Measure how fast the drive is, with a file of 256 MB that is gone afterwards", result,
        [&] { return kestrio::diskTest(json); }, withJSON);
    kestrio::ExportOptions exported;
    add(
        app, "export", "Write sessions to a CSV file", result, [&] { return kestrio::exportSessions(exported); },
        [&](CLI::App& command) {
            command.add_option("--range", exported.range, "today, week, month (the last 30 days) or all (unless said)");
            command.add_option("-o,--output", exported.output, "The file, or - for standard output")->required();
        });

    std::vector<std::string> imported;
    add(
        app, "import", "Bring back sessions from CSV files that Kestrio (or Timeweft) exported", result,
        [&] { return kestrio::importSessions(imported); },
        [&](CLI::App& command) {
            command.add_option("files", imported, "The files, or - for standard input")->required();
        });
    kestrio::ReportOptions reportOptions;
    addReport(app, reportOptions, result);

    LogArguments logArguments;
    addLog(app, logArguments, result);
    add(
        app, "why", "Why the machine was slow at a moment, as far as the resource log can tell", result,
        [&] { return kestrio::why(logArguments.at); },
        [&](CLI::App& command) {
            command.add_option("--at", logArguments.at, "The moment: now (so unless said), 14:30, 2h ago");
        });

    std::optional<std::string> length;
    add(
        app, "pause", "Stop recording for a while, or until you resume", result, [&] { return kestrio::pause(length); },
        [&](CLI::App& command) { command.add_option("length", length, "30m, 1h, 1h30m or until-tomorrow"); });
    add(app, "resume", "Go on recording", result, kestrio::resume);

    std::optional<std::string> page;
    add(
        app, "open", "Show the dashboard", result, [&] { return kestrio::openDashboard(page); },
        [&](CLI::App& command) {
            command.add_option("page", page,
                               "overview, timeline, apps, websites, youtube or projects; the one that was open last "
                               "unless said");
        });

    auto* settings = app.add_subcommand("settings", "Read and change the settings");
    settings->require_subcommand(1);
    std::string key;
    std::string value;
    const auto withKey = [&](CLI::App& command) { command.add_option("key", key, "The setting's name")->required(); };
    add(
        *settings, "list", "All settings with their values", result, [&] { return kestrio::listSettings(json); },
        withJSON);
    add(
        *settings, "get", "One value", result, [&] { return kestrio::getSetting(key); }, withKey);
    add(
        *settings, "set", "Change one value", result, [&] { return kestrio::setSetting(key, value); },
        [&](CLI::App& command) {
            withKey(command);
            command.add_option("value", value, "The new value")->required();
        });
    add(
        *settings, "reset", "Back to the built-in value", result, [&] { return kestrio::resetSetting(key); }, withKey);

    ClassificationArguments classification;
    addCategories(app, classification, result);
    addProjects(app, classification, result);
    addExplain(app, classification, result);

    kestrio::OptimizerArguments optimizerArguments;
    kestrio::addOptimizer(app, optimizerArguments, result);

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        std::cerr << "kestrioctl: " << complaint(app, error) << "\n";
        return 2;
    }
    return result;
}
