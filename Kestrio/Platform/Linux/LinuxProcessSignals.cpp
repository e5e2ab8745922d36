#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"

#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/IOPriority.h"
#include "Kestrio/Platform/Linux/KernelText.h"
#include "Kestrio/Platform/Linux/ProcessDescriptor.h"
#include "Kestrio/Platform/Linux/ProcessHazards.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/ProcessTexts.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <iterator>
#include <numeric>
#include <sched.h>
#include <set>
#include <signal.h>
#include <string>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Threads that were started while the others were changed are caught in a further pass. A program that starts them
/// faster than that is not waited for.
constexpr int mostPasses = 16;

constexpr pid_t firstProcess = 1;

/// Real, effective and saved: a program that took on somebody else's rights is not the person's alone.
bool belongsTo(std::string_view status, uid_t owner) {
    while (const auto line = nextLine(status)) {
        if (!line->starts_with("Uid:"))
            continue;
        auto rest = line->substr(4);
        for (int kind = 0; kind < 3; ++kind)
            if (parsedNumber<uid_t>(nextWord(rest)) != owner)
                return false;
        return true;
    }
    return false;
}

std::vector<int> lastQuarter(const std::vector<int>& cores) {
    const auto count = std::max<std::size_t>(cores.size() / 4, 1);
    return {cores.end() - static_cast<std::ptrdiff_t>(std::min(count, cores.size())), cores.end()};
}

bool isWithin(const std::vector<int>& cores, const std::vector<int>& of) {
    return std::includes(of.begin(), of.end(), cores.begin(), cores.end());
}

/// Empty when they cannot be had, as on a machine with more cores than the C library's set holds.
std::vector<int> coresOf(pid_t thread) {
    cpu_set_t set;
    CPU_ZERO(&set);
    std::vector<int> cores;
    if (sched_getaffinity(thread, sizeof set, &set) != 0)
        return cores;
    for (int core = 0; core < CPU_SETSIZE; ++core)
        if (CPU_ISSET(static_cast<std::size_t>(core), &set))
            cores.push_back(core);
    return cores;
}

/// All that the machine was set up for. Cores that are not there may be asked for along with others that are.
std::vector<int> configuredCores() {
    std::vector<int> cores(static_cast<std::size_t>(std::clamp(sysconf(_SC_NPROCESSORS_CONF), 1L, long{CPU_SETSIZE})));
    std::iota(cores.begin(), cores.end(), 0);
    const auto ours = coresOf(getpid());
    std::vector<int> all;
    std::set_union(cores.begin(), cores.end(), ours.begin(), ours.end(), std::back_inserter(all));
    return all;
}

/// Where `sys` says nothing of cores, there is one class of them.
CoreClasses coreClasses(const fs::path& sys) {
    const auto online = kernelValue(sys / "devices/system/cpu/online").value_or("");
    return parseCoreList(online).empty() ? CoreClasses{{}, configuredCores()} : readCoreClasses(sys);
}

bool setCores(pid_t thread, const std::vector<int>& cores) {
    cpu_set_t set;
    CPU_ZERO(&set);
    for (const int core : cores)
        if (core >= 0 && core < CPU_SETSIZE)
            CPU_SET(static_cast<std::size_t>(core), &set);
    return sched_setaffinity(thread, sizeof set, &set) == 0;
}

bool setPolicy(pid_t thread, int policy) {
    const sched_param none{};
    return sched_setscheduler(thread, policy, &none) == 0;
}

std::optional<int> ioPriorityOf(pid_t thread) {
    const auto value = syscall(SYS_ioprio_get, ioPriority::ofProcess, thread);
    return value < 0 ? std::nullopt : std::optional(static_cast<int>(value));
}

bool setIOPriority(pid_t thread, int value) {
    return syscall(SYS_ioprio_set, ioPriority::ofProcess, thread, value) == 0;
}

std::optional<ThreadPriority> readPriority(pid_t thread) {
    auto cores = coresOf(thread);
    const int policy = sched_getscheduler(thread);
    const auto ioPriority = ioPriorityOf(thread);
    if (cores.empty() || policy < 0 || !ioPriority)
        return std::nullopt;
    return ThreadPriority{std::move(cores), policy, *ioPriority};
}

/// On the scale of the starts of processes.
std::uint64_t ticksSinceStartOfMachine() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const auto ticksPerSecond = static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
    return static_cast<std::uint64_t>(now.tv_sec) * ticksPerSecond +
           static_cast<std::uint64_t>(now.tv_nsec) * ticksPerSecond / 1'000'000'000;
}

/// The numbers that the folder's entries are named by.
std::vector<pid_t> numberedEntries(const fs::path& folder) {
    std::vector<pid_t> numbers;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (const auto number = parsedNumber<pid_t>(entry->path().filename().native()))
            numbers.push_back(*number);
    return numbers;
}

} // namespace

LinuxProcessSignals::LinuxProcessSignals(Setup setup) : setup_(std::move(setup)) {
    const auto classes = coreClasses(setup_.sys);
    std::set_union(classes.efficiency.begin(), classes.efficiency.end(), classes.performance.begin(),
                   classes.performance.end(), std::back_inserter(allCores_));
    slowCores_ = classes.efficiency.empty() ? lastQuarter(allCores_) : classes.efficiency;
}

// --- Whom it may touch -----------------------------------------------------------------------------------------------

bool LinuxProcessSignals::isOurs(ProcessKey process) const {
    if (process.pid <= firstProcess || process.pid == getpid())
        return false;
    const auto folder = setup_.processes / std::to_string(process.pid);
    const auto status = readProcessFile(folder / "status");
    if (!status || !belongsTo(*status, getuid()))
        return false;
    // Read last: still the same process here, it was the same one all along.
    const auto text = readProcessFile(folder / "stat");
    const auto stat = text ? parseProcessStat(*text) : std::nullopt;
    return stat && stat->startTicks == process.start && !stat->isKernelThread;
}

ProcessCondition LinuxProcessSignals::condition(ProcessKey process) {
    if (process.pid <= 0)
        return ProcessCondition::gone;
    const auto text = readProcessFile(setup_.processes / std::to_string(process.pid) / "stat");
    const auto stat = text ? parseProcessStat(*text) : std::nullopt;
    if (!stat || stat->startTicks != process.start || stat->state == 'Z' || stat->state == 'X')
        return ProcessCondition::gone;
    const auto job = parseTerminalJob(*text);
    // The shell of a job in front would take the terminal back; a process under a debugger is the debugger's.
    const bool isHarmless =
        job && !job->isInFront() && stat->state != 't' && !isAncestor(process.pid, getpid(), setup_.processes);
    if (!isHarmless || !isOurs(process))
        return ProcessCondition::untouchable;
    return stat->state == 'T' ? ProcessCondition::stopped : ProcessCondition::running;
}

// --- Stopping --------------------------------------------------------------------------------------------------------

bool LinuxProcessSignals::stop(ProcessKey process) {
    const auto descriptor = openProcess(process.pid);
    return descriptor && condition(process) == ProcessCondition::running && sendSignal(descriptor, SIGSTOP);
}

bool LinuxProcessSignals::resume(ProcessKey process) {
    const auto descriptor = openProcess(process.pid);
    if (!descriptor && (errno == EMFILE || errno == ENFILE || errno == ENOMEM))
        // Its start cannot be read for want of the same; better one continued too many than one left frozen.
        return process.pid > firstProcess && kill(process.pid, SIGCONT) == 0;
    return descriptor && isOurs(process) && sendSignal(descriptor, SIGCONT);
}

// --- Slowing ---------------------------------------------------------------------------------------------------------

/// Until no new thread turns up: one that is started meanwhile stands as the thread that started it did at that moment.
bool LinuxProcessSignals::forEachThread(pid_t process, const std::function<bool(const Thread&)>& act) const {
    const auto folder = setup_.processes / std::to_string(process) / "task";
    std::set<pid_t> done;
    bool any = false;
    for (int pass = 0; pass < mostPasses; ++pass) {
        const auto before = done.size();
        for (const auto number : numberedEntries(folder)) {
            if (!done.insert(number).second)
                continue;
            if (const auto start = readStartTicks(folder, number))
                any = act({number, *start}) || any;
        }
        if (done.size() == before)
            break;
    }
    return any;
}

std::optional<ProcessPriority> LinuxProcessSignals::priority(ProcessKey process) {
    if (!isOurs(process))
        return std::nullopt;
    ThreadPriorities priorities;
    priorities.since = ticksSinceStartOfMachine();
    priorities.slowCores = slowCores_;
    priorities.common = readPriority(process.pid);
    if (!priorities.common)
        return std::nullopt;
    forEachThread(process.pid, [&priorities](const Thread& thread) {
        auto own = readPriority(thread.number);
        if (own && own != priorities.common)
            priorities.exceptions.push_back({thread.number, thread.start, std::move(*own)});
        return true;
    });
    return ProcessPriority{words(priorities)};
}

/// A thread that keeps to certain cores is never given others; one that keeps to fast ones stays there.
std::vector<int> LinuxProcessSignals::slowPartOf(const std::vector<int>& cores) const {
    std::vector<int> part;
    std::set_intersection(cores.begin(), cores.end(), slowCores_.begin(), slowCores_.end(), std::back_inserter(part));
    return part.empty() ? cores : part;
}

bool LinuxProcessSignals::slowThread(pid_t thread) const {
    const auto now = readPriority(thread);
    if (!now)
        return false;
    bool any = false;
    if (now->policy == SCHED_OTHER)
        any = setPolicy(thread, SCHED_BATCH);
    if (ioPriority::classOf(now->ioPriority) == ioPriority::classNone ||
        ioPriority::classOf(now->ioPriority) == ioPriority::classBestEffort)
        any = setIOPriority(thread, ioPriority::value(ioPriority::classIdle, 0)) || any;
    if (const auto cores = slowPartOf(now->cores); cores != now->cores)
        any = setCores(thread, cores) || any;
    return any || isSlowed(thread);
}

bool LinuxProcessSignals::slow(ProcessKey process) {
    return isOurs(process) &&
           forEachThread(process.pid, [this](const Thread& thread) { return slowThread(thread.number); });
}

void LinuxProcessSignals::restoreThread(pid_t thread, const ThreadPriority& before,
                                        const std::vector<int>& slowCores) const {
    if (before.policy == SCHED_OTHER && sched_getscheduler(thread) == SCHED_BATCH)
        setPolicy(thread, SCHED_OTHER);
    const auto ioPriority = ioPriorityOf(thread);
    if (ioPriority && ioPriority::classOf(*ioPriority) == ioPriority::classIdle && *ioPriority != before.ioPriority)
        setIOPriority(thread, before.ioPriority);
    // None at all when those that it was moved to have been switched off meanwhile.
    const auto cores = coresOf(thread);
    if (cores != before.cores && isWithin(cores, slowCores))
        setCores(thread, before.cores);
}

bool LinuxProcessSignals::restore(ProcessKey process, const ProcessPriority& before) {
    if (!isOurs(process))
        return false;
    const auto priorities = parsedPriorities(before.words);
    const auto& slowCores = priorities.slowCores.empty() ? slowCores_ : priorities.slowCores;
    const ThreadPriority usual{allCores_, SCHED_OTHER, ioPriority::value(ioPriority::classNone, 0)};
    forEachThread(process.pid, [&](const Thread& thread) {
        restoreThread(thread.number, priorities.of(thread.number, thread.start).value_or(usual), slowCores);
        return true;
    });
    return true;
}

bool LinuxProcessSignals::isSlowed(pid_t thread) const {
    const auto now = readPriority(thread);
    return now && now->policy == SCHED_BATCH && ioPriority::classOf(now->ioPriority) == ioPriority::classIdle &&
           isWithin(now->cores, slowCores_);
}

std::vector<ProcessKey> LinuxProcessSignals::heirs(const ProcessPriority& before) {
    std::vector<ProcessKey> found;
    const auto since = parsedPriorities(before.words).since;
    if (!since)
        return found;
    for (const auto process : numberedEntries(setup_.processes)) {
        if (sched_getscheduler(process) != SCHED_BATCH || !isSlowed(process)) // the first alone spares most the rest
            continue;
        const auto start = readStartTicks(setup_.processes, process);
        if (start && *start >= *since && isOurs({process, *start}))
            found.push_back({process, *start});
    }
    return found;
}

} // namespace kestrio
