#include "Kestrio/Monitor/MonitorJSON.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;
using Level = SystemInsight::Level;

SystemSnapshot laptop() {
    return {.cpu = 0.25,
            .memoryUsed = 8'000'000'000,
            .memoryTotal = UINT64_MAX,
            .swapUsed = 1,
            .pressure = MemoryPressure::warning,
            .thermalState = ThermalState::serious,
            .temperature = 75.5,
            .disk = DiskUsage{125, 500},
            .battery = BatteryInfo{75, true, true, 180, 20},
            .topCPU = {{"a", "Painter \"ü\"", "/bin/painter", 0.5, 1, 3}},
            .topMemory = {{"b", "Browser", {}, 0, 2'500'000'000, 12}, {"a", "Painter", {}, 0.5, 1, 3}},
            .hasAppCPU = true};
}

std::optional<SystemSnapshot> roundTrip(const SystemSnapshot& snapshot) {
    return systemSnapshotFromJSON(JSON::parse(toJSON(snapshot).dump()));
}

TEST(MonitorJSON, ofASnapshotGoesThereAndBack) {
    EXPECT_EQ(roundTrip(laptop()), laptop());
    EXPECT_EQ(roundTrip({}), SystemSnapshot());
    auto bare = laptop();
    bare.battery->minutesRemaining.reset();
    bare.battery->minutesToFull.reset();
    EXPECT_EQ(roundTrip(bare), bare);
    for (const auto pressure : {MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical})
        for (const auto state :
             {ThermalState::nominal, ThermalState::fair, ThermalState::serious, ThermalState::critical}) {
            bare.pressure = pressure;
            bare.thermalState = state;
            EXPECT_EQ(roundTrip(bare), bare) << rawValue(pressure) << " " << rawValue(state);
        }
}

TEST(MonitorJSON, ofASnapshotHasTheNamesOfItsFields) {
    EXPECT_EQ(toJSON(SystemSnapshot()).dump(),
              R"({"cpu":0.0,"memoryUsed":0,"memoryTotal":0,"swapUsed":0,"pressure":"normal","thermalState":"nominal",)"
              R"("temperature":null,"disk":null,"battery":null,"hasAppCPU":false,"topCPU":[],"topMemory":[]})");
    EXPECT_EQ(toJSON(laptop())["battery"].dump(),
              R"({"level":75,"isCharging":true,"isPluggedIn":true,"minutesRemaining":180,"minutesToFull":20})");
    EXPECT_EQ(toJSON(laptop())["topMemory"][0].dump(),
              R"({"id":"b","name":"Browser","appPath":null,"cpu":0.0,"memory":2500000000,"processes":12})");
    EXPECT_EQ(toJSON(laptop())["disk"].dump(), R"({"free":125,"total":500})");
}

TEST(MonitorJSON, ofASnapshotWithoutAFieldIsOfAnotherVersion) {
    const auto whole = toJSON(laptop());
    for (const auto* place : {"", "/disk", "/battery", "/topCPU/0", "/topMemory/1"}) {
        const JSON::json_pointer pointer(place);
        for (const auto& [key, value] : whole.at(pointer).items()) {
            auto json = whole;
            json.at(pointer).erase(key);
            EXPECT_FALSE(systemSnapshotFromJSON(json)) << place << "/" << key;
        }
    }
}

TEST(MonitorJSON, ofASnapshotWithAnotherTypeIsOfAnotherVersion) {
    struct Row {
        const char* place;
        JSON value;
    };
    const Row rows[] = {
        {"/cpu", "0.5"},
        {"/memoryUsed", -1},
        {"/memoryUsed", 1.5},
        {"/memoryTotal", nullptr},
        {"/swapUsed", true},
        {"/pressure", "Normal"},
        {"/pressure", 1},
        {"/thermalState", "warm"},
        {"/temperature", "75"},
        {"/disk", 3},
        {"/disk/free", UINT64_MAX},
        {"/disk/total", 0.5},
        {"/battery", true},
        {"/battery/level", "75"},
        {"/battery/isCharging", 1},
        {"/battery/isPluggedIn", nullptr},
        {"/battery/minutesToFull", "1"},
        {"/battery/minutesRemaining", 1e300},
        {"/hasAppCPU", 1},
        {"/topCPU", JSON::object()},
        {"/topCPU/0", 1},
        {"/topCPU/0/id", 1},
        {"/topCPU/0/name", nullptr},
        {"/topCPU/0/appPath", 1},
        {"/topCPU/0/cpu", "1"},
        {"/topMemory/0/memory", -1},
        {"/topMemory/0/processes", 1.5},
    };
    for (const auto& row : rows) {
        auto json = toJSON(laptop());
        json.at(JSON::json_pointer(row.place)) = row.value;
        EXPECT_FALSE(systemSnapshotFromJSON(json)) << row.place << " " << row.value;
    }
    for (const char* text : {"null", "[]", "{}", "1", ""})
        EXPECT_FALSE(systemSnapshotFromJSON(JSON::parse(text, nullptr, false))) << text;
}

TEST(MonitorJSON, passesOverFieldsOfALaterVersion) {
    auto json = toJSON(laptop());
    json["mood"] = 1;
    json["topCPU"][0]["colour"] = "red";
    EXPECT_EQ(systemSnapshotFromJSON(json), laptop());
}

TEST(MonitorJSON, ofAnInsightGoesThereAndBack) {
    for (const auto level : {Level::good, Level::info, Level::warning, Level::critical}) {
        const SystemInsight insight{"cpu", level, "thermometer.high", "Busy, mostly Painter."};
        EXPECT_EQ(systemInsightFromJSON(JSON::parse(toJSON(insight).dump())), insight) << rawValue(level);
    }
    EXPECT_EQ(toJSON(SystemInsight{"ok", Level::good, "checkmark.circle", "Fine."}).dump(),
              R"({"id":"ok","level":"good","symbol":"checkmark.circle","text":"Fine."})");
    for (const auto* key : {"id", "level", "symbol", "text"}) {
        auto json = toJSON(SystemInsight{});
        json.erase(key);
        EXPECT_FALSE(systemInsightFromJSON(json)) << key;
        json[key] = 1;
        EXPECT_FALSE(systemInsightFromJSON(json)) << key;
    }
}

} // namespace
} // namespace kestrio
