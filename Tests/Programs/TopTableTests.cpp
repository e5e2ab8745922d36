#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/TopTable.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace kestrio {
namespace {

constexpr std::uint64_t mebibyte = 1'048'576;

AppProcesses app(const std::string& name, double cores, std::uint64_t megabytes) {
    AppProcesses app;
    app.id = "/usr/bin/" + name;
    app.name = name;
    app.cpu = cores / 4;
    app.cpuCores = cores;
    app.footprint = megabytes * mebibyte;
    app.processes = {{1, 2}, {3, 4}};
    return app;
}

TopReading reading() {
    TopReading reading;
    auto painter = app("Painter", 1.5, 512);
    painter.bundleID = "org.example.Painter";
    painter.diskRead = 3'000'000;
    painter.wakeups = 84;
    reading.scan = {{app("idle", 0, 100), painter, app("busy", 2, 8)}, true};
    reading.interval = Seconds(2);
    reading.processCount = 123;
    reading.cores = 4;
    reading.load = 0.876;
    reading.memory = MemoryStatistics{.total = 4096 * mebibyte, .internal = 1024 * mebibyte};
    reading.swap = SwapUse{100 * mebibyte, 2048 * mebibyte};
    return reading;
}

const Calendar english("en_GB", "UTC");

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

TEST(TopTable, isOrderedByWhatWasAskedFor) {
    EXPECT_EQ(topOrder("cpu"), TopOrder::cpu);
    EXPECT_EQ(topOrder("memory"), TopOrder::memory);
    for (const auto* word : {"", "CPU", "disk"})
        EXPECT_EQ(topOrder(word), std::nullopt) << word;
    const auto names = [](TopOrder order) {
        std::string all;
        for (const auto& one : ordered(reading().scan.apps, order))
            all += one.name + " ";
        return all;
    };
    EXPECT_EQ(names(TopOrder::cpu), "busy Painter idle ");
    EXPECT_EQ(names(TopOrder::memory), "Painter idle busy ");
}

TEST(TopTable, putsEqualOnesInTheOrderOfTheirNames) {
    const auto apps = ordered({app("c", 0, 1), app("a", 0, 1), app("b", 0, 1)}, TopOrder::cpu);
    EXPECT_EQ(apps[0].name + apps[1].name + apps[2].name, "abc");
}

TEST(TopTable, showsWhatEachApplicationUses) {
    EXPECT_EQ(topTable(reading(), TopOrder::cpu, english, {100, false}),
              "  CPU 88% of 4 cores   Memory 1 GB of 4 GB, swap 100 MB   pressure normal\n"
              "  3 applications, 123 processes\n"
              "\n"
              "  Application                     CPU     Memory  Processes       Read    Written   Wake-ups\n"
              "  ──────────────────────────────────────────────────────────────────────────────────────────\n"
              "  busy          █████          200.0%       8 MB          2\n"
              "  Painter       ███▊           150.0%     512 MB          2   1.5 MB/s                  42/s\n"
              "  idle                           0.0%     100 MB          2\n");
}

TEST(TopTable, saysSoWhereThereIsNoBaselineYet) {
    auto first = reading();
    first.scan.hasCPU = false;
    first.interval = Seconds(0);
    first.load.reset();
    first.memory.reset();
    first.swap.reset();
    const auto lines = linesOf(topTable(first, TopOrder::memory, english, {100, false}));
    EXPECT_EQ(lines[0], "  CPU –   Memory –   pressure normal");
    EXPECT_EQ(lines[5], "  Painter                           –     512 MB          2          –          –          –");
}

TEST(TopTable, fitsIntoTheTerminal) {
    auto wide = reading();
    wide.scan.apps[0].name = "A name that goes on and on, far beyond what any column is wide, for ever";
    wide.scan.apps[2].name = "日本語の名前を持つとても長いアプリケーション";
    for (const std::size_t width : {40u, 41u, 53u, 60u, 80u, 100u, 250u})
        for (const auto order : {TopOrder::cpu, TopOrder::memory})
            for (const auto& line : linesOf(topTable(wide, order, english, {width, false})))
                EXPECT_LE(text::columns(line), width) << width << line;
}

TEST(TopTable, fitsIntoTheRows) {
    for (const std::size_t rows : {6u, 7u, 8u, 9u}) {
        const auto lines = linesOf(topTable(reading(), TopOrder::cpu, english, {100, false}, rows));
        EXPECT_EQ(lines.size(), std::min<std::size_t>(rows, 8)) << rows;
        if (rows < 8) {
            EXPECT_EQ(lines.back(), "  and " + std::to_string(3 - (rows - 6)) + " more");
        }
    }
}

TEST(TopTable, letsNoNameMeddleWithTheTerminal) {
    auto hostile = reading();
    hostile.scan.apps[0].name = "\x1B[2Jgone\nnext";
    EXPECT_EQ(topTable(hostile, TopOrder::cpu, english, {100, false}).find('\x1B'), std::string::npos);
    EXPECT_EQ(linesOf(topTable(hostile, TopOrder::cpu, english, {100, false})).size(), 8u);
}

TEST(TopTable, hasTheSameTextUnderItsColours) {
    auto coloured = topTable(reading(), TopOrder::cpu, english, {100, true});
    EXPECT_NE(coloured.find("\x1B["), std::string::npos);
    for (auto at = coloured.find("\x1B["); at != std::string::npos; at = coloured.find("\x1B["))
        coloured.erase(at, coloured.find('m', at) - at + 1);
    EXPECT_EQ(linesOf(coloured)[6], linesOf(topTable(reading(), TopOrder::cpu, english, {100, false}))[6]);
}

TEST(TopJSON, holdsEveryFieldOfEveryApplicationAndItsProcesses) {
    const auto json = toJSON(reading(), TopOrder::memory);
    EXPECT_EQ(json["hasCPU"], true);
    EXPECT_EQ(json["interval"], 2.0);
    EXPECT_EQ(json["processCount"], 123);
    EXPECT_EQ(json["pressure"], "normal");
    ASSERT_EQ(json["apps"].size(), 3u);
    EXPECT_EQ(json["apps"][0].dump(),
              R"({"id":"/usr/bin/Painter","name":"Painter","bundleID":"org.example.Painter","appPath":null,)"
              R"("cpu":0.375,"cpuCores":1.5,"pcoreShare":null,"recentPcoreShare":null,"footprint":536870912,)"
              R"("resident":0,"pageins":0,"diskRead":3000000,"diskWritten":0,"energy":0,"wakeups":84,)"
              R"("processes":[{"pid":1,"start":2},{"pid":3,"start":4}]})");
}

} // namespace
} // namespace kestrio
