#include "Kestrio/Platform/Testing/ScriptedMachine.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"

#include <array>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ScriptedProcessTable, answersWhatItWasTold) {
    ScriptedProcessTable table;
    table.run(7, "/usr/bin/painter", {.start = 3});
    EXPECT_EQ(table.processes(), std::vector<pid_t>{7});
    EXPECT_EQ(table.counters(7), ProcessCounters{.start = 3});
    EXPECT_EQ(table.lookUps, 0);
    EXPECT_EQ(table.programPath(7), "/usr/bin/painter");
    EXPECT_EQ(table.responsible(7), std::nullopt);
    EXPECT_EQ(table.application(7), std::nullopt);
    EXPECT_EQ(table.bundle("/x"), std::nullopt);
    EXPECT_EQ(table.lookUps, 4);
    table.end(7);
    EXPECT_TRUE(table.processes().empty());
    EXPECT_EQ(table.counters(7), std::nullopt);
}

TEST(ScriptedDisks, giveAFileThatFailsWhereItIsToldTo) {
    ScriptedDisks disks;
    disks.failing = "write 2";
    std::array<std::byte, 4> block{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4}};
    {
        const auto file = disks.makeSpeedTestFile();
        EXPECT_TRUE(file->write(block));
        EXPECT_FALSE(file->write(block));
        block.fill(std::byte{0});
        EXPECT_TRUE(file->read(block));
        EXPECT_EQ(block[3], std::byte{4});
    }
    EXPECT_EQ(disks.done, (std::vector<std::string>{"write 1", "write 2", "read 1", "gone"}));
    disks.givesFile = false;
    EXPECT_FALSE(disks.makeSpeedTestFile());
}

TEST(ProcessKey, isItsNumberAndItsStart) {
    const std::hash<ProcessKey> hash;
    EXPECT_EQ((ProcessKey{1, 2}), (ProcessKey{1, 2}));
    EXPECT_NE((ProcessKey{1, 2}), (ProcessKey{1, 3}));
    EXPECT_NE((ProcessKey{1, 2}), (ProcessKey{2, 2}));
    EXPECT_EQ(hash({1, 2}), hash({1, 2}));
    EXPECT_NE(hash({1, 200'000'000}), hash({1, 300'000'000}));
    EXPECT_NE(hash({1, 2}), hash({2, 2}));
}

} // namespace
} // namespace kestrio
