#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"
#include "Kestrio/Resources/AppProcessScanner.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr std::uint64_t second = 1'000'000'000; // nanoseconds of CPU time

struct Bench {
    explicit Bench(Seconds maxBaselineAge = Seconds(40)) : scanner(table, time, maxBaselineAge) {}

    /// The scan's record of an application; absent when there is none.
    static std::optional<AppProcesses> app(const AppProcessScanner::Scan& scan, const std::string& id) {
        const auto found =
            std::find_if(scan.apps.begin(), scan.apps.end(), [&](const auto& one) { return one.id == id; });
        return found == scan.apps.end() ? std::nullopt : std::optional(*found);
    }

    AppProcessScanner::Scan scanAfter(Seconds span) {
        time.advance(span);
        return scanner.scan();
    }

    VirtualTime time{Date(1'700'000'000)};
    ScriptedProcessTable table;
    AppProcessScanner scanner;
};

ProcessCounters counters(std::uint64_t start, std::uint64_t cpu, std::uint64_t performanceCPU = 0) {
    return {.start = start, .image = 1, .cpu = cpu, .performanceCPU = performanceCPU};
}

TEST(AppProcessScanner, hasMemoryAndProcessesAloneInItsFirstScan) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon",
                    {.start = 5,
                     .cpu = second,
                     .performanceCPU = second,
                     .footprint = 100,
                     .resident = 80,
                     .pageins = 7,
                     .diskRead = 8,
                     .diskWritten = 9,
                     .energy = 10,
                     .wakeups = 11});
    const auto scan = bench.scanner.scan();
    EXPECT_FALSE(scan.hasCPU);
    ASSERT_EQ(scan.apps.size(), 1u);
    AppProcesses expected;
    expected.id = "/usr/bin/daemon";
    expected.name = "daemon";
    expected.footprint = 100;
    expected.resident = 80;
    expected.processes = {{10, 5}};
    EXPECT_EQ(scan.apps[0], expected);
    EXPECT_EQ(bench.scanner.processCount(), 1u);
}

TEST(AppProcessScanner, measuresIncreasesOverTheTimeBetween) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon",
                    {.start = 5,
                     .cpu = second,
                     .performanceCPU = second / 2,
                     .pageins = 7,
                     .diskRead = 8,
                     .diskWritten = 9,
                     .energy = 10,
                     .wakeups = 11});
    bench.scanner.scan();
    bench.table.readings[10] = {.start = 5,
                                .cpu = 7 * second,
                                .performanceCPU = 2 * second,
                                .footprint = 3,
                                .resident = 2,
                                .pageins = 17,
                                .diskRead = 28,
                                .diskWritten = 39,
                                .energy = 50,
                                .wakeups = 61};
    const auto scan = bench.scanAfter(Seconds(4));
    EXPECT_TRUE(scan.hasCPU);
    const auto app = Bench::app(scan, "/usr/bin/daemon").value();
    EXPECT_DOUBLE_EQ(app.cpuCores, 1.5);
    EXPECT_DOUBLE_EQ(app.cpu, 1.5 / 4);
    EXPECT_DOUBLE_EQ(app.pcoreShare.value(), 0.25);
    EXPECT_DOUBLE_EQ(app.recentPcoreShare.value(), 0.25);
    EXPECT_EQ(app.pageins, 10u);
    EXPECT_EQ(app.diskRead, 20u);
    EXPECT_EQ(app.diskWritten, 30u);
    EXPECT_EQ(app.energy, 40u);
    EXPECT_EQ(app.wakeups, 50u);
    EXPECT_EQ(app.footprint, 3u);
    EXPECT_EQ(app.resident, 2u);
}

TEST(AppProcessScanner, takesNoIncreaseAgainstAnEarlierProcessOfTheSameNumber) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(5, second));
    bench.scanner.scan();
    bench.table.readings[10] = counters(6, 3 * second);
    auto app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value();
    EXPECT_EQ(app.cpuCores, 0);
    EXPECT_EQ(app.pcoreShare, std::nullopt);
    EXPECT_EQ(app.processes, (std::vector<ProcessKey>{{10, 6}}));
    bench.table.readings[10] = counters(6, 4 * second);
    app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value();
    EXPECT_DOUBLE_EQ(app.cpuCores, 1);
}

TEST(AppProcessScanner, passesOverEveryIncreaseOfAProcessWhoseTimeFell) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", {.start = 5, .cpu = second, .wakeups = 1});
    bench.scanner.scan();
    bench.table.readings[10] = {.start = 5, .cpu = second - 1, .footprint = 9, .wakeups = 100};
    const auto app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value();
    EXPECT_EQ(app.cpuCores, 0);
    EXPECT_EQ(app.wakeups, 0u);
    EXPECT_EQ(app.footprint, 9u);
}

TEST(AppProcessScanner, countsNothingForASingleCounterThatFell) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon",
                    {.start = 5,
                     .cpu = 0,
                     .performanceCPU = 9,
                     .pageins = 9,
                     .diskRead = 9,
                     .diskWritten = 9,
                     .energy = 9,
                     .wakeups = 9});
    bench.scanner.scan();
    bench.table.readings[10] = {.start = 5,
                                .cpu = second,
                                .performanceCPU = 8,
                                .pageins = 8,
                                .diskRead = 8,
                                .diskWritten = 8,
                                .energy = 8,
                                .wakeups = 8};
    const auto app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value();
    EXPECT_DOUBLE_EQ(app.cpuCores, 1);
    EXPECT_EQ(app.pcoreShare, 0);
    EXPECT_EQ(app.pageins + app.diskRead + app.diskWritten + app.energy + app.wakeups, 0u);
}

TEST(AppProcessScanner, countsNothingThatCouldNotBeReadBefore) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(5, 0));
    bench.scanner.scan();
    bench.table.readings[10] = {.start = 5, .image = 1, .cpu = 1, .diskRead = 1'000'000, .energy = 5};
    const auto app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value();
    EXPECT_EQ(app.diskRead, 0u) << "of its whole life, not of this second";
    EXPECT_EQ(app.energy, 0u);
}

TEST(AppProcessScanner, throwsABaselineAwayThatIsTooOld) {
    const struct {
        double maxAge;
        double elapsed;
        bool hasCPU;
    } rows[] = {{40, 39.9, true}, {40, 40, false}, {40, 40.1, false}, {10, 9.9, true}, {10, 10.5, false}};
    for (const auto& row : rows) {
        Bench bench{Seconds(row.maxAge)};
        bench.table.run(10, "/usr/bin/daemon", counters(5, 0));
        bench.scanner.scan();
        bench.table.readings[10] = counters(5, second);
        const auto scan = bench.scanAfter(Seconds(row.elapsed));
        EXPECT_EQ(scan.hasCPU, row.hasCPU) << row.elapsed;
        const auto app = Bench::app(scan, "/usr/bin/daemon").value();
        EXPECT_EQ(app.cpuCores > 0, row.hasCPU) << row.elapsed;
        EXPECT_EQ(app.pcoreShare.has_value(), row.hasCPU) << row.elapsed;
        EXPECT_EQ(app.recentPcoreShare.has_value(), row.hasCPU) << row.elapsed;
        // Thrown away, it is replaced.
        bench.table.readings[10] = counters(5, 2 * second);
        EXPECT_DOUBLE_EQ(Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value().cpuCores, 1);
    }
}

TEST(AppProcessScanner, forgetsRecentSharesWithTheBaseline) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(5, 0, 0));
    bench.scanner.scan();
    bench.table.readings[10] = counters(5, second, second);
    EXPECT_TRUE(Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value().recentPcoreShare);
    EXPECT_FALSE(Bench::app(bench.scanAfter(Seconds(40.1)), "/usr/bin/daemon").value().recentPcoreShare);
    EXPECT_FALSE(Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value().recentPcoreShare);
}

TEST(AppProcessScanner, measuresNothingWhereNoTimeHasPassed) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(5, 0));
    bench.scanner.scan();
    bench.table.readings[10] = counters(5, second);
    const auto scan = bench.scanner.scan();
    EXPECT_TRUE(scan.hasCPU);
    EXPECT_EQ(scan.apps[0].cpuCores, 0);
    EXPECT_EQ(scan.apps[0].pcoreShare, std::nullopt);
}

TEST(AppProcessScanner, boundsAShareByOne) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(5, 0, 0));
    bench.scanner.scan();
    bench.table.readings[10] = counters(5, second, 3 * second);
    const auto app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value();
    EXPECT_EQ(app.pcoreShare, 1);
    EXPECT_EQ(app.recentPcoreShare, 1);
}

TEST(AppProcessScanner, remembersTheShareOfTheLastWhileWithLaterTimeWeighingMore) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(5, 0, 0));
    bench.scanner.scan();
    bench.table.readings[10] = counters(5, second, second);
    bench.scanAfter(Seconds(1));
    bench.table.readings[10] = counters(5, 2 * second, second);
    auto app = Bench::app(bench.scanAfter(Seconds(20)), "/usr/bin/daemon").value();
    EXPECT_EQ(app.pcoreShare, 0);
    const double decayed = std::exp(-1.0);
    EXPECT_NEAR(app.recentPcoreShare.value(), decayed / (decayed + 1), 1e-12);

    app = Bench::app(bench.scanAfter(Seconds(5)), "/usr/bin/daemon").value();
    EXPECT_EQ(app.pcoreShare, std::nullopt) << "no CPU time in this scan";
    EXPECT_NEAR(app.recentPcoreShare.value(), decayed / (decayed + 1), 1e-12);
}

TEST(AppProcessScanner, dropsARecentShareThatIsHardlyAnythingAnyMore) {
    for (const bool isAbove : {true, false}) {
        Bench bench;
        bench.table.run(10, "/usr/bin/daemon", counters(5, 0, 0));
        bench.scanner.scan();
        // After twenty seconds a little more, or a little less, than a thousand nanoseconds are left of it.
        bench.table.readings[10] = counters(5, isAbove ? 2719 : 2718, 100);
        EXPECT_TRUE(Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value().recentPcoreShare);
        const auto app = Bench::app(bench.scanAfter(Seconds(20)), "/usr/bin/daemon").value();
        EXPECT_EQ(app.recentPcoreShare.has_value(), isAbove);
    }
}

TEST(AppProcessScanner, putsAnApplicationsProcessesTogether) {
    Bench bench;
    const ProcessApplication painter{"org.example.Painter", "Painter", "/usr/bin/painter"};
    bench.table.run(30, "/usr/bin/painter", {.start = 1, .cpu = 0, .footprint = 10, .resident = 5});
    bench.table.run(10, "/usr/lib/painter/helper", {.start = 2, .cpu = 0, .footprint = 20, .resident = 6});
    bench.table.run(20, "/usr/bin/tool", {.start = 3, .cpu = 0, .footprint = 40, .resident = 7});
    bench.table.applications[30] = painter;
    bench.table.responsibles = {{10, 30}, {20, 30}, {30, 30}};
    bench.scanner.scan();
    for (auto& [process, reading] : bench.table.readings)
        reading.cpu += second / 2;
    const auto scan = bench.scanAfter(Seconds(1));
    ASSERT_EQ(scan.apps.size(), 1u);
    const auto& app = scan.apps[0];
    EXPECT_EQ(app.id, "org.example.Painter");
    EXPECT_EQ(app.bundleID, "org.example.Painter");
    EXPECT_EQ(app.name, "Painter");
    EXPECT_EQ(app.appPath, "/usr/bin/painter");
    EXPECT_EQ(app.footprint, 70u);
    EXPECT_EQ(app.resident, 18u);
    EXPECT_DOUBLE_EQ(app.cpuCores, 1.5);
    EXPECT_EQ(app.processes, (std::vector<ProcessKey>{{30, 1}, {10, 2}, {20, 3}})) << "in the order of visiting";
}

TEST(AppProcessScanner, putsProgramsOfOneBundleTogetherWhereverTheyLieInIt) {
    Bench bench;
    bench.table.run(1, "/Applications/Name.app/Contents/MacOS/Name", counters(1, 0));
    bench.table.run(2, "/Applications/Name.app/Contents/Helpers/Help.app/Contents/MacOS/Help", counters(2, 0));
    bench.table.bundles["/Applications/Name.app"] = {"org.example.Name"};
    const auto scan = bench.scanner.scan();
    ASSERT_EQ(scan.apps.size(), 1u);
    EXPECT_EQ(scan.apps[0].id, "/Applications/Name.app");
    EXPECT_EQ(scan.apps[0].name, "Name");
    EXPECT_EQ(scan.apps[0].appPath, "/Applications/Name.app");
    EXPECT_EQ(scan.apps[0].bundleID, "org.example.Name");
    EXPECT_EQ(scan.apps[0].processes.size(), 2u);
}

TEST(AppProcessScanner, findsTheOutermostBundleOfAPath) {
    const struct {
        const char* path;
        std::optional<std::string> bundle;
    } rows[] = {
        {"/Applications/Name.app/Contents/MacOS/Name", "/Applications/Name.app"},
        {"/A/Outer.app/Inner.app/x", "/A/Outer.app"},
        {"/A/Name.app.bundle/x", "/A/Name.app"},
        {"/A/One.app.bundle/Two.app/x", "/A/One.app.bundle/Two.app"},
        {"/A/Name.app", std::nullopt},
        {"/A/Name.application/x", std::nullopt},
        {"/usr/bin/daemon", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(AppProcessScanner::bundlePath(row.path), row.bundle) << row.path;
}

TEST(AppProcessScanner, givesABundleThatDoesNotExistNoPath) {
    Bench bench;
    bench.table.run(1, "/A/Name.app.bundle/x", counters(1, 0));
    const auto app = Bench::app(bench.scanner.scan(), "/A/Name.app").value();
    EXPECT_EQ(app.name, "Name");
    EXPECT_EQ(app.appPath, std::nullopt);
    EXPECT_EQ(app.bundleID, std::nullopt);
}

TEST(AppProcessScanner, namesABareProgramByItsFile) {
    const struct {
        const char* path;
        const char* name;
    } rows[] = {
        {"/usr/bin/daemon", "daemon"},           {"daemon", "daemon"},    {"/x/com.apple.foo", "foo"},
        {"/x/com.apple.", "com.apple."},         {"/x/com.apple.f", "f"}, {"/x/com.applefoo", "com.applefoo"},
        {"/x/acom.apple.foo", "acom.apple.foo"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(AppProcessScanner::programName(row.path), row.name) << row.path;
}

TEST(AppProcessScanner, takesInvisibleMarksOutOfNames) {
    Bench bench;
    bench.table.run(1, "/usr/bin/chat", counters(1, 0));
    bench.table.applications[1] = {"org.example.chat", "\u200EChat\u200F", "/usr/bin/chat"};
    EXPECT_EQ(bench.scanner.scan().apps[0].name, "Chat");
}

TEST(AppProcessScanner, callsAnApplicationWithoutANameByItsFile) {
    Bench bench;
    bench.table.run(1, "/usr/bin/chat", counters(1, 0));
    bench.table.applications[1] = {"org.example.chat", std::nullopt, "/usr/bin/chat"};
    EXPECT_EQ(bench.scanner.scan().apps[0].name, "chat");
}

TEST(AppProcessScanner, fallsBackToTheProcessItself) {
    const struct {
        const char* about;
        std::optional<pid_t> responsible;
        bool isPathKnown;
        const char* id;
    } rows[] = {
        {"nobody is responsible", std::nullopt, true, "/usr/bin/helper"},
        {"zero is nobody", 0, true, "/usr/bin/helper"},
        {"negative is nobody", -1, true, "/usr/bin/helper"},
        {"somebody is", 5, true, "/usr/bin/owner"},
        {"somebody without a path is", 5, false, "/usr/bin/helper"},
    };
    for (const auto& row : rows) {
        Bench bench;
        bench.table.run(10, "/usr/bin/helper", counters(1, 0));
        if (row.responsible)
            bench.table.responsibles[10] = *row.responsible;
        if (row.isPathKnown)
            bench.table.paths[5] = "/usr/bin/owner";
        const auto scan = bench.scanner.scan();
        ASSERT_EQ(scan.apps.size(), 1u) << row.about;
        EXPECT_EQ(scan.apps[0].id, row.id) << row.about;
    }
}

TEST(AppProcessScanner, leavesOutAProcessWithoutAnOwnerAndLooksAtItAfresh) {
    Bench bench;
    bench.table.run(10, "", counters(1, second));
    bench.table.paths.clear();
    EXPECT_TRUE(bench.scanner.scan().apps.empty());
    bench.table.paths[10] = "/usr/bin/late";
    bench.table.readings[10] = counters(1, 2 * second);
    const auto app = Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/late").value();
    EXPECT_EQ(app.cpuCores, 0) << "it has left no counters";
    bench.table.readings[10] = counters(1, 3 * second);
    EXPECT_DOUBLE_EQ(Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/late").value().cpuCores, 1);
}

TEST(AppProcessScanner, skipsWhatCannotBeReadAndNumbersBelowOne) {
    Bench bench;
    bench.table.run(0, "/kernel", counters(1, 0));
    bench.table.run(-4, "/kernel", counters(1, 0));
    bench.table.run(10, "/usr/bin/daemon", counters(1, 0));
    bench.table.listed.push_back(11);
    const auto scan = bench.scanner.scan();
    EXPECT_EQ(scan.apps.size(), 1u);
    EXPECT_EQ(bench.scanner.processCount(), 4u) << "whether or not they could be read";
}

TEST(AppProcessScanner, keepsItsBaselineWhereNothingIsListed) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(1, 0));
    bench.scanner.scan();
    bench.table.listed.clear();
    const auto none = bench.scanAfter(Seconds(1));
    EXPECT_TRUE(none.apps.empty());
    EXPECT_FALSE(none.hasCPU);
    EXPECT_EQ(bench.scanner.processCount(), 1u);
    bench.table.listed = {10};
    bench.table.readings[10] = counters(1, second);
    const auto scan = bench.scanAfter(Seconds(1));
    EXPECT_TRUE(scan.hasCPU);
    EXPECT_DOUBLE_EQ(scan.apps[0].cpuCores, 0.5) << "over both seconds";
}

TEST(AppProcessScanner, forgetsAProcessThatWasMissingFromOneScan) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(1, 0));
    bench.table.run(11, "/usr/bin/other", counters(1, 0));
    bench.scanner.scan();
    bench.table.readings.erase(10);
    bench.scanAfter(Seconds(1));
    bench.table.readings[10] = counters(1, second);
    EXPECT_EQ(Bench::app(bench.scanAfter(Seconds(1)), "/usr/bin/daemon").value().cpuCores, 0);
}

TEST(AppProcessScanner, looksUpAnOwnerOncePerProcessAndOncePerPath) {
    Bench bench;
    bench.table.run(10, "/usr/bin/daemon", counters(1, 0));
    bench.scanner.scan();
    const int first = bench.table.lookUps;
    bench.scanAfter(Seconds(1));
    EXPECT_EQ(bench.table.lookUps, first) << "nothing about a known process";
    bench.table.run(11, "/usr/bin/daemon", counters(2, 0));
    bench.scanAfter(Seconds(1));
    EXPECT_EQ(bench.table.lookUps, first + 2) << "who is responsible, and its path; no application, no bundle";
}

TEST(AppProcessScanner, looksUpTheOwnerAgainWhenAProcessBeginsToRunAnotherProgram) {
    Bench bench;
    bench.table.run(10, "/bin/sh", counters(1, second));
    bench.scanner.scan();
    bench.table.paths[10] = "/usr/bin/painter";
    bench.table.readings[10] = {.start = 1, .image = 2, .cpu = 2 * second};
    const auto scan = bench.scanAfter(Seconds(1));
    ASSERT_EQ(scan.apps.size(), 1u);
    EXPECT_EQ(scan.apps[0].id, "/usr/bin/painter");
    EXPECT_DOUBLE_EQ(scan.apps[0].cpuCores, 1) << "it is still the same process";
}

TEST(AppProcessScanner, keepsAnOwnerWhoseAncestorHasEnded) {
    Bench bench;
    bench.table.run(10, "/usr/bin/helper", counters(1, 0));
    bench.table.paths[5] = "/usr/bin/owner";
    bench.table.responsibles[10] = 5;
    bench.scanner.scan();
    bench.table.responsibles[10] = 10;
    EXPECT_EQ(bench.scanAfter(Seconds(1)).apps[0].id, "/usr/bin/owner");
}

TEST(AppProcessScanner, emptiesItsPathsAboveFourThousandAndThenResolvesOnlyWhatIsNew) {
    for (const int paths : {4'000, 4'001}) {
        Bench bench;
        for (int process = 1; process <= paths; ++process)
            bench.table.run(process, "/bin/" + std::to_string(process), counters(1, 0));
        EXPECT_EQ(bench.scanner.scan().apps.size(), static_cast<std::size_t>(paths));
        const int before = bench.table.lookUps;
        bench.table.run(9'999, "/bin/1", counters(2, 0));
        const auto scan = bench.scanAfter(Seconds(1));
        EXPECT_EQ(Bench::app(scan, "/bin/1").value().processes.size(), 2u);
        // Known: who is responsible, and its path. Emptied: whether it is an application as well.
        EXPECT_EQ(bench.table.lookUps - before, paths > 4'000 ? 3 : 2) << paths;
    }
}

TEST(AppProcessScanner, countsAtLeastOneCore) {
    VirtualTime time{Date(0)};
    ScriptedProcessTable table;
    table.processors = 0;
    AppProcessScanner scanner(table, time, Seconds(40));
    table.run(1, "/x", counters(1, 0));
    scanner.scan();
    table.readings[1] = counters(1, second);
    time.advance(Seconds(1));
    EXPECT_DOUBLE_EQ(scanner.scan().apps[0].cpu, 1);
}

TEST(AppProcessScanner, mergesTwoPathsOfOneApplication) {
    Bench bench;
    bench.table.run(1, "/opt/painter-1/painter", counters(1, 0));
    bench.table.run(2, "/opt/painter-2/painter", counters(2, 0));
    bench.table.applications[1] = {"painter", "Painter", "/opt/painter-1/painter"};
    bench.table.applications[2] = {"painter", "Painter", "/opt/painter-2/painter"};
    for (int scans = 0; scans < 2; ++scans) {
        const auto scan = bench.scanAfter(Seconds(1));
        ASSERT_EQ(scan.apps.size(), 1u);
        EXPECT_EQ(scan.apps[0].processes.size(), 2u);
        EXPECT_EQ(scan.apps[0].appPath, "/opt/painter-1/painter") << "of the first that was visited";
    }
}

} // namespace
} // namespace kestrio
