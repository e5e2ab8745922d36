#include "Kestrio/Platform/Linux/DetachedProgram.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <signal.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

std::string programPath(const std::string& name) {
    if (name.find('/') != std::string::npos)
        return name;
    const char* value = std::getenv("PATH");
    for (std::string_view rest = value ? value : "/usr/local/bin:/usr/bin:/bin"; !rest.empty();) {
        const auto end = std::min(rest.find(':'), rest.size());
        const auto path = std::string(rest.substr(0, end)) + "/" + name;
        if (path.front() == '/' && access(path.c_str(), X_OK) == 0)
            return path;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {};
}

/// Between `fork` and `exec` of a program with several threads, only calls that are safe in a signal handler.
[[noreturn]] void becomeProgram(const char* path, char* const* arguments, int report) {
    setsid();
    const pid_t child = fork();
    if (child > 0)
        _exit(0);
    if (child == 0) {
        sigset_t none;
        sigemptyset(&none);
        for (int signal = 1; signal < NSIG; ++signal)
            ::signal(signal, SIG_DFL);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        const int null = ::open("/dev/null", O_RDWR);
        for (int stream = 0; stream <= 2 && null >= 0; ++stream)
            dup2(null, stream);
        execv(path, arguments);
    }
    const int error = errno;
    if (write(report, &error, sizeof error) < 0)
        _exit(127);
    _exit(127);
}

} // namespace

bool startDetached(const std::vector<std::string>& arguments) {
    const auto path = programPath(arguments.at(0));
    int report[2];
    if (path.empty() || pipe2(report, O_CLOEXEC) != 0)
        return false;
    std::vector<char*> pointers;
    for (const auto& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0)
        becomeProgram(path.c_str(), pointers.data(), report[1]);
    close(report[1]);
    // The pipe closes without a word when the program has taken over.
    int error = 0;
    ssize_t count = 0;
    while (child > 0 && (count = read(report[0], &error, sizeof error)) < 0 && errno == EINTR) {
    }
    close(report[0]);
    while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && count == 0;
}

} // namespace kestrio
