#include "Kestrio/Platform/Linux/LinuxHostFacts.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(LinuxHostFacts, theSystemsNameIsReadFromOsRelease) {
    struct Row {
        const char* text;
        const char* expected;
    };
    const Row rows[] = {
        {"PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian\"\n", "Debian GNU/Linux 12 (bookworm)"},
        {"NAME=Arch\nPRETTY_NAME=Arch\n", "Arch"},
        {"NAME=x\nPRETTY_NAME='Single Quotes 1'", "Single Quotes 1"},
        {"PRETTY_NAME=\"\"\n", ""},
        {"PRETTY_NAME=\"\n", "\""},
        {"PRETTY_NAME=\n", ""},
        {"NAME=\"Only a name\"\n", ""},
        {"# PRETTY_NAME=\"a comment\"\n", ""},
        {"PRETTY_NAMES=other\n", ""},
        {"", ""},
        {"\n\n\n", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(prettyName(row.text), row.expected) << row.text;
}

TEST(LinuxHostFacts, theProcessorsNameIsReadFromCpuinfo) {
    struct Row {
        const char* what;
        const char* text;
        const char* expected;
    };
    const Row rows[] = {
        {"x86",
         "processor\t: 0\nvendor_id\t: GenuineIntel\nmodel\t\t: 85\nmodel name\t: Intel(R) Core(TM) i5 CPU @ 2.50GHz\n"
         "stepping\t: 7\n\nprocessor\t: 1\nmodel name\t: Another\n",
         "Intel(R) Core(TM) i5 CPU @ 2.50GHz"},
        {"an Arm board",
         "processor\t: 0\nBogoMIPS\t: 108.00\nCPU part\t: 0xd08\n\nHardware\t: BCM2835\nModel\t\t: Raspberry Pi 4 "
         "Model B Rev 1.1\n",
         "Raspberry Pi 4 Model B Rev 1.1"},
        {"an older one", "Processor\t: ARMv7\nHardware\t: Allwinner sun8i Family\n", "Allwinner sun8i Family"},
        {"a server's Arm, which has no name", "processor\t: 0\nCPU implementer\t: 0x41\n", ""},
        {"an empty name", "model name\t:\nHardware\t: Board\n", "Board"},
        {"a name with a colon", "model name : a: b\n", "a: b"},
        {"nothing", "", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(processorName(row.text), row.expected) << row.what;
}

TEST(LinuxHostFacts, theMemoryIsReadFromMeminfo) {
    struct Row {
        const char* text;
        std::uint64_t expected;
    };
    const Row rows[] = {
        {"MemTotal:       16303380 kB\nMemFree: 1 kB\n", 16'303'380ULL * 1024},
        {"MemFree: 1 kB\nMemTotal: 1 kB\n", 1024},
        {"MemTotal: lots kB\n", 0},
        {"MemTotal:\n", 0},
        {"MemTotals: 5 kB\n", 0},
        {"", 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(totalMemory(row.text), row.expected) << row.text;
}

TEST(LinuxHostFacts, areReadBelowTheirRoot) {
    const TemporaryFolder root;
    root.write("etc/os-release", "PRETTY_NAME=\"Test OS 3\"\n");
    root.write("proc/cpuinfo", "model name\t: Test \xFF"
                               "Chip\n");
    root.write("proc/meminfo", "MemTotal: 2048 kB\n");
    const auto facts = hostFacts(root.path());
    EXPECT_TRUE(facts.system.starts_with("Test OS 3, Linux ")) << facts.system;
    EXPECT_EQ(facts.chip, "Test \uFFFDChip");
    EXPECT_EQ(facts.physicalMemory, 2048U * 1024);
}

TEST(LinuxHostFacts, missingFilesLeaveTheKernelsNameAlone) {
    const TemporaryFolder root;
    const auto facts = hostFacts(root.path());
    EXPECT_TRUE(facts.system.starts_with("Linux ")) << facts.system;
    EXPECT_EQ(facts.chip, "");
    EXPECT_EQ(facts.physicalMemory, 0U);
}

} // namespace
} // namespace kestrio
