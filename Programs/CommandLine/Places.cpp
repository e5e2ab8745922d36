#include "Programs/CommandLine/Places.h"

#include "Kestrio/Platform/Linux/BusAddress.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/CommandLine/Terminal.h"

#include <cstdlib>

namespace kestrio {

Locations placesOrExit() {
    if (const auto places = locations(processEnvironment))
        return *places;
    complain("neither KESTRIO_HOME nor HOME is set to a folder");
    std::exit(1);
}

std::filesystem::path dataFolder(const Locations& places) {
    return places.data / "Kestrio";
}

std::unique_ptr<FileKeyValueStore> openSettings(const Locations& places) {
    auto store = std::make_unique<FileKeyValueStore>(places.settingsFile());
    std::map<std::string, SettingValue> registered;
    for (const auto& setting : knownSettings())
        if (setting.registered)
            registered.emplace(setting.key, *setting.registered);
    store->registerDefaults(std::move(registered));
    return store;
}

std::unique_ptr<BackgroundClient> runningAgent(const Locations& places) {
    const auto said = BusConnection::address(BusConnection::Bus::session);
    const auto address = said ? answeringBus(*said, BusConnection::callDeadline) : std::nullopt;
    auto agent = address ? BackgroundClient::connect(*address) : nullptr;
    const auto status = agent ? agent->status() : std::nullopt;
    if (!status)
        return nullptr;
    std::error_code ignored;
    const bool isOurs = std::filesystem::equivalent(status->dataFolder, dataFolder(places), ignored);
    return isOurs ? std::move(agent) : nullptr;
}

} // namespace kestrio
