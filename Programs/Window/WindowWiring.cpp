#include "Programs/Window/WindowWiring.h"

#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Platform/Linux/ApplicationIcons.h"
#include "Kestrio/Platform/Linux/BusAddress.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/DetachedProgram.h"
#include "Kestrio/Platform/Linux/FileManager.h"
#include "Kestrio/Platform/Linux/LinuxHostFacts.h"
#include "Kestrio/Platform/Linux/PrivacyRemedies.h"
#include "Kestrio/Platform/Linux/SystemMonitorPrograms.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/HostClassification.h"
#include "Programs/Window/DesktopLook.h"
#include "Programs/Window/StoredSize.h"

namespace kestrio {
namespace {

namespace fs = std::filesystem;

fs::path dataFolder(const Locations& locations) {
    return locations.data / "Kestrio";
}

/// The agent of this session, if it keeps its data where these windows look.
AgentLink::Connect ownAgent(std::optional<std::string> busAddress, const fs::path& data, LoopQueue& worker) {
    return [busAddress = std::move(busAddress), data, &worker](auto gone) -> std::optional<AgentConnection> {
        const auto address = busAddress ? answeringBus(*busAddress, BusConnection::callDeadline) : std::nullopt;
        auto connection = address ? connectToAgent(*address, worker, std::move(gone)) : std::nullopt;
        const auto status = connection ? connection->background->status() : std::nullopt;
        std::error_code ignored;
        return status && fs::equivalent(status->dataFolder, data, ignored) ? std::move(connection) : std::nullopt;
    };
}

std::optional<std::string> privacyAdvice(std::string_view place) {
    const auto remedy = privacyRemedy(place);
    if (!remedy)
        return std::nullopt;
    return remedy->command ? remedy->text + " " + *remedy->command : remedy->text;
}

fs::path agentProgram() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored).parent_path() / "kestrio";
}

/// What starts this host's own system monitor; empty where none is installed.
std::function<void()> activityMonitor(const Clock& clock) {
    DesktopEntries entries(applicationFolders(processEnvironment), messageLocale(processEnvironment), clock);
    auto command = systemMonitorCommand(entries, processEnvironment);
    if (!command)
        return {};
    return [command = std::move(*command)] { startDetached(command); };
}

} // namespace

WindowWiring::WindowWiring(Queue& main, const Locations& locations, const std::optional<std::string>& busAddress)
    : settings_(locations.settingsFile(), main),
      classification_(settings_, hostHint(processEnvironment, clock_)),
      agent_(main, agentQueue_, ownAgent(busAddress, dataFolder(locations), agentQueue_)),
      history_(dataFolder(locations) / Database::fileName, agent_),
      dashboard_(storeParts(main), calendar_, RangeMode::day, ReportStore::Follows::itsPerson),
      today_(storeParts(main), calendar_, RangeMode::day, ReportStore::Follows::now),
      loginItem_(locations.autostartFolder(), agentProgram()),
      archive_(main, loadingQueue_, history_),
      parts_{.clock = clock_,
             .queue = main,
             .calendar = calendar_,
             .settings = settings_,
             .classification = classification_,
             .agent = agent_,
             .dashboard = dashboard_,
             .today = today_,
             .loginItem = &loginItem_,
             .archive = &archive_,
             .host = host(main, locations, busAddress)} {
    std::map<std::string, SettingValue> registered;
    for (const auto& setting : knownSettings())
        if (setting.registered)
            registered.emplace(setting.key, *setting.registered);
    settings_.registerDefaults(std::move(registered));
    agent_.start();
}

WindowHost WindowWiring::host(Queue& main, const Locations& locations, const std::optional<std::string>& busAddress) {
    WindowHost host;
    host.startAgent = startAgent;
    host.isBrowser = BrowserInspector::isBrowser;
    host.privacyAdvice = privacyAdvice;
    host.openActivityMonitor = activityMonitor(clock_);
    // Made on the thread of the icons, at the first of them.
    host.iconFile = [this, icons = std::make_shared<std::optional<ApplicationIcons>>()](const auto& application,
                                                                                        int pixels) {
        if (!*icons)
            icons->emplace(processEnvironment, clock_);
        return (*icons)->iconFile(application, pixels);
    };
    if (busAddress)
        host.observeDesktop = [this, &main, address = *busAddress](auto receiver) {
            return observeDesktopLook(address, main, agentQueue_, std::move(receiver));
        };
    host.systemInfo = [] { return AppInfo::diagnostics(hostFacts()); };
    host.dataFolder = dataFolder(locations);
    host.showInFiles = [this, busAddress](const auto& file) { showInFiles(busAddress, file); };
    const auto sizeFile = locations.cache / "Kestrio" / "dashboard-size";
    host.storedSize = [sizeFile] { return readStoredSize(sizeFile); };
    host.storeSize = [sizeFile](WindowSize size) { writeStoredSize(sizeFile, size); };
    return host;
}

ReportStore::Parts WindowWiring::storeParts(Queue& main) {
    return {
        .clock = clock_,
        .queue = main,
        .loadingQueue = loadingQueue_,
        .sessions = [this](DateInterval interval) { return history_.sessions(interval); },
        .classification =
            [this] {
                return Classification{classification_.categorizer().snapshot(), classification_.projectRules().rules()};
            }};
}

/// Without a file manager that knows how to show a file, its folder is opened.
void WindowWiring::showInFiles(const std::optional<std::string>& busAddress, const fs::path& file) {
    agentQueue_.async([busAddress, file] {
        if (!busAddress || !showInFileManager(*busAddress, file))
            startDetached({"xdg-open", file.parent_path().string()});
    });
}

/// Quietly: the windows are there already.
bool WindowWiring::startAgent() {
    std::error_code ignored;
    const auto agent = agentProgram();
    return fs::exists(agent, ignored) && startDetached({agent.string(), "--login"});
}

} // namespace kestrio
