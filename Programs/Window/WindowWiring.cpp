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
#include "Kestrio/Platform/Linux/X11Compositor.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/HostClassification.h"
#include "Programs/Window/DesktopLook.h"
#include "Programs/Window/StoredSize.h"

#include <malloc.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Seconds zoneInterval{30.0};
constexpr Seconds zoneTolerance{15.0};

fs::path dataFolder(const Locations& locations) {
    return locations.data / "Kestrio";
}

fs::path ownFolder() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

/// That a start belongs to a moment of long ago is for the window manager, so that it leaves the front as it is; not
/// every one does.
void startForPerson(const std::vector<std::string>& command, bool inBackground) {
    EnvironmentChanges changes{{"XDG_ACTIVATION_TOKEN", std::nullopt}};
    changes["DESKTOP_STARTUP_ID"] = inBackground ? std::optional("kestrio_TIME1") : std::nullopt;
    startDetached(command, changes);
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
      browsers_(main, agentQueue_, agent_, clock_,
                {processEnvironment, ownFolder(), calendar_.locale(), startForPerson}),
      history_(dataFolder(locations) / Database::fileName, agent_),
      archive_(dataFolder(locations) / Database::fileName, history_),
      dashboard_(storeParts(main), calendar_, RangeMode::day, ReportStore::Follows::itsPerson),
      today_(storeParts(main), calendar_, RangeMode::day, ReportStore::Follows::now),
      loginItem_(locations.autostartFolder(), ownFolder() / "kestrio"),
      archiveLink_(main, loadingQueue_, archive_),
      parts_{.clock = clock_,
             .queue = main,
             .calendar = calendar_,
             .settings = settings_,
             .classification = classification_,
             .agent = agent_,
             .dashboard = dashboard_,
             .today = today_,
             .browserAccess = &browsers_.access(),
             .loginItem = &loginItem_,
             .archive = &archiveLink_,
             .host = host(main, locations, busAddress)} {
    std::map<std::string, SettingValue> registered;
    for (const auto& setting : knownSettings())
        if (setting.registered)
            registered.emplace(setting.key, *setting.registered);
    settings_.registerDefaults(std::move(registered));
    agent_.start();
    zoneLooks_ = main.every({.interval = zoneInterval, .tolerance = zoneTolerance}, [this] { followTimeZone(); });
}

/// A person who travels finds their days where they are now.
void WindowWiring::followTimeZone() {
    if (!zone_.hasChanged())
        return;
    calendar_ = Calendar::current();
    dashboard_.setCalendar(calendar_);
    today_.setCalendar(calendar_);
}

WindowHost WindowWiring::host(Queue& main, const Locations& locations, const std::optional<std::string>& busAddress) {
    WindowHost host;
    host.startAgent = startAgent;
    host.isBrowser = BrowserInspector::isBrowser;
    host.privacyAdvice = privacyAdvice;
    host.blendsWindows = [] { return blendsWindows(processEnvironment("DISPLAY").value_or("")); };
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
    host.showInFiles = [this, busAddress](const auto& file) { showInFiles(busAddress, file); };
    host.historyFile = dataFolder(locations) / Database::fileName;
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
            },
        .freed = [] { malloc_trim(0); }, // what a month took and a day does not need
    };
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
    const auto agent = ownFolder() / "kestrio";
    return fs::exists(agent, ignored) && startDetached({agent.string(), "--login"});
}

} // namespace kestrio
