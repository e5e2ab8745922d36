#include "Programs/CommandLine/ResourceLogText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

const Calendar calendar("en_GB", "UTC");
const OwnCost cost{.span = Seconds(600), .cores = 0.0081, .memory = 14 << 20, .wakeupsPerSecond = 3};

LogStatus status(std::optional<AgentCost> agent) {
    return {.file = "/data/resources.sqlite",
            .contents = {},
            .days = 90,
            .detailDays = 7,
            .pace = 1,
            .agent = std::move(agent)};
}

bool has(const LogStatus& status, const std::string& line) {
    return logStatusText(status, calendar).find(line + "\n") != std::string::npos;
}

TEST(ResourceLogText, saysWhatTheAgentCosts) {
    EXPECT_TRUE(
        has(status(AgentCost{cost, {}}),
            "  Cost     0.81% of a core, 14 MB of memory, 3.0 wake-ups and 0 bytes written a second, over 10m"));
    EXPECT_TRUE(has(status(AgentCost()), "  Cost     measured in the program's first minute"));
}

TEST(ResourceLogText, saysNothingOfCostWithoutAnAgentOrALog) {
    auto off = status(AgentCost());
    off.isOn = false;
    for (const auto& quiet : {status(std::nullopt), off})
        EXPECT_EQ(logStatusText(quiet, calendar).find("Cost"), std::string::npos);
}

TEST(ResourceLogText, saysThatThePaceWasLowered) {
    const AgentCost agent{{}, LoweredPace{Date(1'700'049'600), Date(1'700'053'200), cost}};
    EXPECT_TRUE(has(status(agent), "  Log      on, minutes alone until 13:00: Kestrio itself took 0.81% of a core"));
    EXPECT_TRUE(has(status(AgentCost()), "  Log      on, a detailed reading every second"));
}

TEST(ResourceLogText, namesOfApplicationsKeepTheirWords) {
    const std::vector<ResourceEvent> events{
        {.at = Date(1'700'049'600),
         .kind = ResourceEventKind::appOpened,
         .appID = "cleaner",
         .appName = "Mac Cleaner",
         .detail = "Mac Cleaner was opened."},
        {.at = Date(1'700'049'601), .kind = ResourceEventKind::macWoke, .detail = "The Mac woke up."}};
    const auto table = eventTable(events, calendar, {100, false});
    EXPECT_NE(table.find("Mac Cleaner, Mac Cleaner was opened."), std::string::npos) << table;
    EXPECT_NE(table.find("The computer woke up."), std::string::npos) << table;
}

TEST(ResourceLogText, asJSONHoldsTheCost) {
    EXPECT_TRUE(toJSON(status(std::nullopt))["agent"].is_null());
    const auto json = toJSON(status(AgentCost{cost, LoweredPace{Date(1), Date(2), cost}}))["agent"];
    EXPECT_EQ(json["cost"]["cores"], 0.0081);
    EXPECT_EQ(json["lowered"]["until"], 2);
}

} // namespace
} // namespace kestrio
