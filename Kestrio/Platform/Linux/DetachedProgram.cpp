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

/// Our own environment with the changes, as "NAME=value".
std::vector<std::string> changedEnvironment(const EnvironmentChanges& changes) {
    std::vector<std::string> settings;
    for (char** own = environ; *own != nullptr; ++own) {
        const std::string_view setting(*own);
        if (!changes.contains(std::string(setting.substr(0, setting.find('=')))))
            settings.emplace_back(setting);
    }
    for (const auto& [name, value] : changes)
        if (value)
            settings.push_back(name + "=" + *value);
    return settings;
}

/// As `execve` takes them. The texts must outlive the answer.
std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const auto& text : texts)
        result.push_back(const_cast<char*>(text.c_str()));
    result.push_back(nullptr);
    return result;
}

/// Between `fork` and `exec` of a program with several threads, only calls that are safe in a signal handler.
[[noreturn]] void becomeProgram(const char* path, char* const* arguments, char* const* environment, int report) {
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
        execve(path, arguments, environment);
    }
    const int error = errno;
    if (write(report, &error, sizeof error) < 0)
        _exit(127);
    _exit(127);
}

} // namespace

bool startDetached(const std::vector<std::string>& arguments, const EnvironmentChanges& changes) {
    const auto path = programPath(arguments.at(0));
    int report[2];
    if (path.empty() || pipe2(report, O_CLOEXEC) != 0)
        return false;
    const auto argumentPointers = pointers(arguments);
    const auto settings = changedEnvironment(changes);
    const auto settingPointers = pointers(settings);

    const pid_t child = fork();
    if (child == 0)
        becomeProgram(path.c_str(), argumentPointers.data(), settingPointers.data(), report[1]);
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
