#include "Kestrio/Link/AgentCost.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

const OwnCost cost{.span = Seconds(600.5),
                   .cores = 0.00625,
                   .memory = 14'000'000,
                   .wakeupsPerSecond = 3.5,
                   .bytesWrittenPerSecond = 1'200.25};
const LoweredPace lowered{Date(1'700'000'000.5), Date(1'700'003'600.5), cost};

TEST(AgentCost, goesThroughJSONAndBack) {
    for (const auto& told : {AgentCost(), AgentCost{cost, {}}, AgentCost{{}, lowered}, AgentCost{cost, lowered}})
        EXPECT_EQ(agentCostFromJSON(JSON::parse(toJSON(told).dump())), told);
}

TEST(AgentCost, hasTheNamesOfItsFields) {
    EXPECT_EQ(toJSON(AgentCost()).dump(), R"({"cost":null,"lowered":null})");
    EXPECT_EQ(toJSON(AgentCost{{}, lowered}).dump(),
              R"({"cost":null,"lowered":{"since":1700000000.5,"until":1700003600.5,"cost":{"span":600.5,)"
              R"("cores":0.00625,"memory":14000000,"wakeupsPerSecond":3.5,"bytesWrittenPerSecond":1200.25}}})");
}

TEST(AgentCost, thatLacksAFieldOrHasAnotherTypeIsOfAnotherVersion) {
    const auto whole = toJSON(AgentCost{cost, lowered});
    for (const auto* place : {"", "/cost", "/lowered", "/lowered/cost"}) {
        const JSON::json_pointer pointer(place);
        for (const auto& [key, value] : whole.at(pointer).items()) {
            auto json = whole;
            json.at(pointer).erase(key);
            EXPECT_FALSE(agentCostFromJSON(json)) << place << "/" << key;
            json.at(pointer)[key] = "text";
            EXPECT_FALSE(agentCostFromJSON(json)) << place << "/" << key;
        }
    }
    auto json = whole;
    json["cost"]["memory"] = -1;
    EXPECT_FALSE(agentCostFromJSON(json));
    for (const char* text : {"null", "[]", "{}", "1", ""})
        EXPECT_FALSE(agentCostFromJSON(JSON::parse(text, nullptr, false))) << text;
}

} // namespace
} // namespace kestrio
