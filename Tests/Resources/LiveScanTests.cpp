// The scanner on the real processes of this machine.
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Resources/AppProcessScanner.h"
#include "Tests/Support/AllocationCounter.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

std::uint64_t ownTime() {
    rusage use{};
    getrusage(RUSAGE_SELF, &use);
    const auto nanos = [](const timeval& time) {
        return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 +
               static_cast<std::uint64_t>(time.tv_usec) * 1000;
    };
    return nanos(use.ru_utime) + nanos(use.ru_stime);
}

/// A child that does what it is told, one letter each, and answers with its own CPU time.
class Child {
public:
    explicit Child(const std::function<void(char)>& work) {
        int orders[2];
        int answers[2];
        if (pipe2(orders, O_CLOEXEC) != 0 || pipe2(answers, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipes");
        process_ = fork();
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            char order = 0;
            while (read(orders[0], &order, 1) == 1) {
                work(order);
                const auto time = ownTime();
                if (write(answers[1], &time, sizeof time) != sizeof time)
                    break;
            }
            _exit(0);
        }
        orders_ = Descriptor(orders[1]);
        answers_ = Descriptor(answers[0]);
        close(orders[0]);
        close(answers[1]);
    }
    ~Child() {
        ::kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t process() const { return process_; }

    /// Its CPU time in nanoseconds after it has done the work.
    std::uint64_t tell(char order) const {
        std::uint64_t time = 0;
        if (write(orders_.number(), &order, 1) != 1 || read(answers_.number(), &time, sizeof time) != sizeof time)
            throw std::runtime_error("the child is gone");
        return time;
    }

private:
    pid_t process_ = 0;
    Descriptor orders_;
    Descriptor answers_;
};

void spin(std::uint64_t nanoseconds) {
    const auto until = ownTime() + nanoseconds;
    while (ownTime() < until)
        ;
}

std::uint64_t difference(std::uint64_t a, std::uint64_t b) {
    return a > b ? a - b : b - a;
}

TEST(LiveScan, measuresWhatABusyChildUsesWithinFivePercent) {
    const Child child([](char order) {
        if (order == 's')
            spin(300'000'000);
    });
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    const auto before = child.tell('n');
    const auto first = table.counters(child.process()).value();
    const auto after = child.tell('s');
    const auto second = table.counters(child.process()).value();
    const auto used = after - before;
    EXPECT_LT(difference(second.cpu - first.cpu, used), used / 20) << second.cpu - first.cpu << " for " << used;
    EXPECT_EQ(first.start, second.start);
    EXPECT_EQ(first.image, second.image);
    // On a machine with one class of cores all of it is theirs.
    if (readCoreClasses("/sys").efficiency.empty()) {
        EXPECT_EQ(second.performanceCPU - first.performanceCPU, second.cpu - first.cpu);
    }
}

TEST(LiveScan, chargesTheBusyChildToTheApplicationThatItBelongsTo) {
    const Child child([](char order) {
        if (order == 's')
            spin(300'000'000);
    });
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    VirtualTime time{Date(0)};
    AppProcessScanner scanner(table, time, Seconds(40));
    const auto appOf = [&](const AppProcessScanner::Scan& scan) {
        for (const auto& app : scan.apps)
            for (const auto& process : app.processes)
                if (process.pid == child.process())
                    return app;
        return AppProcesses();
    };
    const auto before = child.tell('n');
    EXPECT_FALSE(appOf(scanner.scan()).id.empty());
    const auto used = child.tell('s') - before;
    time.advance(Seconds(1));
    const auto app = appOf(scanner.scan());
    EXPECT_GE(app.cpuCores, static_cast<double>(used) * 0.95e-9) << "others of its application may have run as well";
    EXPECT_TRUE(app.pcoreShare);
}

TEST(LiveScan, countsAMegabyteThatIsWritten) {
    const auto file = fs::current_path() / ("written-" + std::to_string(getpid()));
    struct statfs system {};
    if (statfs(fs::current_path().c_str(), &system) != 0 || system.f_type == TMPFS_MAGIC)
        GTEST_SKIP() << "the build lies in memory";
    const Child child([&file](char order) {
        if (order != 'w')
            return;
        const Descriptor written(open(file.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600));
        const std::string megabyte(1'048'576, 'x');
        if (write(written.number(), megabyte.data(), megabyte.size()) < 0 || fsync(written.number()) != 0)
            _exit(1);
    });
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    const auto first = table.counters(child.process()).value();
    child.tell('w');
    const auto second = table.counters(child.process()).value();
    fs::remove(file);
    if (!first.diskWritten || !second.diskWritten)
        GTEST_SKIP() << "this kernel does not count it";
    EXPECT_GE(*second.diskWritten - *first.diskWritten, 1'048'576u);
    EXPECT_LE(*second.diskWritten - *first.diskWritten, 1'200'000u);
}

TEST(LiveScan, seesMemoryThatAChildTakes) {
    std::vector<char> memory;
    const Child child([&memory](char order) {
        if (order == 'm')
            memory.assign(20'000'000, 'x');
    });
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    const auto first = table.counters(child.process()).value();
    child.tell('m');
    const auto second = table.counters(child.process()).value();
    EXPECT_GE(second.footprint, first.footprint + 20'000'000);
    EXPECT_GE(second.resident, second.footprint) << "nothing of it is swapped out here";
}

TEST(LiveScan, chargesTheHelpersOfAnApplicationToIt) {
    const TemporaryFolder folder;
    // A name of its own, so that nothing which an earlier run left behind is taken for it.
    const auto program = folder.path() / ("kestrio-test-painter-" + std::to_string(getpid()));
    fs::copy_file("/bin/sh", program);
    folder.write("applications/painter.desktop",
                 "[Desktop Entry]\nType=Application\nName=Painter\nExec=" + program.string() + "\n");
    const TestProgram painter({program.string(), "-c", "sleep 100 & (sleep 100; true) & wait"});

    const SystemClock clock;
    DesktopEntries entries({folder.path() / "applications"}, "en", clock);
    ApplicationIdentity identity(entries, IdentityCatalogue::builtIn());
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), &identity);
    AppProcesses found;
    // It, its part in brackets, and two that sleep.
    EXPECT_TRUE(eventually([&] {
        for (const auto& app : AppProcessScanner(table, clock, Seconds(40)).scan().apps)
            if (app.id == "painter")
                found = app;
        return found.processes.size() == 4;
    }));
    EXPECT_EQ(found.name, "Painter");
    EXPECT_EQ(found.bundleID, "painter");
    EXPECT_EQ(found.appPath, program.string());
    EXPECT_EQ(found.processes.front().pid, painter.process());
    for (const auto& process : found.processes)
        kill(process.pid, SIGKILL); // its helpers would outlive it
}

TEST(LiveScan, leavesOutAChildThatHasEnded) {
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    pid_t process = 0;
    {
        const Child child([](char) {});
        process = child.process();
        table.processes();
        EXPECT_TRUE(table.counters(process));
    }
    EXPECT_EQ(table.counters(process), std::nullopt);
    EXPECT_EQ(table.programPath(process), std::nullopt);
    EXPECT_EQ(table.responsible(process), std::nullopt);
}

TEST(LiveScan, followsAChildThatBeginsToRunAnotherProgram) {
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    const Child child([](char order) {
        if (order == 'x')
            execlp("sleep", "sleep", "100", nullptr);
    });
    table.processes();
    const auto first = table.counters(child.process()).value();
    EXPECT_THROW(child.tell('x'), std::runtime_error) << "the program that it runs now has no pipe to answer by";
    // The kernel closes the pipe before it has exchanged everything.
    EXPECT_TRUE(eventually([&] { return table.counters(child.process()).value().image != first.image; }));
    EXPECT_EQ(table.counters(child.process()).value().start, first.start);
}

// --- A number that is used again -------------------------------------------------------------------------------------

constexpr int skipped = 77;

bool writeText(const char* file, const std::string& text) {
    const Descriptor descriptor(open(file, O_WRONLY | O_CLOEXEC));
    return descriptor && write(descriptor.number(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// Forks a child with exactly this number, in a namespace of our own.
std::unique_ptr<Child> childWithNumber(pid_t number) {
    if (!writeText("/proc/sys/kernel/ns_last_pid", std::to_string(number - 1)))
        return nullptr;
    return std::make_unique<Child>([](char order) {
        if (order == 's')
            spin(50'000'000);
    });
}

/// Runs as the first process of a new namespace; the exit status tells what went wrong.
int reuseANumber() {
    mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    if (mount("proc", "/proc", "proc", 0, nullptr) != 0)
        return skipped;
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    VirtualTime time{Date(0)};
    AppProcessScanner scanner(table, time, Seconds(40));
    constexpr pid_t number = 4711;

    auto old = childWithNumber(number);
    if (!old || old->process() != number)
        return skipped;
    scanner.scan();
    const auto before = table.counters(number);
    old.reset();
    spin(40'000'000); // starts are told in hundredths of a second
    const auto later = childWithNumber(number);
    if (!later || later->process() != number)
        return skipped;
    later->tell('s');
    time.advance(Seconds(1));
    const auto scan = scanner.scan();
    const auto after = table.counters(number);
    if (!before || !after || before->start == after->start)
        return 1;
    if (after->cpu < 50'000'000)
        return 2; // it is the later one that was read
    for (const auto& app : scan.apps)
        for (const auto& process : app.processes)
            if (process == ProcessKey{number, after->start})
                // The whole application is this program, which has spun for some forty milliseconds itself.
                return app.cpuCores < 0.09 ? 0 : 3;
    return 4;
}

TEST(LiveScan, doesNotTakeALaterProcessOfTheSameNumberForTheOldOne) {
    const pid_t outer = fork();
    if (outer == 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNS) != 0)
            _exit(skipped);
        const pid_t inner = fork();
        if (inner == 0)
            _exit(reuseANumber());
        int status = 0;
        waitpid(inner, &status, 0);
        _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 100);
    }
    int status = 0;
    waitpid(outer, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == skipped)
        GTEST_SKIP() << "namespaces are not permitted here";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(LiveScan, asksNoClockWhereProcShowsOtherNumbersThanOurs) {
    const pid_t outer = fork();
    if (outer == 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWPID) != 0)
            _exit(skipped);
        const pid_t inner = fork();
        if (inner == 0) // /proc is still the one of the namespace above
            _exit(LinuxProcessTable::setupOfThisMachine().clock ? 1 : 0);
        int status = 0;
        waitpid(inner, &status, 0);
        _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 100);
    }
    int status = 0;
    waitpid(outer, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == skipped)
        GTEST_SKIP() << "namespaces are not permitted here";
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// --- Allocations -----------------------------------------------------------------------------------------------------

TEST(LiveScan, allocatesNothingForAProcessThatIsAsItWas) {
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < 40; ++i)
        children.push_back(std::make_unique<Child>([](char) {}));
    const auto readAll = [&] {
        for (const auto& child : children)
            EXPECT_TRUE(table.counters(child->process()));
    };
    table.processes();
    readAll();
    readAll();
    EXPECT_EQ(allocationsOf(readAll), 0u);
}

} // namespace
} // namespace kestrio
