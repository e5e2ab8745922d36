// The readers of cores, memory and drives on captured machines that differ, and the bounds of their rules.
#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/LinuxDisks.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxMemoryTraffic.h"
#include "Tests/Support/FileTree.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <map>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr std::uint64_t kilobyte = 1024;

class Machine {
public:
    explicit Machine(const std::string& name) {
        unpackTree(std::filesystem::path(KESTRIO_FIXTURES) / (name + ".tree"), folder.path());
    }
    std::filesystem::path processes() const { return folder.path() / "proc"; }
    std::filesystem::path sys() const { return folder.path() / "sys"; }
    LinuxKernelCounters counters() const { return LinuxKernelCounters(processes(), sys()); }
    LinuxDisks disks() const { return LinuxDisks({}, processes(), sys()); }

    const TemporaryFolder folder;
};

std::uint64_t pages(std::uint64_t count) {
    return count * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

// --- Cores -----------------------------------------------------------------------------------------------------------

TEST(CoreList, isReadInRanges) {
    const struct {
        const char* text;
        std::vector<int> cores;
    } rows[] = {
        {"0", {0}},
        {"0-3", {0, 1, 2, 3}},
        {"0-1,4,6-7", {0, 1, 4, 6, 7}},
        {"4,0-1,1", {0, 1, 4}},
        {"", {}},
        {"x", {}},
        {"1-", {}},
        {"-1", {}},
        {"3-1", {}},
        {"0,x,2", {0, 2}},
        {",,", {}},
        {"0-2147483647", {}},
        {"99999999999", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseCoreList(row.text), row.cores) << row.text;
    EXPECT_EQ(parseCoreList("0-900000").size(), 4096u);
}

TEST(CoreClasses, areToldOnEachMachine) {
    const struct {
        const char* machine;
        CoreClasses classes;
    } rows[] = {
        {"hybrid-x86", {{4, 5, 6, 7}, {0, 1, 2, 3}}},
        {"arm-two-clusters", {{0, 1, 2, 3}, {4, 5}}},
        {"laptop-zram", {{}, {0, 1}}},
        {"spinning-disk", {{}, {0}}},
        {"virtual-machine", {{}, {0}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readCoreClasses(Machine(row.machine).sys()), row.classes) << row.machine;
}

TEST(CoreClasses, haveABoundBetweenLargeAndSmall) {
    const struct {
        std::vector<int> capacities;
        std::vector<int> efficiency;
    } rows[] = {
        {{1024, 1024}, {}},      {{1024, 717}, {}},               // 70 %
        {{1024, 716}, {1}},      {{250, 250, 870, 1024}, {0, 1}}, // three clusters
        {{1024, 1009, 995}, {}},                                  // one design, other frequencies
    };
    for (const auto& row : rows) {
        const TemporaryFolder sys;
        sys.write("devices/system/cpu/online", "0-" + std::to_string(row.capacities.size() - 1) + "\n");
        for (std::size_t core = 0; core < row.capacities.size(); ++core)
            sys.write("devices/system/cpu/cpu" + std::to_string(core) + "/cpu_capacity",
                      std::to_string(row.capacities[core]) + "\n");
        EXPECT_EQ(readCoreClasses(sys.path()).efficiency, row.efficiency) << testing::PrintToString(row.capacities);
    }
}

TEST(CoreClasses, ofNothingButSmallCoresAreOne) {
    const TemporaryFolder sys;
    sys.write("devices/system/cpu/online", "0-3\n");
    sys.write("devices/cpu_atom/cpus", "0-3\n");
    EXPECT_EQ(readCoreClasses(sys.path()), (CoreClasses{{}, {0, 1, 2, 3}}));
}

TEST(CoreTimes, areBusyAndTotalTicks) {
    const auto cores =
        parseCoreTimes("cpu  1 2 3 4 5 6 7 8 9 10\ncpu0 10 2 30 400 50 6 7 8 9 1\ncpu12 1 0 0 1\nintr 5\n"
                       "cpu3 1 1 1 1\n");
    ASSERT_EQ(cores.size(), 2u);
    EXPECT_EQ(cores[0], std::pair(0, CoreTime{63, 513})) << "waiting is idle, guests are counted with their hosts";
    EXPECT_EQ(cores[1], std::pair(12, CoreTime{1, 2}));
    EXPECT_TRUE(parseCoreTimes("").empty());
    EXPECT_TRUE(parseCoreTimes("intr 1\n").empty());
}

TEST(LinuxKernelCounters, tellEfficiencyCoresFirst) {
    const Machine machine("hybrid-x86");
    auto counters = machine.counters();
    EXPECT_EQ(counters.coreCounts(), (CoreCounts{4, 4}));
    const auto times = counters.coreTimes();
    ASSERT_EQ(times.size(), 8u);
    EXPECT_EQ(times[0], (CoreTime{15, 9115}));
    EXPECT_EQ(times[3], CoreTime()) << "switched off from the beginning";
    EXPECT_EQ(times[4], (CoreTime{136, 9176}));
    EXPECT_EQ(times[7], (CoreTime{440, 9440}));
}

TEST(LinuxKernelCounters, keepTheLastTimesOfACoreThatIsSwitchedOff) {
    const Machine machine("laptop-zram");
    auto counters = machine.counters();
    const auto before = counters.coreTimes();
    machine.folder.write("proc/stat", "cpu  9 0 0 9\ncpu0 9 0 0 90\n");
    const auto after = counters.coreTimes();
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0], (CoreTime{9, 99}));
    EXPECT_EQ(after[1], before[1]);
}

// --- Memory ----------------------------------------------------------------------------------------------------------

TEST(LinuxKernelCounters, tellMemoryByUse) {
    const Machine machine("hybrid-x86");
    auto counters = machine.counters();
    EXPECT_EQ(counters.memory(), (MemoryStatistics{.total = 16'000'000 * kilobyte,
                                                   .internal = 4'600'000 * kilobyte,
                                                   .purgeable = 0,
                                                   .wired = 660'000 * kilobyte,
                                                   .compressor = 200'000 * kilobyte,
                                                   .external = 5'000'000 * kilobyte,
                                                   .swapIns = pages(1200),
                                                   .swapOuts = pages(3400)}));
    EXPECT_EQ(counters.swap(), (SwapUse{1'000'000 * kilobyte, 8'000'000 * kilobyte}));
    EXPECT_EQ(counters.chipName(), "13th Gen Intel(R) Core(TM) i5-1335U");
}

TEST(LinuxKernelCounters, countWhatACompressedDriveTakes) {
    const Machine machine("laptop-zram");
    auto counters = machine.counters();
    EXPECT_EQ(counters.memory().value().compressor, 768'000'000u);
    EXPECT_EQ(parseCompressedDriveMemory("1 2 3 4\n"), 3u);
    for (const auto* text : {"", "1 2", "1 2 x"})
        EXPECT_EQ(parseCompressedDriveMemory(text), std::nullopt) << text;
}

TEST(LinuxKernelCounters, answerWithLessOnAMachineThatTellsLess) {
    const Machine machine("virtual-machine");
    auto counters = machine.counters();
    EXPECT_EQ(counters.chipName(), "");
    EXPECT_EQ(counters.coreCounts(), (CoreCounts{0, 1}));
    EXPECT_TRUE(counters.coreTimes().empty());
    EXPECT_EQ(counters.memory(), MemoryStatistics{.total = 2'000'000 * kilobyte});
    EXPECT_EQ(counters.swap(), SwapUse());
    EXPECT_EQ(counters.memoryPressure(), MemoryPressure::normal);

    const TemporaryFolder empty;
    LinuxKernelCounters nothing(empty.path(), empty.path());
    EXPECT_EQ(nothing.memory(), std::nullopt);
    EXPECT_EQ(nothing.swap(), std::nullopt);
    EXPECT_TRUE(nothing.coreTimes().empty());
    EXPECT_EQ(nothing.memoryPressure(), MemoryPressure::normal);
}

TEST(MemoryInfo, needsTheTotalAlone) {
    EXPECT_EQ(parseMemoryInfo("MemTotal: 8 kB\n"), MemoryInfo{.total = 8 * kilobyte});
    for (const auto* text : {"", "MemFree: 8 kB\n", "MemTotal: x\n", "MemTotal: 0 kB\n", "MemTotal 8\n"})
        EXPECT_EQ(parseMemoryInfo(text), std::nullopt) << text;
    EXPECT_EQ(parseMemoryInfo("MemTotal: 8 kB\nCached: 3 kB\nSwapCached: 5 kB\n").value().cached, 3 * kilobyte);
}

TEST(SwapTraffic, isInPages) {
    EXPECT_EQ(parseSwapTraffic("pgpgin 1\npswpin 2\npswpout 3\npswpin_other 9\n"), (SwapTraffic{2, 3}));
    EXPECT_EQ(parseSwapTraffic(""), SwapTraffic());
}

TEST(MemoryStall, isReadFromBothLines) {
    EXPECT_EQ(
        parseMemoryStall("some avg10=1.50 avg60=2.00 avg300=3 total=4\nfull avg10=0.25 avg60=0 avg300=0 total=1\n"),
        (MemoryStall{1.5, 0.25}));
    for (const auto* text : {"", "some avg10=1 avg60=2\n", "full avg10=1\n", "some avg10=x\nfull avg10=1\n",
                             "some avg60=1\nfull avg60=1\n", "some avg10=nan\nfull avg10=0\n"})
        EXPECT_EQ(parseMemoryStall(text), std::nullopt) << text;
}

TEST(MemoryPressure, hasItsBoundsExactly) {
    using enum MemoryPressure;
    const struct {
        std::optional<MemoryStall> stall;
        std::optional<std::uint64_t> availableOf1000;
        MemoryPressure pressure;
    } rows[] = {
        {{}, {}, normal},
        {MemoryStall{0, 0}, 1000, normal},
        {MemoryStall{9.99, 0}, 1000, normal},
        {MemoryStall{10, 0}, 1000, warning},
        {MemoryStall{100, 9.99}, 1000, warning},
        {MemoryStall{10, 10}, 1000, critical},
        {MemoryStall{0, 10}, 1000, critical},
        {MemoryStall{0, 0}, 100, normal}, // 10 %
        {MemoryStall{0, 0}, 99, warning},
        {MemoryStall{0, 0}, 40, warning}, // 4 %
        {MemoryStall{0, 0}, 39, critical},
        {MemoryStall{10, 0}, 39, critical},
        {{}, 99, warning},
        {{}, 0, critical},
        {MemoryStall{10, 0}, {}, warning},
    };
    for (const auto& row : rows) {
        const MemoryInfo memory{.total = 1000, .available = row.availableOf1000};
        EXPECT_EQ(memoryPressure(row.stall, memory), row.pressure)
            << (row.stall ? row.stall->some : -1) << " " << (row.stall ? row.stall->full : -1) << " "
            << row.availableOf1000.value_or(9999);
    }
    EXPECT_EQ(memoryPressure(MemoryStall{10, 0}, std::nullopt), warning);
}

TEST(MemoryPressure, isToldOnEachMachine) {
    using enum MemoryPressure;
    const std::map<std::string, MemoryPressure> rows{{"hybrid-x86", normal},
                                                     {"arm-two-clusters", warning},
                                                     {"laptop-zram", warning},
                                                     {"spinning-disk", normal},
                                                     {"virtual-machine", normal}};
    for (const auto& [machine, pressure] : rows)
        EXPECT_EQ(Machine(machine).counters().memoryPressure(), pressure) << machine;
}

// --- Drives ----------------------------------------------------------------------------------------------------------

TEST(LinuxDisks, sumTheMachinesOwnDrivesAlone) {
    const struct {
        const char* machine;
        std::optional<DiskCounters> counters;
    } rows[] = {
        {"hybrid-x86", DiskCounters{80'000 * 512, 160'000 * 512, 3'000, 1'400'000'000}},
        {"arm-two-clusters", DiskCounters{100 * 512, 200 * 512, 30, 11'000'000}},
        {"laptop-zram", DiskCounters{1'000 * 512, 2'000 * 512, 300, 30'000'000}},
        {"spinning-disk", DiskCounters{400'000ULL * 512, 240'000ULL * 512, 8'000, 150'000'000'000}},
        {"virtual-machine", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Machine(row.machine).disks().internalDrives(), row.counters) << row.machine;
    const TemporaryFolder empty;
    EXPECT_EQ(LinuxDisks({}, empty.path(), empty.path()).internalDrives(), std::nullopt);
}

TEST(LinuxDisks, countSeveralDrivesTogetherAndForgetOneThatIsTakenOut) {
    const Machine machine("spinning-disk");
    auto disks = machine.disks();
    const auto one = fileText(machine.processes() / "diskstats");
    unpackTree(machine.folder.write("more", "== sys/block/sdb -> ../devices/pci0/ata3/host3/block/sdb\n"
                                            "== sys/devices/pci0/ata3/host3/block/sdb/removable\n0\n"),
               machine.folder.path());
    machine.folder.write("proc/diskstats", one + "   8  16 sdb 1 0 2 3 4 0 6 7 0 0 0\n");
    EXPECT_EQ(disks.internalDrives().value().operations, 8'005u);
    machine.folder.write("proc/diskstats", one);
    EXPECT_EQ(disks.internalDrives().value().operations, 8'000u);
}

TEST(LinuxDisks, leaveOutWhatComesFromOutside) {
    const struct {
        const char* name;
        const char* tree;
        bool isInternal;
    } rows[] = {
        {"sata", "== sys/block/d -> ../devices/pci0/ata1/host0/block/d\n", true},
        {"virtio", "== sys/block/d -> ../devices/pci0000:00/0000:00:02.0/virtio1/block/d\n", true},
        {"usb", "== sys/block/d -> ../devices/pci0/usb1/1-2/host9/block/d\n", false},
        {"firewire", "== sys/block/d -> ../devices/pci0/fw1/fw1.0/host9/block/d\n", false},
        {"iscsi", "== sys/block/d -> ../devices/platform/host2/session1/block/d\n", false},
        {"fibre", "== sys/block/d -> ../devices/pci0/host2/rport-2:0-1/block/d\n", false},
        {"rbd", "== sys/block/d -> ../devices/rbd/0/block/d\n", false},
        {"raid", "== sys/block/d -> ../devices/virtual/block/d\n", false},
        {"removable", "== sys/block/d -> ../devices/pci0/ata1/d\n== sys/devices/pci0/ata1/d/removable\n1\n", false},
        {"thunderbolt",
         "== sys/block/d -> ../devices/pci0/nvme0/d\n== sys/devices/pci0/nvme0/d/device/device/removable\nremovable\n",
         false},
        {"built-in port",
         "== sys/block/d -> ../devices/pci0/nvme0/d\n== sys/devices/pci0/nvme0/d/device/device/removable\nfixed\n",
         true},
        {"no such device", "", false},
    };
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        unpackTree(folder.write("tree", row.tree), folder.path());
        EXPECT_EQ(isInternalDrive(folder.path() / "sys", "d"), row.isInternal) << row.name;
    }
    const TemporaryFolder folder;
    unpackTree(folder.write("tree", "== sys/block/cciss!c0d0 -> ../devices/pci0/cciss0/c0d0\n"), folder.path());
    EXPECT_TRUE(isInternalDrive(folder.path() / "sys", "cciss/c0d0"));
    EXPECT_FALSE(isInternalDrive(folder.path() / "sys", ""));
}

TEST(DiskStatistics, leaveOutMalformedLines) {
    const auto lines =
        parseDiskStatistics("8 0 sda 1 2 3 4 5 6 7 8 9 10 11\n8 1 sda1 1 2 3\n8 2 sda2 a b c d e f g h\n\n"
                            "garbage\n8 3 sdb 1 1 1 1 1 1 1 1");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], (DiskLine{"sda", {3 * 512, 7 * 512, 6, 12'000'000}}));
    EXPECT_EQ(lines[1].device, "sdb");
}

// --- Memory traffic --------------------------------------------------------------------------------------------------

/// Counters that a test sets, by the event that they were opened for.
struct Counts {
    std::map<std::pair<std::uint64_t, int>, std::uint64_t> values; // by config and core
    std::optional<std::uint64_t> forbidden;                        // a config that may not be opened
    bool fails = false;

    LinuxMemoryTraffic::Opener opener() {
        return [this](const PerformanceEvent& event, int core) -> LinuxMemoryTraffic::Reader {
            if (event.config == forbidden)
                return {};
            return [this, key = std::pair(event.config, core)]() -> std::optional<std::uint64_t> {
                return fails ? std::nullopt : std::optional(values[key]);
            };
        };
    }
};

TEST(LinuxMemoryTraffic, readsTheCountersThatAlwaysRun) {
    const Machine machine("hybrid-x86");
    Counts counts;
    LinuxMemoryTraffic traffic(machine.sys(), counts.opener());
    EXPECT_TRUE(traffic.hasControllers());
    counts.values = {{{0x20ff, 0}, 1'000}, {{0x30ff, 0}, 500}};
    EXPECT_EQ(traffic.channels(), (std::vector<MemoryChannel>{{"", 64'000, 32'000}}));
    counts.fails = true;
    EXPECT_EQ(traffic.channels(), std::nullopt);
}

TEST(LinuxMemoryTraffic, isAbsentWhereItIsNotPermittedOrNotThere) {
    Counts counts{.values = {}, .forbidden = 0x30ff, .fails = false};
    LinuxMemoryTraffic halfForbidden(Machine("hybrid-x86").sys(), counts.opener());
    EXPECT_TRUE(halfForbidden.hasControllers());
    EXPECT_EQ(halfForbidden.channels(), std::nullopt);
    LinuxMemoryTraffic none(Machine("laptop-zram").sys(), counts.opener());
    EXPECT_FALSE(none.hasControllers());
    EXPECT_EQ(none.channels(), std::nullopt);
}

TEST(LinuxMemoryTraffic, sumsTheControllersOfAllSockets) {
    const TemporaryFolder sys;
    for (const std::string device : {"uncore_imc_0", "uncore_imc_1"}) {
        const auto folder = "bus/event_source/devices/" + device + "/";
        sys.write(folder + "type", "14\n");
        sys.write(folder + "cpumask", "0,28\n");
        sys.write(folder + "format/event", "config:0-7\n");
        sys.write(folder + "format/umask", "config:8-15\n");
        for (const std::string event : {"cas_count_read", "cas_count_write"}) {
            sys.write(folder + "events/" + event,
                      event == "cas_count_read" ? "event=0x04,umask=0x03\n" : "event=0x04,umask=0x0c\n");
            sys.write(folder + "events/" + event + ".scale", "6.103515625e-5\n");
            sys.write(folder + "events/" + event + ".unit", "MiB\n");
        }
    }
    Counts counts;
    counts.values = {{{0x304, 0}, 1}, {{0x304, 28}, 2}, {{0xc04, 0}, 4}, {{0xc04, 28}, 8}};
    EXPECT_EQ(LinuxMemoryTraffic(sys.path(), counts.opener()).channels(),
              (std::vector<MemoryChannel>{{"", 2 * 3 * 64, 2 * 12 * 64}}));
}

TEST(LinuxMemoryTraffic, opensNothingUnlessTheKernelLetsIt) {
    // An event of a device that does not exist.
    EXPECT_FALSE(LinuxMemoryTraffic::openCounter({.type = 0xFFFF'FF00, .config = 1}, 0));
}

TEST(PerformanceEvent, isPutTogetherFromItsTerms) {
    const auto shiftOf = [](std::string_view name) -> std::optional<unsigned> {
        if (name == "event")
            return 0;
        if (name == "umask")
            return 8;
        return name == "edge" ? std::optional(18U) : std::nullopt;
    };
    EXPECT_EQ(parseEventConfig("event=0x04,umask=0x03", shiftOf), 0x304u);
    EXPECT_EQ(parseEventConfig("event=10,edge", shiftOf), 0x4000Au);
    EXPECT_EQ(parseEventConfig("", shiftOf), 0u);
    for (const auto* text : {"other=1", "event=", "event=x", "event=0xg", "event=1,,umask=2", "=1"})
        EXPECT_EQ(parseEventConfig(text, shiftOf), std::nullopt) << text;
}

TEST(PerformanceEvent, hasFieldsAndUnits) {
    EXPECT_EQ(parseFormatShift("config:8-15"), 8u);
    EXPECT_EQ(parseFormatShift("config:18"), 18u);
    for (const auto* text : {"", "config1:0-7", "config:", "config:x", "config:64", "event"})
        EXPECT_EQ(parseFormatShift(text), std::nullopt) << text;
    EXPECT_EQ(parseBytesPerCount("6.103515625e-5", "MiB"), 64);
    EXPECT_EQ(parseBytesPerCount("1", "Joules"), std::nullopt);
    EXPECT_EQ(parseBytesPerCount("0", "MiB"), std::nullopt);
    EXPECT_EQ(parseBytesPerCount("x", "MiB"), std::nullopt);
}

} // namespace
} // namespace kestrio
