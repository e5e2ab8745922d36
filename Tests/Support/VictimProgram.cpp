// An application for tests to stop and slow: several threads that each have a priority of their own. SIGUSR1 makes it
// start a child, SIGUSR2 a thread. It ends with whoever started it.
#include "Kestrio/Platform/Linux/IOPriority.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace ioPriority = kestrio::ioPriority;

namespace {

void pinToFirstCore() {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(0, &set);
    sched_setaffinity(0, sizeof set, &set);
}

void setPolicy(int policy, int priority) {
    const sched_param parameters{priority};
    sched_setscheduler(0, policy, &parameters);
}

void setIOPriority(int ioClass, int level) {
    syscall(SYS_ioprio_set, ioPriority::ofProcess, 0, ioPriority::value(ioClass, level));
}

std::atomic<int> ready = 0;

void startThread(void (*prepare)()) {
    std::thread([prepare] {
        prepare();
        ++ready;
        for (;;)
            pause();
    }).detach();
}

void startChild() {
    if (fork() == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (;;)
            pause();
    }
}

} // namespace

/// The argument is a descriptor to write a byte to when all threads are as they should be.
int main(int argc, char** argv) {
    sigset_t orders;
    sigemptyset(&orders);
    sigaddset(&orders, SIGUSR1);
    sigaddset(&orders, SIGUSR2);
    sigprocmask(SIG_BLOCK, &orders, nullptr);

    void (*const kinds[])() = {
        [] {},
        pinToFirstCore,
        [] { setPolicy(SCHED_BATCH, 0); },
        [] { setPolicy(SCHED_FIFO, 1); }, // where that is permitted
        [] { setIOPriority(ioPriority::classBestEffort, 6); },
        [] { setIOPriority(ioPriority::classIdle, 0); },
        [] { setPolicy(SCHED_OTHER | SCHED_RESET_ON_FORK, 0); },
    };
    for (auto* kind : kinds)
        startThread(kind);
    while (ready < static_cast<int>(std::size(kinds)))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (argc > 1 && write(std::atoi(argv[1]), "r", 1) != 1)
        return EXIT_FAILURE;
    for (int order = 0; sigwait(&orders, &order) == 0;)
        order == SIGUSR1 ? startChild() : startThread([] {});
}
