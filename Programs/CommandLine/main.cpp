#include "Kestrio/Shell/AppInfo.h"
#include "Programs/CommandLine/Commands.h"
#include "Programs/StandardStreams.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <sys/stat.h>

namespace {

/// A command without arguments of its own beyond what `configure` adds; `run` gives the exit status.
void add(CLI::App& to, const char* name, const char* about, int& status, std::function<int()> run,
         const std::function<void(CLI::App&)>& configure = {}) {
    auto* command = to.add_subcommand(name, about);
    if (configure)
        configure(*command);
    command->callback([&status, run = std::move(run)] { status = run(); });
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

    std::optional<std::string> length;
    add(
        app, "pause", "Stop recording for a while, or until you resume", result, [&] { return kestrio::pause(length); },
        [&](CLI::App& command) { command.add_option("length", length, "30m, 1h, 1h30m or until-tomorrow"); });
    add(app, "resume", "Go on recording", result, kestrio::resume);

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
