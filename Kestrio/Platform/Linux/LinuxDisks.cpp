#include "Kestrio/Platform/Linux/LinuxDisks.h"

#include "Kestrio/Platform/Linux/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/magic.h>
#include <random>
#include <sys/vfs.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t sectorSize = 512; // of diskstats, whatever the drive's own
constexpr std::uint64_t nanosPerMillisecond = 1'000'000;

/// Reads and writes as long as they get on.
template <class Step>
bool all(std::size_t size, Step step) {
    std::size_t done = 0;
    while (done < size) {
        const auto count = step(done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

class LinuxSpeedTestFile final : public SpeedTestFile {
public:
    enum class Cache { bypassed, dropped };

    LinuxSpeedTestFile(Descriptor file, Cache cache) : file_(std::move(file)), cache_(cache) {}

    bool write(std::span<const std::byte> block) override {
        return all(block.size(),
                   [&](std::size_t from) { return ::write(file_.number(), &block[from], block.size() - from); });
    }
    bool flush() override { return fsync(file_.number()) == 0; }
    bool rewind() override {
        // What is on the drive by now need not be kept in memory as well.
        if (cache_ == Cache::dropped && posix_fadvise(file_.number(), 0, 0, POSIX_FADV_DONTNEED) != 0)
            return false;
        return lseek(file_.number(), 0, SEEK_SET) == 0;
    }
    bool read(std::span<std::byte> block) override {
        return all(block.size(),
                   [&](std::size_t from) { return ::read(file_.number(), &block[from], block.size() - from); });
    }

private:
    Descriptor file_;
    Cache cache_;
};

bool liesInMemory(const fs::path& folder) {
    struct statfs system {};
    if (statfs(folder.c_str(), &system) != 0)
        return true; // nothing can be made there either
    const auto kind = static_cast<unsigned long>(system.f_type);
    return kind == TMPFS_MAGIC || kind == RAMFS_MAGIC;
}

std::string uniqueName() {
    std::random_device random;
    std::string name = "kestrio-speedtest-";
    for (int digit = 0; digit < 32; ++digit)
        name += "0123456789abcdef"[random() % 16];
    return name;
}

/// A file that no folder lists.
Descriptor nameless(const fs::path& folder, int flags) {
    Descriptor file(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC | flags, 0600));
    if (file || errno == EINVAL) // it is the other flags that this file system does not have
        return file;
    const auto path = folder / uniqueName();
    file = Descriptor(open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, 0600));
    // Where direct access is refused the file may have been made all the same.
    const int error = errno;
    unlink(path.c_str());
    errno = error;
    return file;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

} // namespace

std::vector<DiskLine> parseDiskStatistics(std::string_view text) {
    // Behind the two numbers and the name of the device, as the kernel's iostats.rst has them.
    enum Field : std::size_t {
        reads,
        readsMerged,
        sectorsRead,
        readTime,
        writes,
        writesMerged,
        sectorsWritten,
        writeTime
    };
    std::vector<DiskLine> lines;
    while (auto line = nextLine(text)) {
        nextWord(*line);
        nextWord(*line);
        const auto device = nextWord(*line);
        std::array<std::uint64_t, writeTime + 1> fields{};
        const bool isWhole = std::all_of(fields.begin(), fields.end(), [&line](std::uint64_t& field) {
            const auto number = parsedNumber<std::uint64_t>(nextWord(*line));
            field = number.value_or(0);
            return number.has_value();
        });
        if (!device.empty() && isWhole)
            lines.push_back({device,
                             {.bytesRead = fields[sectorsRead] * sectorSize,
                              .bytesWritten = fields[sectorsWritten] * sectorSize,
                              .operations = fields[reads] + fields[writes],
                              .nanosBusy = (fields[readTime] + fields[writeTime]) * nanosPerMillisecond}});
    }
    return lines;
}

bool isInternalDrive(const fs::path& sys, std::string_view device) {
    // Parts of drives are no entries here. A slash in a name is an exclamation mark here.
    std::string name(device);
    std::replace(name.begin(), name.end(), '/', '!');
    std::error_code error;
    const auto entry = sys / "block" / name;
    const auto target = fs::read_symlink(entry, error);
    if (error || name.empty())
        return false;
    const std::string_view place = target.native();
    // Loops, RAM, arrays and mappings; a drive that is reached on two ways is listed there too, and is none of these.
    if (contains(place, "/virtual/") && !contains(place, "/virtual/nvme-subsystem/"))
        return false;
    // From outside, or over a network.
    for (const auto* way : {"/usb", "/fw", "/session", "/rport-", "/nbd", "/rbd"})
        if (contains(place, way))
            return false;
    const auto value = [&entry](const char* file) { return kernelValue(entry / file).value_or(""); };
    // A drive with several ways has one hidden device per way; cards are put in and taken out.
    if (value("removable") == "1" || value("hidden") == "1" || value("device/type") == "SD")
        return false;
    // Of a port that devices are plugged into, such as Thunderbolt.
    return value("device/device/removable") != "removable" && value("device/removable") != "removable";
}

std::unique_ptr<SpeedTestFile> makeSpeedTestFile(const fs::path& folder) {
    using Cache = LinuxSpeedTestFile::Cache;
    if (liesInMemory(folder))
        return nullptr;
    if (auto direct = nameless(folder, O_DIRECT))
        return std::make_unique<LinuxSpeedTestFile>(std::move(direct), Cache::bypassed);
    // Some file systems know no direct access: the cache is used, and emptied before reading.
    if (auto cached = nameless(folder, 0))
        return std::make_unique<LinuxSpeedTestFile>(std::move(cached), Cache::dropped);
    return nullptr;
}

LinuxDisks::LinuxDisks(std::vector<fs::path> testFolders, const fs::path& processes, fs::path sys)
    : testFolders_(std::move(testFolders)), statistics_(processes / "diskstats"), sys_(std::move(sys)) {}

std::optional<DiskCounters> LinuxDisks::internalDrives() {
    const auto text = buffer_.read(statistics_.c_str());
    if (!text)
        return std::nullopt;
    std::optional<DiskCounters> sum;
    const auto lines = parseDiskStatistics(*text);
    for (const auto& [device, counters] : lines) {
        auto known = isInternal_.find(device);
        if (known == isInternal_.end())
            known = isInternal_.emplace(device, isInternalDrive(sys_, device)).first;
        if (!known->second)
            continue;
        sum = sum.value_or(DiskCounters());
        sum->bytesRead += counters.bytesRead;
        sum->bytesWritten += counters.bytesWritten;
        sum->operations += counters.operations;
        sum->nanosBusy += counters.nanosBusy;
    }
    if (isInternal_.size() > lines.size())
        std::erase_if(isInternal_, [&lines](const auto& known) {
            return std::none_of(lines.begin(), lines.end(),
                                [&](const DiskLine& line) { return line.device == known.first; });
        });
    return sum;
}

std::unique_ptr<SpeedTestFile> LinuxDisks::makeSpeedTestFile() {
    for (const auto& folder : testFolders_)
        if (auto file = kestrio::makeSpeedTestFile(folder))
            return file;
    return nullptr;
}

} // namespace kestrio
