#include "Kestrio/Link/Background.h"
#include "Kestrio/Model/ModelsJSON.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

LiveActivity activity(SessionKind kind) {
    return {{"org.example.editor", "Editor", "Draft \"one\"\n– \u00fc", "https://example.org/?q=1", "example.org",
             "book", kind},
            Date(1'700'000'000.25),
            Date(1'700'000'100.5),
            std::int64_t{1} << 53};
}

AgentStatus fullStatus() {
    return {TrackingState::paused,
            distantFuture,
            activity(SessionKind::focus),
            {activity(SessionKind::watching), activity(SessionKind::listening)},
            7,
            true,
            "1.2.3",
            4711,
            "/home/ada/data",
            Date(1'699'999'999.125)};
}

std::optional<AgentStatus> roundTrip(const AgentStatus& status) {
    return agentStatusFromJSON(JSON::parse(toJSON(status).dump()));
}

TEST(AgentStatus, survivesTheWayThroughJSON) {
    EXPECT_EQ(roundTrip(fullStatus()), fullStatus());
    EXPECT_EQ(roundTrip({}), AgentStatus());
    auto bare = fullStatus();
    bare.live->rowID.reset();
    bare.live->sample.url.reset();
    bare.live->sample.domain.reset();
    bare.live->sample.project.reset();
    EXPECT_EQ(roundTrip(bare), bare);
    bare.live->sample.project = "";
    EXPECT_EQ(roundTrip(bare), bare) << "an empty text is not an absent one";
    for (const auto state : allTrackingStates) {
        AgentStatus status;
        status.state = state;
        EXPECT_EQ(roundTrip(status), status) << rawValue(state);
    }
}

TEST(AgentStatus, hasTheNamesOfTheRecordsFields) {
    auto status = fullStatus();
    status.alongside.clear();
    EXPECT_EQ(
        toJSON(status).dump(),
        R"({"state":"paused","pausedUntil":64092211200.0,"live":{"sample":{"bundleID":"org.example.editor",)"
        R"("appName":"Editor","title":"Draft \"one\"\n– ü","url":"https://example.org/?q=1",)"
        R"("domain":"example.org","project":"book","kind":0},"start":1700000000.25,"lastSeen":1700000100.5,)"
        R"("rowID":9007199254740992},"alongside":[],"unsaved":7,"isAccessibilityGranted":true,)"
        R"("version":"1.2.3","processIdentifier":4711,"dataFolder":"/home/ada/data","startedAt":1699999999.125})");
    EXPECT_EQ(toJSON(AgentStatus()).dump(),
              R"({"state":"tracking","pausedUntil":null,"live":null,"alongside":[],"unsaved":0,)"
              R"("isAccessibilityGranted":false,"version":"","processIdentifier":0,"dataFolder":"","startedAt":0.0})");
}

/// The same with the value at a place taken away, or another one there.
JSON without(JSON json, const JSON::json_pointer& place) {
    json.at(place.parent_pointer()).erase(place.back());
    return json;
}
JSON with(JSON json, const JSON::json_pointer& place, const JSON& value) {
    json.at(place) = value;
    return json;
}

TEST(AgentStatus, anyMissingFieldIsAnotherVersion) {
    const auto json = toJSON(fullStatus());
    for (const auto& [key, value] : json.items())
        EXPECT_FALSE(agentStatusFromJSON(without(json, JSON::json_pointer("/" + key)))) << key;
    for (const char* place :
         {"/live/sample", "/live/start", "/live/lastSeen", "/live/sample/bundleID", "/live/sample/appName",
          "/live/sample/title", "/live/sample/kind", "/alongside/1/sample/title", "/alongside/0/start"})
        EXPECT_FALSE(agentStatusFromJSON(without(json, JSON::json_pointer(place)))) << place;
    for (const char* place : {"/live/rowID", "/live/sample/url", "/live/sample/domain", "/live/sample/project"})
        EXPECT_TRUE(agentStatusFromJSON(without(json, JSON::json_pointer(place)))) << place;
}

TEST(AgentStatus, anyFieldOfAnotherTypeIsAnotherVersion) {
    const auto json = toJSON(fullStatus());
    const JSON wrong[] = {nullptr, true, 3.5, "text", JSON::array({1}), JSON::object({{"a", 1}})};
    struct Row {
        const char* place;
        const char* allowed; // the types of `wrong` that this field may have
    };
    const Row rows[] = {
        {"/state", ""},
        {"/pausedUntil", "null number"},
        {"/live", "null"},
        {"/alongside", ""},
        {"/unsaved", ""},
        {"/isAccessibilityGranted", "boolean"},
        {"/version", "string"},
        {"/processIdentifier", ""},
        {"/dataFolder", "string"},
        {"/startedAt", "number"},
        {"/live/sample", ""},
        {"/live/start", "number"},
        {"/live/lastSeen", "number"},
        {"/live/rowID", "null"},
        {"/live/sample/bundleID", "string"},
        {"/live/sample/appName", "string"},
        {"/live/sample/title", "string"},
        {"/live/sample/url", "null string"},
        {"/live/sample/domain", "null string"},
        {"/live/sample/project", "null string"},
        {"/live/sample/kind", ""},
        {"/alongside/0", ""},
        {"/alongside/1/sample/kind", ""},
    };
    for (const auto& row : rows)
        for (const auto& value : wrong) {
            const bool isAllowed = std::string_view(row.allowed).find(value.type_name()) != std::string_view::npos;
            EXPECT_EQ(agentStatusFromJSON(with(json, JSON::json_pointer(row.place), value)).has_value(), isAllowed)
                << row.place << " " << value;
        }
    for (const char* place : {"/unsaved", "/processIdentifier", "/live/rowID", "/live/sample/kind"})
        for (const auto& value : {JSON(1e300), JSON(UINT64_MAX)})
            EXPECT_FALSE(agentStatusFromJSON(with(json, JSON::json_pointer(place), value))) << place << value;
    EXPECT_FALSE(agentStatusFromJSON(with(json, JSON::json_pointer("/live/sample/kind"), 3)));
    EXPECT_FALSE(agentStatusFromJSON(with(json, JSON::json_pointer("/state"), "Tracking")));
}

TEST(AgentStatus, otherJSONIsNoStatus) {
    for (const char* text : {"null", "[]", "{}", "1", "\"tracking\"", "", "{\"state\":"})
        EXPECT_FALSE(agentStatusFromJSON(JSON::parse(text, nullptr, false))) << text;
}

TEST(AgentStatus, fieldsOfALaterVersionArePassedOver) {
    auto json = toJSON(fullStatus());
    json["mood"] = "good";
    json["live"]["sample"]["colour"] = 3;
    EXPECT_EQ(agentStatusFromJSON(json), fullStatus());
}

} // namespace
} // namespace kestrio
