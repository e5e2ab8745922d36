#include "Kestrio/Platform/Linux/SafeFiles.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/TextFile.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

} // namespace

std::error_code replaceFile(const fs::path& file, std::string_view text, mode_t mode) {
    ReplacementFile replacement(file, mode);
    replacement.write(text);
    return replacement.commit();
}

void removeLeftovers(const fs::path& file) {
    const auto prefix = ReplacementFile::temporaryPrefix(file);
    std::error_code error;
    for (fs::directory_iterator at(file.parent_path(), error), end; !error && at != end; at.increment(error))
        if (at->path().filename().string().starts_with(prefix))
            unlink(at->path().c_str());
}

FileLock lockFile(const fs::path& file, Seconds patience) {
    Descriptor descriptor(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    if (!descriptor)
        return {Descriptor(), lastError()};
    const SystemClock clock;
    const auto deadline = clock.uptime() + patience;
    while (flock(descriptor.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return {Descriptor(), lastError()};
        if (clock.uptime() >= deadline)
            return {Descriptor(), std::make_error_code(std::errc::timed_out)};
        // The kernel has no lock with a deadline that needs no signal; holders keep it for a small file's write.
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return {std::move(descriptor), {}};
}

} // namespace kestrio
