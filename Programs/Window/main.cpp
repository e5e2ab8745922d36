#include "Kestrio/Link/WindowClient.h"
#include "Kestrio/Link/WindowService.h"
#include "Kestrio/Platform/Linux/BusAddress.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Programs/StandardStreams.h"
#include "Programs/Window/CommandLine.h"
#include "Programs/Window/WindowWiring.h"

#include <iostream>
#include <sys/stat.h>

namespace kestrio {
namespace {

std::optional<std::string> sessionBus() {
    const auto said = BusConnection::address(BusConnection::Bus::session);
    return said ? answeringBus(*said, BusConnection::callDeadline) : std::nullopt;
}

/// The desktop's leave to take the front, as whoever started this process passed it on.
std::string activationToken() {
    return processEnvironment("XDG_ACTIVATION_TOKEN").value_or("");
}

/// Whether another process has the windows, and took the request.
bool handOver(const std::string& busAddress, const WindowRequest& request) {
    auto others = WindowClient::connect(busAddress);
    return others && others->isRunning() && others->show(request, activationToken());
}

int run(int count, char** arguments, const WindowRequest& request) {
    umask(077); // whatever is made here is nobody else's business
    const auto places = locations(processEnvironment);
    if (!places) {
        std::cerr << "kestrio-window: neither KESTRIO_HOME nor HOME is set to a folder.\n";
        return 1;
    }
    const auto bus = sessionBus();
    if (bus && handOver(*bus, request))
        return 0;

    WindowApplication application(count, arguments);
    WindowWiring wiring(application.queue(), *places, bus);
    Windows windows(wiring.parts());
    const auto show = [&](const WindowRequest& asked, const std::string& token) { windows.show(asked, token); };
    const auto quit = [&] { application.quit(); };
    const auto service = bus ? WindowService::offer(*bus, application.queue(), show, quit) : nullptr;
    if (bus && !service && handOver(*bus, request))
        return 0; // another one was quicker
    windows.show(request, activationToken());
    return windows.isAnyOpen() ? application.run() : 1;
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    using namespace kestrio;
    openStandardStreams();
    const auto parsed = parseWindowArguments(argc, argv);
    if (const auto* const status = std::get_if<int>(&parsed))
        return *status;
    return run(argc, argv, std::get<WindowRequest>(parsed));
}
