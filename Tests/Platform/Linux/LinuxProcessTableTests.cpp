#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/SessionMachinery.h"
#include "Tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t tick = 10'000'000; // nanoseconds

struct FakeProcess {
    std::string name = "program";
    pid_t parent = 1;
    std::uint64_t start = 100;
    std::uint64_t cpuTicks = 0;
    std::uint64_t faults = 0;
    int processor = 0;
    bool isKernelThread = false;
    std::uint64_t startCode = 4096;
};

/// A `/proc` and a `/sys` that a test fills.
class FakeSystem {
public:
    void run(pid_t process, const FakeProcess& is) const {
        file(process, "stat",
             std::to_string(process) + " (" + is.name + ") S " + std::to_string(is.parent) + " 1 1 0 -1 " +
                 (is.isKernelThread ? "2129984" : "4194304") + " 0 0 " + std::to_string(is.faults) + " 0 " +
                 std::to_string(is.cpuTicks) + " 0 0 0 20 0 1 0 " + std::to_string(is.start) + " 0 0 0 " +
                 std::to_string(is.startCode) + " 0 8192 0 0 0 0 0 0 0 0 0 17 " + std::to_string(is.processor) +
                 " 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
        file(process, "statm", "100 50 20 1 0 9 0\n");
        file(process, "status",
             "Name:\tx\nVmRSS:\t 200 kB\nRssAnon:\t 120 kB\nRssShmem:\t 8 kB\nVmSwap:\t 4 kB\n"
             "voluntary_ctxt_switches:\t77\n");
    }
    void file(pid_t process, const std::string& name, const std::string& text) const {
        folder.write("proc/" + std::to_string(process) + "/" + name, text);
    }
    void link(pid_t process, const std::string& name, const std::string& target) const {
        const auto path = folder.path() / "proc" / std::to_string(process) / name;
        fs::create_directories(path.parent_path());
        fs::remove(path);
        fs::create_symlink(target, path);
    }
    void runProgram(pid_t process, pid_t parent, const std::string& executable, const std::string& group = "/") const {
        run(process, {.name = executable.substr(executable.rfind('/') + 1).substr(0, 15), .parent = parent});
        link(process, "exe", executable);
        file(process, "cgroup", "0::" + group + "\n");
    }
    void end(pid_t process) const { fs::remove_all(folder.path() / "proc" / std::to_string(process)); }

    LinuxProcessTable::Setup setup() const {
        return {.processes = folder.path() / "proc", .sys = folder.path() / "sys", .clock = {}, .mostDescriptors = 0};
    }
    LinuxProcessTable table(ApplicationIdentity* identity = nullptr) const { return {setup(), identity}; }

    const TemporaryFolder folder;
};

TEST(LinuxProcessTable, listsWhatHasANumber) {
    const FakeSystem system;
    for (const pid_t process : {30, 4, 4711})
        system.run(process, {});
    system.folder.write("proc/meminfo", "");
    system.folder.write("proc/self", "");
    system.folder.write("proc/12x", "");
    auto table = system.table();
    EXPECT_EQ(table.processes(), (std::vector<pid_t>{4, 30, 4711}));
    system.end(30);
    EXPECT_EQ(table.processes(), (std::vector<pid_t>{4, 4711}));
    EXPECT_TRUE(LinuxProcessTable({.processes = "/nonexistent", .sys = "/nonexistent"}, nullptr).processes().empty());
}

TEST(LinuxProcessTable, countsTheCoresInUse) {
    const FakeSystem system;
    EXPECT_EQ(system.table().activeProcessorCount(), 1u);
    system.folder.write("sys/devices/system/cpu/online", "0-11\n");
    EXPECT_EQ(system.table().activeProcessorCount(), 12u);
}

TEST(LinuxProcessTable, readsTheCountersOfAProcess) {
    const FakeSystem system;
    system.run(5, {.start = 321, .cpuTicks = 7, .faults = 9});
    system.file(5, "io", "read_bytes: 4096\nwrite_bytes: 8192\n");
    auto table = system.table();
    table.processes();
    const auto counters = table.counters(5);
    ASSERT_TRUE(counters);
    EXPECT_EQ(counters->start, 321u);
    EXPECT_EQ(counters->cpu, 7 * tick);
    EXPECT_EQ(counters->footprint, 132u * 1024);
    EXPECT_EQ(counters->resident, 200u * 1024);
    EXPECT_EQ(counters->pageins, 9u);
    EXPECT_EQ(counters->diskRead, 4096u);
    EXPECT_EQ(counters->diskWritten, 8192u);
    EXPECT_EQ(counters->energy, std::nullopt);
    EXPECT_EQ(counters->wakeups, 77u);
}

TEST(LinuxProcessTable, readsSomebodyElsesProcessWithoutItsDisk) {
    const FakeSystem system;
    system.run(5, {});
    const auto counters = system.table().counters(5);
    ASSERT_TRUE(counters);
    EXPECT_EQ(counters->diskRead, std::nullopt);
    EXPECT_EQ(counters->diskWritten, std::nullopt);
    EXPECT_GT(counters->footprint, 0u);
}

TEST(LinuxProcessTable, leavesOutKernelThreadsAndProcessesThatVanish) {
    const FakeSystem system;
    system.run(2, {.name = "kthreadd", .parent = 0, .isKernelThread = true});
    system.run(5, {});
    auto table = system.table();
    EXPECT_EQ(table.processes().size(), 2u);
    EXPECT_EQ(table.counters(2), std::nullopt);
    EXPECT_EQ(table.counters(2), std::nullopt);
    EXPECT_TRUE(table.counters(5));
    system.end(5);
    EXPECT_EQ(table.counters(5), std::nullopt);
    EXPECT_EQ(table.counters(6), std::nullopt);
}

TEST(LinuxProcessTable, answersNothingForEachFileThatIsMissingOrBroken) {
    for (const std::string file : {"stat", "status"}) {
        const FakeSystem system;
        system.run(5, {});
        fs::remove(system.folder.path() / "proc/5" / file);
        EXPECT_EQ(system.table().counters(5), std::nullopt) << file;
    }
    const FakeSystem system;
    system.run(5, {});
    system.file(5, "stat", "5 (x) S garbage\n");
    EXPECT_EQ(system.table().counters(5), std::nullopt);
}

TEST(LinuxProcessTable, chargesEachIncreaseToTheCoreThatItRanOnLast) {
    const FakeSystem system;
    system.folder.write("sys/devices/system/cpu/online", "0-3\n");
    system.folder.write("sys/devices/cpu_atom/cpus", "2-3\n");
    auto table = system.table();
    const struct {
        std::uint64_t cpuTicks;
        int processor;
        std::uint64_t onPerformanceCores;
    } rows[] = {
        {100, 0, 0}, // before it was first read
        {110, 0, 10}, {130, 2, 10}, {135, 1, 15}, {135, 3, 15}, {136, 3, 15}, {140, 0, 19},
    };
    for (const auto& row : rows) {
        system.run(5, {.cpuTicks = row.cpuTicks, .processor = row.processor});
        const auto counters = table.counters(5).value();
        EXPECT_EQ(counters.cpu, row.cpuTicks * tick);
        EXPECT_EQ(counters.performanceCPU, row.onPerformanceCores * tick) << row.cpuTicks;
    }
}

TEST(LinuxProcessTable, doesNotTakeAReusedNumberForTheSameProcess) {
    const FakeSystem system;
    auto table = system.table();
    system.run(5, {.start = 100, .cpuTicks = 10});
    table.counters(5);
    system.run(5, {.start = 100, .cpuTicks = 20});
    const auto old = table.counters(5).value();
    system.run(5, {.start = 700, .cpuTicks = 30});
    const auto later = table.counters(5).value();
    EXPECT_EQ(old.start, 100u);
    EXPECT_EQ(old.performanceCPU, 10 * tick);
    EXPECT_EQ(later.start, 700u);
    EXPECT_EQ(later.performanceCPU, 0u);
}

TEST(LinuxProcessTable, tellsWhenAProcessBeginsToRunAnotherProgram) {
    const FakeSystem system;
    auto table = system.table();
    system.run(5, {.name = "sh"});
    const auto shell = table.counters(5).value();
    EXPECT_EQ(table.counters(5).value().image, shell.image);
    system.run(5, {.name = "painter"});
    const auto painter = table.counters(5).value();
    EXPECT_NE(painter.image, shell.image);
    system.run(5, {.name = "painter", .startCode = 8192});
    EXPECT_NE(table.counters(5).value().image, painter.image) << "the same program once more";
    EXPECT_EQ(painter.start, shell.start);
}

TEST(LinuxProcessTable, readsInFullOnlyWhatHasRun) {
    const FakeSystem system;
    std::uint64_t clock = 500;
    auto setup = system.setup();
    setup.clock = [&clock](pid_t) { return std::optional(clock); };
    setup.mostDescriptors = 1;
    LinuxProcessTable table(setup, nullptr);
    system.run(5, {.cpuTicks = 7, .faults = 1});
    table.processes();
    const auto first = table.counters(5).value();
    EXPECT_EQ(first.cpu, 500u) << "the clock, not the ticks";
    system.run(5, {.cpuTicks = 7, .faults = 2});
    EXPECT_EQ(table.counters(5), first) << "nothing is read while the clock stands still";
    clock = 600;
    EXPECT_EQ(table.counters(5).value().pageins, 2u);
    EXPECT_EQ(table.counters(5).value().cpu, 600u);
}

TEST(LinuxProcessTable, seesMemoryThatIsSwappedOutOfASleepingProcess) {
    const FakeSystem system;
    auto setup = system.setup();
    setup.clock = [](pid_t) { return std::optional<std::uint64_t>(500); };
    setup.mostDescriptors = 1;
    LinuxProcessTable table(setup, nullptr);
    system.run(5, {});
    table.counters(5);
    system.file(5, "status", "VmRSS:\t 20 kB\nRssAnon:\t 12 kB\nVmSwap:\t 400 kB\n");
    EXPECT_EQ(table.counters(5).value().resident, 200u * 1024) << "the pages have not moved yet";
    system.file(5, "statm", "100 5 2 1 0 9 0\n");
    EXPECT_EQ(table.counters(5).value().resident, 20u * 1024);
    EXPECT_EQ(table.counters(5).value().footprint, 412u * 1024);
}

TEST(LinuxProcessTable, tellsALaterProcessByItsStartWhereItKeepsNoFileOpen) {
    const FakeSystem system;
    auto setup = system.setup();
    setup.clock = [](pid_t) { return std::optional<std::uint64_t>(500); };
    LinuxProcessTable table(setup, nullptr);
    system.run(5, {.start = 100, .faults = 1});
    const auto first = table.counters(5).value();
    system.run(5, {.start = 100, .faults = 2});
    EXPECT_EQ(table.counters(5), first) << "nothing is read while the clock stands still";
    system.run(5, {.start = 200, .faults = 3});
    EXPECT_EQ(table.counters(5).value().start, 200u);
    EXPECT_EQ(table.counters(5).value().pageins, 3u);
}

TEST(LinuxProcessTable, readsBeyondItsShareOfDescriptorsToo) {
    const FakeSystem system;
    auto setup = system.setup();
    setup.clock = [](pid_t process) { return std::optional(static_cast<std::uint64_t>(process)); };
    setup.mostDescriptors = 2;
    for (pid_t process = 10; process < 20; ++process)
        system.run(process, {});
    LinuxProcessTable table(setup, nullptr);
    for (int scan = 0; scan < 3; ++scan) {
        ASSERT_EQ(table.processes().size(), 10u);
        for (pid_t process = 10; process < 20; ++process)
            EXPECT_EQ(table.counters(process).value().cpu, static_cast<std::uint64_t>(process));
    }
}

// --- Programs --------------------------------------------------------------------------------------------------------

TEST(ProgramPath, isThatOfTheExecutableOrOfTheScriptBehindAnInterpreter) {
    const struct {
        const char* about;
        const char* executable; // empty: not ours to see
        std::string arguments;  // separated by blanks here
        const char* path;
    } rows[] = {
        {"plain", "/usr/bin/painter", "painter --new", "/usr/bin/painter"},
        {"replaced while it runs", "/usr/bin/painter (deleted)", "painter", "/usr/bin/painter"},
        {"blanks and brackets", "/opt/A (b) c/painter", "painter", "/opt/A (b) c/painter"},
        {"not UTF-8", "/opt/caf\xE9", "", "/opt/caf\xEF\xBF\xBD"},
        {"script", "/usr/bin/python3.11", "python3 /usr/bin/tweaks", "/usr/bin/tweaks"},
        {"script of the folder it was started in", "/usr/bin/bash", "bash ../run.sh", "/home/person/run.sh"},
        {"a module", "/usr/bin/python3.11", "python3 -m http.server", "/usr/bin/python3.11"},
        {"a login shell", "/usr/bin/bash", "-bash", "/usr/bin/bash"},
        {"a command line", "/usr/bin/dash", "sh -c x", "/usr/bin/dash"},
        {"somebody else's, by path", "", "/usr/sbin/cupsd -l", "/usr/sbin/cupsd"},
        {"somebody else's, by title", "", "sshd: listening", "sleeper"},
        {"nothing", "", "", "sleeper"},
    };
    for (const auto& row : rows) {
        const FakeSystem system;
        system.run(5, {.name = "sleeper"});
        system.link(5, "cwd", "/home/person/work");
        if (*row.executable != '\0')
            system.link(5, "exe", row.executable);
        auto arguments = row.arguments;
        std::replace(arguments.begin(), arguments.end(), ' ', '\0');
        if (!arguments.empty())
            system.file(5, "cmdline", arguments + '\0');
        EXPECT_EQ(system.table().programPath(5), row.path) << row.about;
    }
    const FakeSystem system;
    system.run(2, {.name = "kworker/0:1", .isKernelThread = true});
    EXPECT_EQ(system.table().programPath(2), std::nullopt);
    EXPECT_EQ(system.table().programPath(3), std::nullopt);
}

TEST(ProgramPath, insideAFlatpakIsThePlaceOnTheHost) {
    const FakeSystem system;
    system.run(5, {});
    system.link(5, "exe", "/app/lib/painter/painter");
    EXPECT_EQ(system.table().programPath(5), "/app/lib/painter/painter");
    system.file(5, "root/.flatpak-info",
                "[Application]\nname=org.example.Painter\n[Instance]\napp-path=/var/lib/flatpak/app/painter/files\n");
    EXPECT_EQ(system.table().programPath(5), "/var/lib/flatpak/app/painter/files/lib/painter/painter");
}

TEST(SessionMachinery, isKnownByTheKernelsShortNamesToo) {
    for (const auto* name : {"systemd", "gnome-shell", "gdm-session-worker", "gdm-session-wor", "Xsession", "openbox"})
        EXPECT_TRUE(isSessionMachinery(name)) << name;
    for (const auto* name : {"", "firefox", "gdm-session-wo", "gnome-terminal-server", "bash", "system"})
        EXPECT_FALSE(isSessionMachinery(name)) << name;
}

TEST(ResponsibleProcess, isTheHighestAncestorBelowTheSessionsMachinery) {
    const FakeSystem system;
    system.runProgram(1, 0, "/usr/lib/systemd/systemd");
    system.runProgram(10, 1, "/usr/lib/systemd/systemd");
    system.runProgram(20, 10, "/usr/bin/openbox");
    system.runProgram(30, 20, "/usr/bin/painter");
    system.runProgram(31, 30, "/usr/lib/painter/helper");
    system.runProgram(32, 31, "/usr/lib/painter/helper");
    system.runProgram(40, 1, "/usr/sbin/daemon");
    system.runProgram(41, 40, "/usr/sbin/worker");
    system.runProgram(50, 49, "/usr/bin/orphan"); // its parent has just ended
    auto table = system.table();
    const std::vector<std::pair<pid_t, pid_t>> rows{{32, 30}, {31, 30}, {30, 30}, {20, 20},
                                                    {10, 10}, {1, 1},   {41, 40}, {40, 40}};
    for (const auto& [process, responsible] : rows)
        EXPECT_EQ(table.responsible(process), responsible) << process;
    EXPECT_TRUE(table.responsible(50)) << "whoever it is, it ends";
    EXPECT_EQ(table.responsible(99), std::nullopt);
}

TEST(ResponsibleProcess, isKnownWhereMachineryBelongsToSomebodyElse) {
    const FakeSystem system;
    system.run(10, {.name = "gdm-session-wor", .parent = 1});
    system.runProgram(11, 10, "/usr/bin/painter");
    EXPECT_EQ(system.table().responsible(11), 11);
}

TEST(ResponsibleProcess, isTheFirstOfTheUnitThatTheDesktopMade) {
    const FakeSystem system;
    const std::string unit = "/user.slice/app.slice/app-gnome-org.example.Painter-30.scope";
    system.runProgram(20, 1, "/usr/bin/some-launcher", "/user.slice/app.slice/app-gnome-launcher-20.scope");
    system.runProgram(30, 20, "/usr/bin/painter", unit);
    system.runProgram(31, 30, "/usr/lib/painter/helper", unit);
    system.runProgram(32, 31, "/usr/bin/command", "/user.slice/other.scope");
    auto table = system.table();
    EXPECT_EQ(table.responsible(30), 30);
    EXPECT_EQ(table.responsible(31), 30);
    EXPECT_EQ(table.responsible(32), 30) << "a group of no application belongs to whoever started it";
}

TEST(ResponsibleProcess, isFoundInACircleOfParents) {
    const FakeSystem system;
    system.runProgram(30, 31, "/usr/bin/a");
    system.runProgram(31, 30, "/usr/bin/b");
    EXPECT_TRUE(system.table().responsible(30));
}

/// A system with installed applications.
class InstalledSystem : public FakeSystem {
public:
    InstalledSystem() {
        install("painter", "Painter", "painter");
        install("terminal", "Terminal", "terminal", "Categories=System;TerminalEmulator;\n");
        install("browser", "Browser", "/usr/bin/browser %u");
        install("editor", "Editor", "editor", "Terminal=true\n");
        install("opener", "Opener", "opener", "NoDisplay=true\n");
        runProgram(1, 0, "/usr/lib/systemd/systemd");
    }
    void install(const std::string& id, const std::string& name, const std::string& exec,
                 const std::string& more = "") const {
        folder.write("applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec + "\n" + more);
    }

    VirtualTime time{Date(0)};
    DesktopEntries entries{{folder.path() / "applications"}, "en", time};
    ApplicationIdentity identity{entries, IdentityCatalogue::builtIn(), folder.path() / "proc"};
};

TEST(ResponsibleProcess, isTheNearestApplicationThatPeopleStart) {
    InstalledSystem system;
    system.runProgram(10, 1, "/usr/bin/terminal");
    system.runProgram(11, 10, "/usr/bin/bash");
    system.runProgram(12, 11, "/usr/bin/make");
    system.runProgram(13, 11, "/usr/bin/browser");
    system.runProgram(14, 13, "/usr/lib/browser/tab");
    system.runProgram(15, 11, "/usr/bin/editor");
    system.runProgram(16, 11, "/usr/bin/opener");
    auto table = system.table(&system.identity);
    const std::vector<std::pair<pid_t, pid_t>> rows{{10, 10}, {11, 10}, {12, 10},
                                                    {13, 13}, {14, 13}, {15, 10}, // shown by the terminal
                                                    {16, 10}};
    for (const auto& [process, responsible] : rows)
        EXPECT_EQ(table.responsible(process), responsible) << process;
}

TEST(ResponsibleProcess, isTheFirstOfThoseThatRunTheSameApplication) {
    InstalledSystem system;
    system.runProgram(10, 1, "/usr/bin/terminal");
    system.runProgram(11, 10, "/usr/bin/bash");
    system.runProgram(20, 11, "/usr/bin/browser");
    system.runProgram(21, 20, "/usr/bin/browser");
    system.runProgram(22, 21, "/usr/bin/browser");
    system.runProgram(23, 22, "/usr/lib/browser/tab");
    system.runProgram(30, 11, "/usr/bin/terminal"); // another one, started from the first
    auto table = system.table(&system.identity);
    const std::vector<std::pair<pid_t, pid_t>> rows{{20, 20}, {21, 20}, {22, 20}, {23, 20}, {30, 30}};
    for (const auto& [process, responsible] : rows)
        EXPECT_EQ(table.responsible(process), responsible) << process;
}

TEST(ProcessApplication, isWhatIsInstalled) {
    InstalledSystem system;
    system.runProgram(10, 1, "/usr/bin/painter");
    system.runProgram(11, 1, "/usr/bin/unheard-of");
    auto table = system.table(&system.identity);
    EXPECT_EQ(table.application(10), (ProcessApplication{"painter", "Painter", "/usr/bin/painter"}));
    EXPECT_EQ(table.application(11), std::nullopt);
    EXPECT_EQ(system.table().application(10), std::nullopt) << "without anybody to ask";
}

TEST(ProcessApplication, isTheUnitsUnlessTheProgramIsAnotherOne) {
    InstalledSystem system;
    const std::string unit = "/app.slice/app-gnome-painter-10.scope";
    system.install("painter-web", "Painter on the web", "browser --app=painter");
    system.runProgram(10, 1, "/usr/lib/painter/start", unit);
    system.runProgram(11, 10, "/usr/bin/browser", unit);
    system.runProgram(12, 1, "/usr/bin/browser", "/app.slice/app-gnome-painter\\x2dweb-12.scope");
    auto table = system.table(&system.identity);
    EXPECT_EQ(table.application(10).value().bundleIdentifier, "painter");
    EXPECT_EQ(table.application(11).value().localizedName, "Browser") << "that the painter has opened";
    EXPECT_EQ(table.application(12).value().bundleIdentifier, "painter-web") << "which the browser runs";
}

TEST(ProcessApplication, hasABundleWhereAFolderIs) {
    const FakeSystem system;
    system.folder.write("Name.app/x", "");
    auto table = system.table();
    EXPECT_EQ(table.bundle((system.folder.path() / "Name.app").string()), ApplicationBundle());
    EXPECT_EQ(table.bundle((system.folder.path() / "Other.app").string()), std::nullopt);
}

} // namespace
} // namespace kestrio
