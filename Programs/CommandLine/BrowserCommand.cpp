// `kestrioctl browsers`: looks at the browsers of this host, and lets them start the native host.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/BrowserProcess.h"
#include "Kestrio/Platform/Linux/ExtensionSteps.h"
#include "Kestrio/Platform/Linux/NativeHosts.h"
#include "Programs/CommandLine/BrowserTable.h"
#include "Programs/CommandLine/Commands.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/Terminal.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

fs::path programFolder() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

class BrowserExamination {
public:
    explicit BrowserExamination(const NativeHosts& hosts)
        : hosts_(hosts),
          entries_(applicationFolders(processEnvironment), messageLocale(processEnvironment), clock_),
          identity_(entries_, IdentityCatalogue::builtIn()) {}

    bool isInstalled(const Browser& browser) { return identity_.name(browser.bundleIdentifier).has_value(); }

    std::vector<BrowserFinding> findings(const std::optional<std::vector<BrowserReading>>& read) {
        const auto running = runningBrowsers(identity_);
        std::vector<BrowserFinding> all;
        for (const auto& browser : knownBrowsers()) {
            BrowserFinding finding;
            finding.bundleIdentifier = browser.bundleIdentifier;
            finding.name = browser.name;
            finding.family = browser.family;
            finding.isInstalled = isInstalled(browser);
            finding.isRunning = running.contains(finding.bundleIdentifier);
            finding.mayStartHost = hosts_.isInstalled(browser);
            if (read) {
                const auto reading =
                    std::ranges::find(*read, browser.bundleIdentifier, &BrowserReading::bundleIdentifier);
                finding.isConnected = reading != read->end() && reading->isConnected;
                // Of a browser that was not in front yet nobody knows.
                if (reading != read->end() && reading->isAccessible)
                    finding.isAccessible = true;
            }
            all.push_back(std::move(finding));
        }
        return all;
    }

private:
    const NativeHosts& hosts_;
    const SystemClock clock_;
    DesktopEntries entries_;
    ApplicationIdentity identity_;
};

std::optional<NativeHosts> nativeHosts() {
    auto hosts = NativeHosts::ofPerson(processEnvironment, programFolder() / "kestrio-tabs");
    if (!hosts)
        complain("HOME is not set to a folder");
    return hosts;
}

/// Does something to the files of one browser; false when that failed.
bool change(const Browser& browser, std::error_code error, const std::string& done) {
    if (error)
        complain(fmt::format("{}: {}", browser.name, error.message()));
    else
        print(done);
    return !error;
}

} // namespace

int browsers(bool json) {
    const auto agent = runningAgent(placesOrExit());
    const auto hosts = nativeHosts();
    if (!hosts)
        return 1;
    const auto findings = BrowserExamination(*hosts).findings(agent ? agent->browsers() : std::nullopt);
    if (!json) {
        print(browserTable(findings, extensionFolder(programFolder()), outputStyle()));
        return 0;
    }
    auto array = nlohmann::ordered_json::array();
    for (const auto& finding : findings)
        array.push_back(toJSON(finding, extensionFolder(programFolder())));
    printJSON(array);
    return 0;
}

int installNativeHosts() {
    const auto hosts = nativeHosts();
    if (!hosts)
        return 1;
    BrowserExamination examination(*hosts);
    bool isDone = true;
    bool isAnyHere = false;
    for (const auto& browser : knownBrowsers()) {
        if (!examination.isInstalled(browser))
            continue;
        isAnyHere = true;
        isDone = change(browser, hosts->install(browser),
                        fmt::format("{} may now start kestrio-tabs. One step is left to you:\n  {}\n", browser.name,
                                    loadingStep(browser.family, extensionFolder(programFolder())))) &&
                 isDone;
    }
    if (!isAnyHere)
        complain("no browser that Kestrio knows is installed here");
    return isAnyHere && isDone ? 0 : 1;
}

int removeNativeHosts() {
    const auto hosts = nativeHosts();
    if (!hosts)
        return 1;
    bool isDone = true;
    for (const auto& browser : knownBrowsers())
        isDone = change(browser, hosts->remove(browser), "") && isDone;
    if (isDone)
        print("No browser starts kestrio-tabs any more. The extension is removed in the browser itself.\n");
    return isDone ? 0 : 1;
}

} // namespace kestrio
