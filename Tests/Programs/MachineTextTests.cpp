#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/MachineText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace kestrio {
namespace {

constexpr std::uint64_t gibibyte = 1'073'741'824;

const Calendar english("en_GB", "UTC");

MachineReading laptop() {
    MachineReading reading;
    reading.chip = "Chip 9000";
    reading.efficiencyCores = 4;
    reading.performanceCores = 8;
    reading.load = MachineReading::Load{0.5, {0.25, 0.625}};
    reading.memory = MemoryStatistics{.total = 16 * gibibyte,
                                      .internal = 4 * gibibyte,
                                      .wired = 2 * gibibyte,
                                      .compressor = gibibyte,
                                      .external = 5 * gibibyte};
    reading.pressure = MemoryPressure::warning;
    reading.swap = SwapUse{gibibyte, 8 * gibibyte};
    reading.drives = SSDTraffic{.read = 2'000'000, .write = 500'000, .requestsPerSecond = 40, .wait = 0.0012};
    reading.traffic = RAMTraffic{3e9, 1e9, {{"fast", "Fast cores", 2e9}}};
    reading.topSpeed = 100e9;
    reading.test = SSDSpeedTest::Result{3.4e9, 2.1e9, Date(1'700'000'000)};
    return reading;
}

TEST(MachineText, tellsHowTheMachineStands) {
    EXPECT_EQ(machineText(laptop(), english, {80, false}),
              "  Processor    Chip 9000\n"
              "  Cores        12 cores: 8 performance, 4 efficiency\n"
              "  Load         █████       50%   performance 62%, efficiency 25%\n"
              "  Memory       16 GB\n"
              "               ████████████████████████████████████░░░░░░░░░░░░\n"
              "               █ applications      4 GB\n"
              "               █ wired             2 GB\n"
              "               █ compressed        1 GB\n"
              "               █ cached files      5 GB\n"
              "               ░ free              4 GB\n"
              "  Pressure     warning\n"
              "  Swap         1 GB of 8 GB used\n"
              "  Drives       reading 2 MB/s, writing 500 KB/s, 40 requests/s, 1.2 ms each\n"
              "  Drive test   reads 3.4 GB/s, writes 2.1 GB/s\n"
              "  RAM traffic  reading 3 GB/s, writing 1 GB/s, 100 GB/s at most\n"
              "               Fast cores: 2 GB/s\n");
}

TEST(MachineText, tellsWhatCannotBeHadAndWhy) {
    MachineReading nothing;
    nothing.swap = SwapUse{};
    nothing.absences = {{"Drives", "there is none"}, {"Efficiency cores", "all are alike"}};
    EXPECT_EQ(machineText(nothing, english, {80, false}), "  Processor    does not tell its name\n"
                                                          "  Cores        1 core\n"
                                                          "  Pressure     normal\n"
                                                          "  Swap         none\n"
                                                          "\n"
                                                          "  Not to be had here:\n"
                                                          "  ○ Drives            there is none\n"
                                                          "  ○ Efficiency cores  all are alike\n");
}

TEST(MachineText, fitsIntoTheTerminal) {
    auto reading = laptop();
    reading.chip = std::string(300, 'x');
    reading.absences = {{"Something", std::string(300, 'y')}};
    for (const std::size_t width : {60u, 80u, 200u}) {
        std::istringstream stream(machineText(reading, english, {width, false}));
        for (std::string line; std::getline(stream, line);)
            EXPECT_LE(text::columns(line), width) << line;
    }
}

TEST(MachineText, drawsAMemoryThatAddsUpToMoreThanThereIs) {
    auto reading = laptop();
    reading.memory->internal = 64 * gibibyte;
    const auto text = machineText(reading, english, {80, false});
    EXPECT_EQ(text.find("░░"), std::string::npos);
    EXPECT_NE(text.find("free           0 bytes"), std::string::npos) << text;
}

TEST(MachineJSON, holdsEverythingAndNullForWhatIsAbsent) {
    const auto json = toJSON(laptop());
    EXPECT_EQ(json["memory"]["free"], 4 * gibibyte);
    EXPECT_EQ(json["load"]["performance"], 0.625);
    EXPECT_EQ(json["drives"]["wait"], 0.0012);
    EXPECT_EQ(json["traffic"]["clients"][0]["name"], "Fast cores");
    EXPECT_EQ(json["driveTest"]["readBytesPerSecond"], 3.4e9);
    MachineReading nothing;
    nothing.absences = {{"Drives", "none"}};
    EXPECT_EQ(toJSON(nothing).dump(),
              R"({"chip":null,"efficiencyCores":0,"performanceCores":1,"load":null,"memory":null,"pressure":"normal",)"
              R"("swap":null,"drives":null,"traffic":null,"topSpeed":null,"driveTest":null,)"
              R"("absent":[{"what":"Drives","why":"none"}]})");
}

} // namespace
} // namespace kestrio
