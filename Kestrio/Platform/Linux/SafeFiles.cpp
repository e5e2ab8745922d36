#include "Kestrio/Platform/Linux/SafeFiles.h"

#include "Kestrio/Base/Clock.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view temporaryMark = ".new-";

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const auto written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return lastError();
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

/// Hidden, so that no file manager or start-up reader takes it for a file of its own.
std::string temporaryPrefix(const fs::path& file) {
    return "." + file.filename().string() + std::string(temporaryMark);
}

std::error_code writeAndRename(const Descriptor& temporary, const std::string& name, const fs::path& file,
                               std::string_view text, mode_t mode) {
    if (fchmod(temporary.number(), mode) != 0)
        return lastError();
    if (const auto error = writeAll(temporary.number(), text))
        return error;
    if (fsync(temporary.number()) != 0 || rename(name.c_str(), file.c_str()) != 0)
        return lastError();
    return {};
}

} // namespace

std::error_code replaceFile(const fs::path& file, std::string_view text, mode_t mode) {
    std::string name = (file.parent_path() / (temporaryPrefix(file) + "XXXXXX")).string();
    const Descriptor temporary(mkostemp(name.data(), O_CLOEXEC));
    if (!temporary)
        return lastError();
    if (const auto error = writeAndRename(temporary, name, file, text, mode)) {
        unlink(name.c_str());
        return error;
    }
    // Without this the new name may be lost with the power. The file itself is in place, so a failure changes nothing.
    const Descriptor folder(open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        fsync(folder.number());
    return {};
}

void removeLeftovers(const fs::path& file) {
    const auto prefix = temporaryPrefix(file);
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
