#include "Kestrio/Base/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrio {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Opens, and takes the group's and the others' access away; what the owner may do stays as it is.
std::error_code keepOwnersAccessOnly(const std::filesystem::path& path, int flags) {
    const int descriptor = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0600);
    if (descriptor < 0)
        return lastError();
    std::error_code error;
    struct stat status {};
    const bool isKnown = fstat(descriptor, &status) == 0;
    const bool isOpenToOthers = isKnown && (status.st_mode & 0077) != 0;
    if (!isKnown || (isOpenToOthers && fchmod(descriptor, status.st_mode & 0700) != 0 && errno != EPERM))
        error = lastError();
    close(descriptor);
    return error;
}

} // namespace

std::error_code makeFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    if (folder.empty() || std::filesystem::is_directory(folder, ignored))
        return {};
    if (folder.has_relative_path() && folder.parent_path() != folder)
        if (const auto error = makeFolder(folder.parent_path()))
            return error;
    return mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST ? std::error_code() : lastError();
}

std::error_code makePrivateFolder(const std::filesystem::path& folder) {
    if (const auto error = makeFolder(folder))
        return error;
    return keepOwnersAccessOnly(folder, O_RDONLY | O_DIRECTORY);
}

std::error_code makePrivateFile(const std::filesystem::path& file) {
    return keepOwnersAccessOnly(file, O_RDWR | O_CREAT);
}

Descriptor openForReading(const std::filesystem::path& file) {
    return Descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

} // namespace kestrio
