#include "Kestrio/Platform/Linux/LinuxWatchdog.h"

#include "Kestrio/Platform/Linux/ProcessDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr int patienceMilliseconds = 1000;

/// $1 is the journal, $2 the program that undoes slowing. Everything but that program is built into the shell.
///
/// The name of a process can hold brackets and line breaks; behind its last bracket stand the state, which is field 3
/// of the kernel's, and the start, which is field 22.
constexpr const char* script = R"(trap '' HUP INT QUIT TERM PIPE USR1 USR2
while read -r word; do :; done
[ -f "$1" ] || exit 0
set -f
started() {
  stat=
  while read -r line || [ -n "$line" ]; do stat=$line; done < "/proc/$1/stat" || return 1
  set -- ${stat##*)}
  [ $# -ge 20 ] && shift 19 && start_now=$1
}
rest=
while read -r kind pid start more || [ -n "$kind" ]; do
  case $kind in
    '' | owner) continue ;;
    stop) ;;
    *) rest=yes; continue ;;
  esac
  case $pid in '' | 0* | *[!0-9]*) continue ;; esac
  start_now=
  started "$pid" && [ "$start_now" = "$start" ] && kill -CONT "$pid"
done < "$1"
[ -n "$rest" ] || exec rm -f "$1"
[ -x "$2" ] && exec "$2" "$1"
)";

/// What to start the shell with: nothing of ours but the pipe, the usual signals, a session of its own.
class SpawnSetup {
public:
    explicit SpawnSetup(const Descriptor& input) {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, input.number(), STDIN_FILENO);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

std::string messageOf(int error) {
    return std::generic_category().message(error);
}

} // namespace

LinuxWatchdog::LinuxWatchdog(Setup setup) : setup_(std::move(setup)) {}

LinuxWatchdog::~LinuxWatchdog() {
    release();
}

std::optional<std::string> LinuxWatchdog::start(const std::filesystem::path& journal) {
    if (isWatching())
        return std::nullopt;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return messageOf(errno);
    Descriptor input(ends[0]);
    Descriptor lifeline(ends[1]);
    if (input.number() == STDIN_FILENO) // then `dup2` onto itself would leave it to be closed at the start of the shell
        input = Descriptor(fcntl(input.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));

    std::string words[]{setup_.shell.string(), "-c", script, "sh", journal.string(), setup_.rescue.string()};
    char* arguments[std::size(words) + 1]{};
    for (std::size_t i = 0; i < std::size(words); ++i)
        arguments[i] = words[i].data();
    std::string settings[]{"PATH=/usr/bin:/bin", "LC_ALL=C"};
    char* environment[]{settings[0].data(), settings[1].data(), nullptr};

    const SpawnSetup setup(input);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, setup_.shell.c_str(), &setup.files, &setup.attributes, arguments, environment);
    if (error != 0)
        return messageOf(error);
    lifeline_ = std::move(lifeline);
    process_ = process;
    return std::nullopt;
}

bool LinuxWatchdog::isWatching() {
    // Anything but a child that still runs: it has ended, or somebody else has waited for it.
    if (process_ > 0 && waitpid(process_, nullptr, WNOHANG) != 0) {
        process_ = 0;
        lifeline_.close();
    }
    return process_ > 0;
}

void LinuxWatchdog::release() {
    lifeline_.close();
    if (process_ <= 0)
        return;
    const auto descriptor = openProcess(process_);
    pollfd ended{descriptor.number(), POLLIN, 0};
    if (descriptor)
        poll(&ended, 1, patienceMilliseconds);
    waitpid(process_, nullptr, WNOHANG);
    process_ = 0;
}

} // namespace kestrio
