#include "Kestrio/Base/Files.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrio {
namespace {

std::string failure(const std::filesystem::path& path, int error) {
    return path.string() + ": " + std::strerror(error);
}

/// Takes the group's and the others' access away; what the owner may do stays as it is.
bool keepOwnersAccessOnly(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0)
        return false;
    return (status.st_mode & 0077) == 0 || fchmod(descriptor, status.st_mode & 0700) == 0;
}

} // namespace

std::optional<std::string> makePrivateFolder(const std::filesystem::path& folder) {
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
        const auto parent = folder.parent_path();
        if (errno != ENOENT || parent.empty() || parent == folder)
            return failure(folder, errno);
        struct stat status {};
        if (stat(parent.c_str(), &status) != 0) // a parent that is there keeps its mode
            if (auto error = makePrivateFolder(parent))
                return error;
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            return failure(folder, errno);
    }
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return failure(folder, errno);
    const bool isPrivate = keepOwnersAccessOnly(descriptor);
    const int error = errno;
    close(descriptor);
    return isPrivate ? std::nullopt : std::optional(failure(folder, error));
}

std::optional<std::string> makePrivateFile(const std::filesystem::path& file) {
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (descriptor < 0)
        return failure(file, errno);
    const bool isPrivate = keepOwnersAccessOnly(descriptor);
    const int error = errno;
    close(descriptor);
    return isPrivate ? std::nullopt : std::optional(failure(file, error));
}

} // namespace kestrio
