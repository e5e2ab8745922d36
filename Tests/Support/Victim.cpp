#include "Tests/Support/Victim.h"

#include "Kestrio/Base/Descriptor.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <poll.h>
#include <sched.h>
#include <sstream>
#include <stdexcept>
#include <sys/syscall.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(pid_t process) {
    return fs::path("/proc") / std::to_string(process);
}

/// What stands behind the name, from the state on.
std::vector<std::string> statFields(pid_t process) {
    const auto text = fileText(folderOf(process) / "stat");
    std::istringstream rest(text.substr(std::min(text.rfind(')') + 1, text.size())));
    return {std::istream_iterator<std::string>(rest), {}};
}

std::vector<pid_t> threadsOf(pid_t process) {
    std::vector<pid_t> threads;
    std::error_code error;
    for (fs::directory_iterator entry(folderOf(process) / "task", error), end; !error && entry != end;
         entry.increment(error))
        threads.push_back(std::stoi(entry->path().filename().string()));
    return threads;
}

std::vector<pid_t> childrenOf(pid_t process) {
    std::istringstream text(fileText(folderOf(process) / "task" / std::to_string(process) / "children"));
    return {std::istream_iterator<pid_t>(text), {}};
}

/// What the second list has beyond the first, once it has; 0 when that does not come about.
template <class List>
pid_t awaitNew(const std::vector<pid_t>& before, List list) {
    pid_t found = 0;
    eventually([&] {
        for (const auto number : list())
            if (std::find(before.begin(), before.end(), number) == before.end())
                found = number;
        return found != 0;
    });
    return found;
}

} // namespace

ProcessKey keyOf(pid_t process) {
    const auto fields = statFields(process);
    return {process, fields.size() > 19 ? std::stoull(fields[19]) : 0};
}

std::optional<char> stateOf(pid_t process) {
    const auto fields = statFields(process);
    return fields.empty() ? std::nullopt : std::optional(fields[0].front());
}

std::map<pid_t, ThreadPriority> prioritiesOf(pid_t process) {
    std::map<pid_t, ThreadPriority> priorities;
    for (const auto thread : threadsOf(process)) {
        ThreadPriority priority;
        cpu_set_t set;
        CPU_ZERO(&set);
        sched_getaffinity(thread, sizeof set, &set);
        for (int core = 0; core < CPU_SETSIZE; ++core)
            if (CPU_ISSET(static_cast<std::size_t>(core), &set))
                priority.cores.push_back(core);
        priority.policy = sched_getscheduler(thread);
        priority.ioPriority = static_cast<int>(syscall(SYS_ioprio_get, 1, thread));
        priorities[thread] = std::move(priority);
    }
    return priorities;
}

Victim::Victim() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const Descriptor input(ends[0]);
    Descriptor output(ends[1]);
    program_ = TestProgram({VICTIM_PROGRAM, std::to_string(output.number())}, {}, output.number());
    output.close();
    pollfd readable{input.number(), POLLIN, 0};
    char byte = 0;
    if (poll(&readable, 1, 10'000) != 1 || read(input.number(), &byte, 1) != 1)
        throw std::runtime_error("the victim does not start");
    usual_ = priorities();
}

pid_t Victim::startChild() const {
    const auto before = childrenOf(process());
    program_.signal(SIGUSR1);
    return awaitNew(before, [this] { return childrenOf(process()); });
}

pid_t Victim::startThread() const {
    const auto before = threadsOf(process());
    program_.signal(SIGUSR2);
    return awaitNew(before, [this] { return threadsOf(process()); });
}

} // namespace kestrio
