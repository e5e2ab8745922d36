// Tells whether somebody set another time zone for this computer. Single-threaded; a look is one system call.
#pragma once

#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <tuple>
#include <utility>

namespace kestrio {

class ZoneWatch {
public:
    /// `file` is the one with the zone, or a link to it; another zone is another file or link in its place.
    explicit ZoneWatch(std::filesystem::path file = "/etc/localtime") : file_(std::move(file)), seen_(look()) {}

    /// Whether the file is another than at the last look.
    bool hasChanged() {
        const auto before = std::exchange(seen_, look());
        return seen_ != before;
    }

private:
    using Mark = std::tuple<ino_t, time_t, decltype(timespec::tv_nsec)>;

    std::optional<Mark> look() const {
        struct stat status {};
        if (lstat(file_.c_str(), &status) != 0)
            return std::nullopt;
        return Mark(status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    }

    std::filesystem::path file_;
    std::optional<Mark> seen_;
};

} // namespace kestrio
