#include "Programs/Window/HostBrowserAccess.h"

#include "Kestrio/Platform/Linux/ExtensionSteps.h"
#include "Kestrio/Platform/Linux/PrivacyRemedies.h"
#include "Kestrio/Platform/Linux/StartCommand.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr auto openSettings = "Open Settings";
constexpr auto showFolder = "Show Folder";

std::set<std::string> readableBrowsers() {
    std::set<std::string> all;
    for (const auto& browser : knownBrowsers())
        all.emplace(browser.bundleIdentifier);
    return all;
}

/// The folder itself, or the nearest above it that there is.
fs::path existing(fs::path folder) {
    std::error_code ignored;
    while (folder.has_relative_path() && !fs::is_directory(folder, ignored))
        folder = folder.parent_path();
    return folder;
}

/// The folder of the first manifest that is not there.
fs::path missingFolder(const NativeHosts& hosts, const Browser& browser) {
    const auto files = hosts.manifests(browser);
    std::error_code ignored;
    const auto missing =
        std::ranges::find_if_not(files, [&](const fs::path& file) { return fs::is_regular_file(file, ignored); });
    return (missing == files.end() ? files.front() : *missing).parent_path();
}

} // namespace

HostBrowserAccess::HostBrowserAccess(Queue& main, Queue& worker, AgentLink& agent, const Clock& clock, Host host)
    : main_(main),
      worker_(worker),
      host_(std::move(host)),
      extension_(extensionFolder(host_.programs)),
      entries_(applicationFolders(host_.environment), messageLocale(host_.environment), clock),
      identity_(entries_, IdentityCatalogue::builtIn()),
      nativeHosts_(NativeHosts::ofPerson(host_.environment, host_.programs / "kestrio-tabs")),
      permissions_(readableBrowsers(), host_.locale, permissionsHost()),
      access_(main, worker, permissions_),
      agent_(agent.keep([this](Background& background) {
          look(background);
          return Subscription([this, changes = std::make_shared<Subscription>(
                                         background.observeBrowsers([this, &background] { look(background); }))] {
              changes->cancel();
              readings_.reset();
          });
      })) {}

HostBrowserAccess::~HostBrowserAccess() {
    agent_.cancel();
    worker_.sync([] {});
}

Permissions::Host HostBrowserAccess::permissionsHost() {
    return {
        .applicationName = [this](const std::string& id) { return readings_ ? identity_.name(id) : std::nullopt; },
        .readiness = [this](const std::string& id) { return readiness(id); },
        .askForConsent = [this](const std::string& id) { allow(id); },
        .stepLeft = [this](const BrowserApp& app) { return stepLeft(app); },
        .openStep = [this](const BrowserApp& app) { openStep(app); },
        .openInBackground = [this](const BrowserApp& app) { openInBackground(app); },
        .openPrivacyPane = {}, // the step that is left leads there
    };
}

void HostBrowserAccess::look(Background& agent) {
    readings_ = agent.browsers();
    main_.async([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock())
            (*self)->access_.refresh();
    });
}

std::optional<BrowserReadiness> HostBrowserAccess::readiness(const std::string& bundleID) {
    if (!readings_)
        return std::nullopt;
    const auto reading = std::ranges::find(*readings_, bundleID, &BrowserReading::bundleIdentifier);
    if (reading == readings_->end())
        return BrowserReadiness{};
    BrowserReadiness readiness{
        .isRunning = true, .isBridgeConnected = reading->isConnected, .isAccessibilityReadable = reading->isAccessible};
    const bool isRead = readiness.isBridgeConnected || readiness.isAccessibilityReadable;
    if (!isRead && refused_.contains(bundleID))
        allow(bundleID); // what was in the way may be gone
    readiness.isRefused = !isRead && refused_.contains(bundleID);
    return readiness;
}

void HostBrowserAccess::allow(const std::string& bundleID) {
    const auto* const browser = knownBrowser(bundleID);
    if (!browser || !nativeHosts_ || isSandboxed(bundleID))
        return;
    if (const auto error = nativeHosts_->install(*browser))
        refused_[bundleID] = error;
    else
        refused_.erase(bundleID);
}

bool HostBrowserAccess::isSandboxed(const std::string& bundleID) {
    const auto entry = identity_.entry(bundleID);
    return entry && kestrio::isSandboxed(*entry);
}

std::optional<BrowserStep> HostBrowserAccess::stepLeft(const BrowserApp& app) {
    const auto* const browser = knownBrowser(app.bundleID);
    if (!browser || !nativeHosts_)
        return std::nullopt;
    if (isSandboxed(app.bundleID)) // it could not start `kestrio-tabs`, but may show its pages to assistive programs
        return BrowserStep{
            fmt::format("{} runs in a sandbox that keeps it from telling of its tabs by an extension. Switch on "
                        "accessibility for this desktop and start it again; very large pages then take it longer to "
                        "show. In a terminal: {}",
                        app.name, privacyRemedy(Permissions::automationPane)->command.value_or("")),
            std::nullopt};
    if (const auto refused = refused_.find(app.bundleID); refused != refused_.end())
        return BrowserStep{
            fmt::format("{} could not be let in: in {} nothing can be written ({}). Mend that, and it goes on by "
                        "itself.",
                        app.name, missingFolder(*nativeHosts_, *browser).string(), refused->second.message()),
            showFolder};
    return BrowserStep{fmt::format("{} may now tell of its tabs, and one step is left to you. {}.", app.name,
                                   loadingStep(browser->family, extension_)),
                       extensionPage(browser->family) ? openSettings : showFolder};
}

void HostBrowserAccess::openStep(const BrowserApp& app) {
    const auto* const browser = knownBrowser(app.bundleID);
    if (!browser || !nativeHosts_)
        return;
    if (refused_.contains(app.bundleID))
        return host_.start({"xdg-open", existing(missingFolder(*nativeHosts_, *browser))}, false);
    const auto entry = identity_.entry(app.bundleID);
    auto command = entry ? startCommand(*entry, host_.environment) : std::nullopt;
    if (const auto page = extensionPage(browser->family); page && command) {
        command->push_back(*page);
        return host_.start(*command, false);
    }
    host_.start({"xdg-open", extension_.string()}, false);
}

void HostBrowserAccess::openInBackground(const BrowserApp& app) {
    allow(app.bundleID); // the person's word; as it starts it looks for whom it may tell
    const auto entry = identity_.entry(app.bundleID);
    if (const auto command = entry ? startCommand(*entry, host_.environment) : std::nullopt)
        host_.start(*command, true);
}

} // namespace kestrio
