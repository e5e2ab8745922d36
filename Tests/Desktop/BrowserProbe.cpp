// Says what the readers of browsers answer, for the tests with real ones. Each line of the input is a question,
// "front ID", "windows ID", "titled ID" or "chain ID"; each is answered by a line of JSON: the text, and how long it
// took. The chain is that of the agent without the tab bridge. "settled" counts the pages that became certain by
// themselves.
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/AccessibilityBrowserReader.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Platform/Linux/PreferringBrowserReader.h"
#include "Kestrio/Platform/Linux/TitledBrowserReader.h"
#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/Linux/X11Workspace.h"

#include <iostream>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

/// Made and used on the queue.
struct Readers {
    explicit Readers(LoopQueue& queue)
        : connection(queue, clock, processEnvironment("DISPLAY").value_or("")),
          workspace(queue, windows, identity),
          accessibility(queue, clock,
                        {BusConnection::address(BusConnection::Bus::session).value_or(""),
                         processEnvironment("XDG_RUNTIME_DIR").value_or("")},
                        applicationOf, titledWindows(windows, applicationOf), [this] { ++settled; }) {}

    const SystemClock clock;
    int settled = 0;
    DesktopEntries entries{applicationFolders(processEnvironment), "en_US", clock};
    ApplicationIdentity identity{entries, IdentityCatalogue::builtIn()};
    X11Connection connection;
    X11Windows windows{connection};
    X11Workspace workspace;
    ApplicationOfProcess applicationOf = [this](pid_t process) -> std::optional<std::string> {
        for (const auto& application : workspace.runningApplications())
            if (application.processIdentifier == process)
                return application.bundleIdentifier;
        return identity.identify({process, ""}).bundleIdentifier;
    };
    AccessibilityBrowserReader accessibility;
    TitledBrowserReader strict{titledWindows(windows, applicationOf)};
    TitledBrowserReader lenient{titledWindows(windows, applicationOf),
                                [this](const std::string& id) { return !accessibility.isReadable(id); }};
    PreferringBrowserReader chain{{{accessibility}, {lenient}}};
};

BrowserAnswer answer(Readers& readers, const std::string& question, const std::string& id) {
    if (question == "front")
        return readers.accessibility.frontTab(id);
    if (question == "windows")
        return readers.accessibility.windows(id);
    if (question == "titled")
        return readers.strict.frontTab(id);
    return readers.chain.frontTab(id);
}

} // namespace
} // namespace kestrio

int main() {
    using namespace kestrio;
    WorkerQueue queue("browsers");
    auto readers = queue.sync([&] { return std::make_unique<Readers>(queue); });
    std::string question;
    std::string id;
    while (std::cin >> question) {
        if (question == "settled") {
            std::cout << nlohmann::json{{"settled", queue.sync([&] { return readers->settled; })}} << std::endl;
            continue;
        }
        std::cin >> id;
        const auto before = readers->clock.uptime();
        const auto text = queue.sync([&] { return answer(*readers, question, id); });
        const auto seconds = (readers->clock.uptime() - before).count();
        const auto* words = std::get_if<std::string>(&text);
        std::cout << nlohmann::json{{"text", words ? *words : "refused"}, {"seconds", seconds}} << std::endl;
    }
    queue.sync([&] { readers.reset(); });
}
