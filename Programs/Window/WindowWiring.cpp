#include "Programs/Window/WindowWiring.h"

#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Platform/Linux/BusAddress.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/DetachedProgram.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/HostClassification.h"

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

} // namespace

WindowWiring::WindowWiring(Queue& main, const Locations& locations, std::optional<std::string> busAddress)
    : settings_(locations.settingsFile(), main),
      classification_(settings_, hostHint(processEnvironment, clock_)),
      agent_(main, agentQueue_, ownAgent(std::move(busAddress), dataFolder(locations), agentQueue_)),
      history_(dataFolder(locations) / Database::fileName, agent_),
      dashboard_(storeParts(main), calendar_, RangeMode::day, ReportStore::Follows::itsPerson),
      today_(storeParts(main), calendar_, RangeMode::day, ReportStore::Follows::now),
      parts_{.clock = clock_,
             .queue = main,
             .calendar = calendar_,
             .settings = settings_,
             .classification = classification_,
             .agent = agent_,
             .dashboard = dashboard_,
             .today = today_,
             .host = {.startAgent = startAgent, .isBrowser = BrowserInspector::isBrowser}} {
    std::map<std::string, SettingValue> registered;
    for (const auto& setting : knownSettings())
        if (setting.registered)
            registered.emplace(setting.key, *setting.registered);
    settings_.registerDefaults(std::move(registered));
    agent_.start();
}

ReportStore::Parts WindowWiring::storeParts(Queue& main) {
    return {.clock = clock_,
            .queue = main,
            .loadingQueue = loadingQueue_,
            .sessions = [this](DateInterval interval) { return history_.sessions(interval); },
            .classification =
                [this] {
                    return Classification{classification_.categorizer().snapshot(),
                                          classification_.projectRules().rules()};
                }};
}

/// Quietly: the windows are there already.
bool WindowWiring::startAgent() {
    std::error_code ignored;
    const auto agent = fs::read_symlink("/proc/self/exe", ignored).parent_path() / "kestrio";
    return fs::exists(agent, ignored) && startDetached({agent.string(), "--login"});
}

} // namespace kestrio
