#include "Kestrio/Platform/Linux/LinuxProcessTable.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/SessionMachinery.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t nanosPerSecond = 1'000'000'000;

/// Deeper families exist in programs gone wild alone; the climb is not to follow them for long.
constexpr int longestDescent = 64;

/// From the first process everything descends, and it is nobody's application.
constexpr pid_t firstProcess = 1;

using Path = std::array<char, 512>;

std::uint64_t hashOf(std::initializer_list<std::uint64_t> values, std::string_view text) {
    std::uint64_t hash = std::hash<std::string_view>()(text);
    for (const auto value : values)
        hash = (hash ^ value) * 0x9E37'79B9'7F4A'7C15;
    return hash;
}

/// The kernel's clock of a whole process counts its threads, those that have ended too, and asks no permission.
std::optional<std::uint64_t> clockOfProcess(pid_t process) {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(time.tv_sec) * nanosPerSecond + static_cast<std::uint64_t>(time.tv_nsec);
}

/// Whether the numbers in `/proc` are the ones that system calls know: not so below another namespace's `/proc`.
bool knowsOurNumbers(const fs::path& processes) {
    std::error_code error;
    return fs::read_symlink(processes / "self", error) == std::to_string(getpid());
}

std::string fileName(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

} // namespace

LinuxProcessTable::Setup LinuxProcessTable::setupOfThisMachine() {
    Setup setup;
    rlimit files{};
    if (knowsOurNumbers(setup.processes) && getrlimit(RLIMIT_NOFILE, &files) == 0) {
        setup.clock = clockOfProcess;
        setup.mostDescriptors = std::min<std::size_t>(files.rlim_cur / 4, 4096);
    }
    return setup;
}

LinuxProcessTable::LinuxProcessTable(Setup setup, ApplicationIdentity* identity)
    : setup_(std::move(setup)),
      cores_(readCoreClasses(setup_.sys)),
      nanosPerTick_(nanosPerSecond / static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK))),
      identity_(identity),
      folder_(opendir(setup_.processes.c_str()), closedir) {}

LinuxProcessTable::~LinuxProcessTable() = default;

std::vector<pid_t> LinuxProcessTable::processes() {
    std::vector<pid_t> found;
    if (!folder_)
        return found;
    found.reserve(known_.size() + 64);
    ++listing_;
    rewinddir(folder_.get());
    while (const auto* entry = readdir(folder_.get()))
        if (const auto process = parsedNumber<pid_t>(entry->d_name)) {
            found.push_back(*process);
            if (const auto known = known_.find(*process); known != known_.end())
                known->second.listing = listing_;
        }
    for (auto known = known_.begin(); known != known_.end();)
        known = known->second.listing == listing_ ? std::next(known) : forget(known);
    std::sort(found.begin(), found.end());
    return found;
}

LinuxProcessTable::Table::iterator LinuxProcessTable::forget(Table::iterator known) {
    closeFile(known->second);
    return known_.erase(known);
}

void LinuxProcessTable::closeFile(Known& known) {
    if (known.pagesFile)
        --descriptors_;
    known.pagesFile.close();
}

std::optional<std::string_view> LinuxProcessTable::read(pid_t process, const char* file) {
    Path path{};
    const int length = std::snprintf(path.data(), path.size(), "%s/%d/%s", setup_.processes.c_str(), process, file);
    return length > 0 && static_cast<std::size_t>(length) < path.size() ? buffer_.readPiece(path.data()) : std::nullopt;
}

std::optional<ProcessStat> LinuxProcessTable::readStat(pid_t process) {
    const auto text = read(process, "stat");
    return text ? parseProcessStat(*text) : std::nullopt;
}

std::optional<ProcessPages> LinuxProcessTable::readPages(const Known& known, pid_t process) {
    const auto text = known.pagesFile ? buffer_.readPiece(known.pagesFile.number()) : read(process, "statm");
    return text ? parseProcessPages(*text) : std::nullopt;
}

std::optional<ProcessCounters> LinuxProcessTable::counters(pid_t process) {
    // The clock is asked first: what is read afterwards of the same process proves that it was its clock.
    const auto clock = setup_.clock ? setup_.clock(process) : std::nullopt;
    auto known = known_.find(process);
    if (known != known_.end()) {
        if (known->second.isKernelThread && isSame(known->second, process))
            return std::nullopt;
        if (const auto counters = unchanged(known->second, process, clock))
            return counters;
    } else {
        known = known_.try_emplace(process).first;
        known->second.listing = listing_;
        known->second.hasClock = clock.has_value();
        keepOpen(known->second, process);
    }
    if (!readFully(known->second, process, clock)) {
        forget(known);
        return std::nullopt;
    }
    if (!known->second.isKernelThread)
        return known->second.counters;
    closeFile(known->second); // others have more use for it
    return std::nullopt;
}

bool LinuxProcessTable::isSame(const Known& known, pid_t process) {
    const auto stat = readStat(process);
    return stat && stat->startTicks == known.counters.start;
}

/// Absent when the process has to be read in full.
std::optional<ProcessCounters> LinuxProcessTable::unchanged(Known& known, pid_t process,
                                                            std::optional<std::uint64_t> clock) {
    if (!known.hasClock || clock != known.counters.cpu || known.isKernelThread)
        return std::nullopt;
    // An open file answers for its own process alone; without one its start tells it from a later one.
    if (!known.pagesFile && !isSame(known, process))
        return std::nullopt;
    const auto pages = readPages(known, process);
    if (!pages)
        return std::nullopt;
    // What does not run can still be swapped out.
    if (*pages != known.pages) {
        known.pages = *pages;
        if (!readMemory(known, process))
            return std::nullopt;
    }
    return known.counters;
}

bool LinuxProcessTable::readMemory(Known& known, pid_t process) {
    const auto text = read(process, "status");
    if (!text)
        return false;
    const auto status = parseProcessStatus(*text);
    known.counters.footprint = status.footprint();
    known.counters.resident = status.resident;
    known.counters.wakeups = status.voluntarySwitches;
    return true;
}

bool LinuxProcessTable::readFully(Known& known, pid_t process, std::optional<std::uint64_t> clock) {
    auto pages = known.hasClock ? readPages(known, process) : std::nullopt;
    if (!pages && known.pagesFile) {
        // The one that the file belonged to has ended; another may have its number now.
        closeFile(known);
        known = Known{.counters = {}, .pages = {}, .pagesFile = {}, .hasClock = clock.has_value(), .listing = listing_};
        keepOpen(known, process);
        pages = readPages(known, process);
    }
    known.pages = pages.value_or(ProcessPages());
    if (!readMemory(known, process))
        return false;
    const auto use = read(process, "io");
    const auto disk = use ? parseProcessDiskUse(*use) : std::nullopt;
    known.counters.diskRead = disk ? std::optional(disk->read) : std::nullopt;
    known.counters.diskWritten = disk ? std::optional(disk->written) : std::nullopt;

    // Read last: still the same process here, it was the same one all along.
    const auto stat = readStat(process);
    if (!stat)
        return false;
    auto& counters = known.counters;
    const bool isContinued = counters.start == stat->startTicks && counters.image != 0;
    const auto cpu = known.hasClock && clock ? *clock : stat->cpuTicks * nanosPerTick_;
    if (!isContinued)
        counters.performanceCPU = 0;
    else if (cpu > counters.cpu && cores_.isPerformance(stat->processor.value_or(-1)))
        counters.performanceCPU += cpu - counters.cpu;
    counters.cpu = cpu;
    counters.start = stat->startTicks;
    counters.image = hashOf({stat->startCode, stat->startStack}, stat->name);
    counters.pageins = stat->majorFaults;
    known.isKernelThread = stat->isKernelThread;
    return true;
}

void LinuxProcessTable::keepOpen(Known& known, pid_t process) {
    if (!known.hasClock || descriptors_ >= setup_.mostDescriptors)
        return;
    const auto path = setup_.processes / std::to_string(process) / "statm";
    known.pagesFile = Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (known.pagesFile)
        ++descriptors_;
}

/// A helper is often the application's own program, started by that for a part of its work.
std::optional<pid_t> LinuxProcessTable::responsible(pid_t process) {
    const auto parentOf = [this](pid_t of) -> std::optional<pid_t> {
        const auto stat = readStat(of);
        return stat ? std::optional(stat->parent) : std::nullopt;
    };
    auto parent = parentOf(process);
    if (!parent)
        return std::nullopt;
    pid_t at = process;
    for (int step = 0; step < longestDescent; ++step) {
        const auto program = programName(at);
        const auto parentProgram = parent && *parent > firstProcess ? programName(*parent) : std::string();
        const bool isApplication = identity_ && identity_->isApplicationProgram(program);
        if (isApplication && parentProgram != program)
            return at;
        if (parentProgram.empty() || isSessionMachinery(parentProgram))
            return at;
        if (const auto unit = unitApplication(at); unit && unit != unitApplication(*parent))
            return at;
        at = *parent;
        parent = parentOf(at);
    }
    return at;
}

/// The application that the desktop made the process's control group for.
std::optional<std::string> LinuxProcessTable::unitApplication(pid_t process) {
    const auto text = read(process, "cgroup");
    if (!text)
        return std::nullopt;
    auto application = applicationOfControlGroup(*text);
    return application ? application : snapApplicationOfControlGroup(*text);
}

std::string LinuxProcessTable::programName(pid_t process) {
    return fileName(programPath(process).value_or(""));
}

std::optional<std::string> LinuxProcessTable::programPath(pid_t process) {
    if (const auto program = readProgram(setup_.processes, process))
        return text::fromUntrustedBytes(program->native());
    // Somebody else's process does not show its executable; the kernel's short name is open to all.
    const auto stat = readStat(process);
    if (!stat || stat->isKernelThread || stat->name.empty())
        return std::nullopt;
    return text::fromUntrustedBytes(stat->name);
}

std::optional<ProcessApplication> LinuxProcessTable::application(pid_t process) {
    const auto found = identity_ ? identity_->applicationOf(process) : std::nullopt;
    if (!found || !found->bundleIdentifier)
        return std::nullopt;
    return ProcessApplication{*found->bundleIdentifier, found->localizedName, programPath(process).value_or("")};
}

std::optional<ApplicationBundle> LinuxProcessTable::bundle(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error) ? std::optional(ApplicationBundle()) : std::nullopt;
}

} // namespace kestrio
