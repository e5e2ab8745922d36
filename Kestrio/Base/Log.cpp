#include "Kestrio/Base/Log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <sys/stat.h>
#include <syslog.h>
#include <utility>

namespace kestrio {
namespace {

std::mutex receiverMutex;
LogReceiver receiver; // guarded by the mutex

/// systemd tells a service which device and inode its journal stream has.
bool standardErrorIsJournal() {
    const char* stream = std::getenv("JOURNAL_STREAM");
    struct stat file {};
    unsigned long long device = 0;
    unsigned long long inode = 0;
    return stream && std::sscanf(stream, "%llu:%llu", &device, &inode) == 2 && fstat(2, &file) == 0 &&
           file.st_dev == device && file.st_ino == inode;
}

void writeToSystem(const std::string& line) {
    static const bool journalled = standardErrorIsJournal();
    std::fprintf(stderr, "%s\n", line.c_str());
    if (!journalled)
        syslog(LOG_USER | LOG_INFO, "%s", line.c_str());
}

} // namespace

void logLine(std::string_view line) {
    std::string text(line);
    std::replace(text.begin(), text.end(), '\n', ' ');
    LogReceiver current;
    {
        const std::lock_guard guard(receiverMutex);
        current = receiver;
    }
    if (current)
        current(text);
    else
        writeToSystem(text);
}

LogReceiver setLogReceiver(LogReceiver replacement) {
    const std::lock_guard guard(receiverMutex);
    return std::exchange(receiver, std::move(replacement));
}

} // namespace kestrio
