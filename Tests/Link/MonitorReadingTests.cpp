#include "Kestrio/Link/MonitorReading.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

MonitorReading fullReading() {
    SystemSnapshot snapshot;
    snapshot.cpu = 0.5;
    snapshot.topMemory = {{"b", "Browser", {}, 0, 2'500'000'000, 12}};
    return {.state = {snapshot, {0.25, 1, 0.5}, {{"cpu", SystemInsight::Level::warning, "cpu", "Busy (70%)."}}},
            .chipName = "Chip 9000",
            .cores = 8,
            .uptime = Seconds(7'500.5),
            .optimizer = OptimizerCounts{2, 3'000'000'000, 1, true}};
}

TEST(MonitorReading, goesThroughJSONAndBack) {
    for (const auto& reading : {fullReading(), MonitorReading()})
        EXPECT_EQ(monitorReadingFromJSON(JSON::parse(toJSON(reading).dump())), reading);
}

TEST(MonitorReading, hasTheNamesOfItsFields) {
    EXPECT_EQ(
        toJSON(MonitorReading()).dump(),
        R"({"snapshot":null,"cpuHistory":[],"insights":[],"chipName":"","cores":1,"uptime":0.0,"optimizer":null})");
    EXPECT_EQ(toJSON(fullReading())["optimizer"].dump(),
              R"({"frozen":2,"frozenMemory":3000000000,"efficient":1,"isManaging":true})");
    EXPECT_EQ(toJSON(fullReading())["cpuHistory"].dump(), "[0.25,1.0,0.5]");
}

TEST(MonitorReading, withoutAFieldIsOfAnotherVersion) {
    const auto whole = toJSON(fullReading());
    for (const auto* place : {"", "/optimizer", "/insights/0", "/snapshot"}) {
        const JSON::json_pointer pointer(place);
        for (const auto& [key, value] : whole.at(pointer).items()) {
            auto json = whole;
            json.at(pointer).erase(key);
            EXPECT_FALSE(monitorReadingFromJSON(json)) << place << "/" << key;
        }
    }
}

TEST(MonitorReading, withAnotherTypeIsOfAnotherVersion) {
    struct Row {
        const char* place;
        JSON value;
    };
    const Row rows[] = {
        {"/snapshot", 1},
        {"/cpuHistory", nullptr},
        {"/cpuHistory/0", "1"},
        {"/insights", JSON::object()},
        {"/insights/0", 1},
        {"/chipName", nullptr},
        {"/cores", -1},
        {"/cores", 1.5},
        {"/uptime", "1"},
        {"/optimizer", 1},
        {"/optimizer/frozen", -1},
        {"/optimizer/efficient", 0.5},
        {"/optimizer/isManaging", 1},
        {"/optimizer/frozenMemory", "1"},
    };
    for (const auto& row : rows) {
        auto json = toJSON(fullReading());
        json.at(JSON::json_pointer(row.place)) = row.value;
        EXPECT_FALSE(monitorReadingFromJSON(json)) << row.place << " " << row.value;
    }
    for (const char* text : {"null", "[]", "{}", "1", ""})
        EXPECT_FALSE(monitorReadingFromJSON(JSON::parse(text, nullptr, false))) << text;
}

TEST(MonitorReading, fieldsOfALaterVersionArePassedOver) {
    auto json = toJSON(fullReading());
    json["mood"] = "good";
    EXPECT_EQ(monitorReadingFromJSON(json), fullReading());
}

} // namespace
} // namespace kestrio
