#include "Kestrio/Platform/Linux/LinuxOwnUse.h"

#include "Kestrio/Platform/Linux/KernelText.h"
#include "Kestrio/Platform/Linux/ProcessTexts.h"

#include <string>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Every thread counts its own.
std::uint64_t voluntarySwitches(KernelTextBuffer& buffer, const fs::path& process) {
    std::uint64_t sum = 0;
    std::error_code error;
    for (fs::directory_iterator thread(process / "task", error), end; !error && thread != end; thread.increment(error))
        if (const auto text = buffer.read((thread->path() / "status").c_str()))
            sum += parseProcessStatus(*text).voluntarySwitches;
    return sum;
}

} // namespace

std::optional<OwnUse> readOwnUse(const fs::path& process) {
    KernelTextBuffer buffer;
    const auto statText = buffer.read((process / "stat").c_str());
    const auto stat = statText ? parseProcessStat(*statText) : std::nullopt;
    if (!stat)
        return std::nullopt;
    OwnUse use{.cpu = Seconds(static_cast<double>(stat->cpuTicks) / static_cast<double>(sysconf(_SC_CLK_TCK)))};
    if (const auto text = buffer.read((process / "status").c_str()))
        use.memory = parseProcessStatus(*text).resident;
    if (const auto text = buffer.read((process / "io").c_str()))
        if (const auto disk = parseProcessDiskUse(*text))
            use.bytesWritten = disk->written;
    use.wakeups = voluntarySwitches(buffer, process);
    return use;
}

} // namespace kestrio
