#include "Kestrio/Link/Background.h"

#include "Kestrio/Model/ModelsJSON.h"

#include <nlohmann/json.hpp>

namespace kestrio {

using JSON = nlohmann::ordered_json;

JSON toJSON(const AgentStatus& status) {
    JSON json{{"state", rawValue(status.state)}};
    json["pausedUntil"] = status.pausedUntil ? JSON(status.pausedUntil->seconds()) : JSON();
    json["live"] = status.live ? toJSON(*status.live) : JSON();
    json["alongside"] = JSON::array();
    for (const auto& session : status.alongside)
        json["alongside"].push_back(toJSON(session));
    json["unsaved"] = status.unsaved;
    json["isAccessibilityGranted"] = status.isAccessibilityGranted;
    json["version"] = status.version;
    json["processIdentifier"] = status.processIdentifier;
    json["dataFolder"] = status.dataFolder;
    json["startedAt"] = status.startedAt.seconds();
    return json;
}

std::optional<AgentStatus> agentStatusFromJSON(const JSON& json) {
    try {
        AgentStatus status;
        const auto state = trackingState(json.at("state").get<std::string>());
        if (!state)
            return std::nullopt;
        status.state = *state;
        if (!json.at("pausedUntil").is_null())
            status.pausedUntil = Date(json.at("pausedUntil").get<double>());
        if (!json.at("live").is_null() && !(status.live = liveActivityFromJSON(json.at("live"))))
            return std::nullopt;
        const auto unsaved = integerFromJSON(json.at("unsaved"));
        const auto process = integerFromJSON(json.at("processIdentifier"));
        if (!unsaved || !process || !json.at("alongside").is_array())
            return std::nullopt;
        status.unsaved = *unsaved;
        status.processIdentifier = *process;
        for (const auto& element : json.at("alongside")) {
            auto session = liveActivityFromJSON(element);
            if (!session)
                return std::nullopt;
            status.alongside.push_back(std::move(*session));
        }
        status.isAccessibilityGranted = json.at("isAccessibilityGranted").get<bool>();
        status.version = json.at("version").get<std::string>();
        status.dataFolder = json.at("dataFolder").get<std::string>();
        status.startedAt = Date(json.at("startedAt").get<double>());
        return status;
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace kestrio
