#include "Tests/Support/PrivateBus.h"

#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

/// A session bus on which everybody may do everything and nothing is started on demand.
std::string configuration(const std::string& address) {
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig><type>session</type><listen>" +
           address +
           "</listen><auth>EXTERNAL</auth>"
           "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
           "<allow own=\"*\"/></policy></busconfig>\n";
}

} // namespace

PrivateBus::PrivateBus() : address_("unix:path=" + (folder_.path() / "bus").string()) {
    const auto file = (folder_.path() / "bus.conf").string();
    writeFile(file, configuration(address_));
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the bus");
    const auto argument = "--config-file=" + file;
    const pid_t parent = getpid();
    daemon_ = fork();
    if (daemon_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(1);
        dup2(ends[1], STDOUT_FILENO);
        // What it says about its limits concerns no test.
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
        execlp("dbus-daemon", "dbus-daemon", argument.c_str(), "--nofork", "--nopidfile", "--print-address=1", nullptr);
        _exit(127);
    }
    close(ends[1]);
    // It prints its address once it listens.
    char first = 0;
    const bool listens = daemon_ > 0 && read(ends[0], &first, 1) == 1;
    close(ends[0]);
    if (!listens)
        throw std::runtime_error("the bus did not start");
}

PrivateBus::~PrivateBus() {
    kill();
}

void PrivateBus::kill() {
    if (daemon_ <= 0)
        return;
    ::kill(daemon_, SIGKILL);
    waitpid(daemon_, nullptr, 0);
    daemon_ = 0;
}

void PrivateBus::freeze() {
    ::kill(daemon_, SIGSTOP);
    waitpid(daemon_, nullptr, WUNTRACED);
}

void PrivateBus::thaw() {
    ::kill(daemon_, SIGCONT);
}

} // namespace kestrio
