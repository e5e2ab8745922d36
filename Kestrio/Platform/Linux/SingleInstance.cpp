#include "Kestrio/Platform/Linux/SingleInstance.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Platform/Linux/SafeFiles.h"

#include <array>
#include <charconv>
#include <fcntl.h>
#include <fmt/format.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

std::optional<pid_t> writtenProcess(const fs::path& file) {
    const Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 32> text{};
    const auto size = descriptor ? read(descriptor.number(), text.data(), text.size()) : -1;
    pid_t process = 0;
    if (size <= 0 || std::from_chars(text.data(), text.data() + size, process).ec != std::errc() || process <= 0)
        return std::nullopt;
    return process;
}

} // namespace

SingleInstance::Answer SingleInstance::acquire(const fs::path& dataFolder) {
    if (const auto error = makePrivateFolder(dataFolder))
        return Failed{fmt::format("couldn't make the folder {}: {}", dataFolder.string(), error.message())};
    const auto file = dataFolder / "agent.lock";
    auto lock = lockFile(file, Seconds(0));
    if (lock.error == std::errc::timed_out)
        return Taken{writtenProcess(file)};
    if (lock.error)
        return Failed{fmt::format("couldn't lock {}: {}", file.string(), lock.error.message())};
    // For people who look; the lock alone counts, so a disk without room for it is no obstacle.
    const auto process = fmt::format("{}\n", getpid());
    if (ftruncate(lock.descriptor.number(), 0) == 0) [[maybe_unused]]
        const auto written = pwrite(lock.descriptor.number(), process.data(), process.size(), 0);
    return SingleInstance(std::move(lock.descriptor));
}

} // namespace kestrio
