#include "Programs/CommandLine/Interruption.h"

#include "Programs/CommandLine/ExitStatus.h"

#include <cstdlib>
#include <pthread.h>

namespace kestrio {

Interruption::Interruption() {
    sigemptyset(&signals_);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    thread_ = std::jthread([this](const std::stop_token& over) { wait(over); });
}

Interruption::~Interruption() {
    thread_.request_stop();
    pthread_kill(thread_.native_handle(), SIGINT); // wakes the thread alone
    thread_.join();
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void Interruption::wait(const std::stop_token& over) {
    for (int signal = 0; sigwait(&signals_, &signal) == 0 && !over.stop_requested();)
        if (!stop_.request_stop())
            std::_Exit(exitStatus::interrupted);
}

} // namespace kestrio
