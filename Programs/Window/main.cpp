#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Programs/StandardStreams.h"
#include "Programs/Window/WindowWiring.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <sys/stat.h>

int main(int argc, char** argv) {
    using namespace kestrio;
    openStandardStreams();
    umask(077); // whatever is made here is nobody else's business
    const auto places = locations(processEnvironment);
    if (!places) {
        std::cerr << "kestrio-window: neither KESTRIO_HOME nor HOME is set to a folder.\n";
        return 1;
    }
    WindowApplication application(argc, argv);
    const WindowWiring wiring(application.queue(), *places, BusConnection::address(BusConnection::Bus::session));
    Windows windows(wiring.parts());
    windows.showDashboard(std::nullopt);
    return application.run();
}
