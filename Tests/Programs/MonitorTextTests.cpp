#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/MonitorText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace kestrio {
namespace {

using Level = SystemInsight::Level;

const Calendar calendar("en_GB", "UTC");

MonitorPicture laptop() {
    MonitorPicture reading{.chip = "Chip 9000", .cores = 8, .uptime = Seconds(7'500), .snapshot = {}, .insights = {}};
    auto& snapshot = reading.snapshot;
    snapshot.cpu = 0.425;
    snapshot.memoryUsed = 8'000'000'000;
    snapshot.memoryTotal = 16'000'000'000;
    snapshot.temperature = 75.5;
    snapshot.disk = DiskUsage{125'000'000'000, 500'000'000'000};
    snapshot.battery = BatteryInfo{.level = 75, .minutesRemaining = 180};
    snapshot.topCPU = {{"a", "Painter", {}, 0.425, 1, 3}};
    snapshot.topMemory = {{"b", "Browser", {}, 0, 2'500'000'000, 12}, {"a", "Painter", {}, 0.425, 900'000'000, 3}};
    snapshot.hasAppCPU = true;
    reading.insights = SystemInsight::make(snapshot, {}, calendar);
    return reading;
}

TEST(MonitorText, tellsHowTheMachineFeels) {
    EXPECT_EQ(monitorText(laptop(), calendar, {100, false}),
              "  System   ● All good\n"
              "  Chip 9000 · up 2h 5m\n"
              "\n"
              "  CPU      ██████▊           43%             8 cores\n"
              "  Memory   ████████          8 GB            of 16 GB · normal\n"
              "  Heat     ████████████▏     Warm            75° · chip temperature\n"
              "  Storage  ████████████      125 GB free     of 500 GB\n"
              "  Battery  ████████████      75%             3h left\n"
              "\n"
              "  ● Everything looks healthy.\n"
              "\n"
              "  Top apps by memory                            Top apps by power\n"
              "  Browser                             2.5 GB    Painter                                43%\n"
              "  Painter                             900 MB\n");
}

TEST(MonitorText, isTallerInANarrowTerminal) {
    auto reading = laptop();
    reading.isLowPowerMode = true;
    reading.snapshot.battery.reset();
    reading.snapshot.topCPU.clear();
    EXPECT_EQ(monitorText(reading, calendar, {50, false}), "  System   ● All good\n"
                                                           "  Chip 9000 · up 2h 5m · saving power\n"
                                                           "\n"
                                                           "  CPU      43%             8 cores\n"
                                                           "  Memory   8 GB            of 16 GB · normal\n"
                                                           "  Heat     Warm            75° · chip temperature\n"
                                                           "  Storage  125 GB free     of 500 GB\n"
                                                           "\n"
                                                           "  ● Everything looks healthy.\n"
                                                           "\n"
                                                           "  Top apps by memory\n"
                                                           "  Browser                             2.5 GB\n"
                                                           "  Painter                             900 MB\n"
                                                           "\n"
                                                           "  Top apps by power\n"
                                                           "  Nothing is using much CPU right now.\n");
}

TEST(MonitorText, partsLongInsightsAtBlanks) {
    auto reading = laptop();
    reading.insights = {{"memory", Level::critical, "", "Memory is nearly full, so apps will feel slow."},
                        {"cpu", Level::warning, "", "CPU has been busy (99%)."}};
    const auto text = monitorText(reading, calendar, {40, false});
    EXPECT_NE(text.find("  System   ■ Critical\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n  ■ Memory is nearly full, so apps will\n    feel slow.\n  ▲ CPU has been busy (99%).\n"),
              std::string::npos)
        << text;
}

TEST(MonitorText, neverRunsOverTheWidth) {
    auto reading = laptop();
    reading.chip = std::string(200, 'x');
    reading.snapshot.topMemory[0].name = std::string(200, 'y');
    reading.snapshot.topCPU[0].name = "名前" + std::string(200, 'z');
    reading.insights = {{"cpu", Level::warning, "", "A " + std::string(200, 'w') + " and more of it."}};
    for (const std::size_t width : {40U, 50U, 71U, 72U, 80U, 89U, 90U, 100U, 200U}) {
        std::istringstream lines(monitorText(reading, calendar, {width, false}));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(text::columns(line), width) << line;
    }
}

TEST(MonitorText, isPlainWithoutColour) {
    EXPECT_EQ(monitorText(laptop(), calendar, {100, false}).find('\x1b'), std::string::npos);
    EXPECT_NE(monitorText(laptop(), calendar, {100, true}).find("\x1b[32m"), std::string::npos);
}

TEST(MonitorText, saysWhatThereIsOnAMachineThatTellsNothing) {
    MonitorPicture nothing;
    nothing.insights = SystemInsight::make(nothing.snapshot, {}, calendar);
    EXPECT_EQ(monitorText(nothing, calendar, {60, false}), "  System   ● All good\n"
                                                           "  up 0m\n"
                                                           "\n"
                                                           "  CPU      0%              1 core\n"
                                                           "  Memory   0 bytes         of 0 bytes · normal\n"
                                                           "  Heat     Normal          thermal state\n"
                                                           "  Storage  –\n"
                                                           "\n"
                                                           "  ● Everything looks healthy.\n"
                                                           "\n"
                                                           "  Top apps by memory\n"
                                                           "\n"
                                                           "  Top apps by power\n"
                                                           "  Nothing is using much CPU right now.\n");
}

TEST(MonitorData, holdsTheWholeSnapshot) {
    const auto json = toJSON(laptop());
    EXPECT_EQ(json["chip"], "Chip 9000");
    EXPECT_EQ(json["cores"], 8);
    EXPECT_EQ(json["uptime"], 7'500);
    EXPECT_EQ(json["lowPowerMode"], false);
    EXPECT_EQ(json["cpu"], 0.425);
    EXPECT_EQ(json["memoryUsed"], 8'000'000'000);
    EXPECT_EQ(json["memoryTotal"], 16'000'000'000);
    EXPECT_EQ(json["swapUsed"], 0);
    EXPECT_EQ(json["pressure"], "normal");
    EXPECT_EQ(json["thermalState"], "nominal");
    EXPECT_EQ(json["temperature"], 75.5);
    EXPECT_EQ(json["disk"]["free"], 125'000'000'000);
    EXPECT_EQ(json["battery"].dump(), R"({"level":75,"isCharging":false,"isPluggedIn":false,"minutesRemaining":180,)"
                                      R"("minutesToFull":null})");
    EXPECT_EQ(json["topCPU"][0].dump(),
              R"({"id":"a","name":"Painter","appPath":null,"cpu":0.425,"memory":1,"processes":3})");
    EXPECT_EQ(json["topMemory"].size(), 2u);
    EXPECT_EQ(json["insights"][0].dump(), R"({"id":"ok","level":"good","text":"Everything looks healthy."})");
}

TEST(MonitorData, hasNullForWhatIsAbsent) {
    const auto json = toJSON(MonitorPicture());
    for (const auto* key : {"chip", "temperature", "disk", "battery"})
        EXPECT_TRUE(json[key].is_null()) << key;
}

} // namespace
} // namespace kestrio
