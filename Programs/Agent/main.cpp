#include "Kestrio/Shell/AppInfo.h"
#include "Programs/Agent/Agent.h"
#include "Programs/StandardStreams.h"

#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
    kestrio::openStandardStreams();
    CLI::App app("Kestrio records what you do, on this computer and for you alone.", "kestrio");
    kestrio::AgentOptions options;
    app.add_flag("--login", options.isLoginItem, "Started by the login: stay quiet, open no window");
    app.set_version_flag("--version", "Kestrio " + kestrio::AppInfo::version());
    app.footer("The agent runs until it is told to end (SIGTERM). Talk to it with kestrioctl.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        std::cerr << "kestrio: " << error.what() << ". Try kestrio --help.\n";
        return 2;
    }
    return kestrio::runAgent(options);
}
