#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"

#include "Kestrio/Platform/Linux/LinuxHostFacts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

// A desktop stutters when a tenth of the time is spent waiting for memory; that is what the kernel's documentation and
// the daemons that kill programs in such need go by. The shares of free memory stand for kernels without that measure,
// and for the moment before it rises.
constexpr double criticalFullStall = 10; // percent of ten seconds
constexpr double warningSomeStall = 10;
constexpr double criticalAvailable = 0.04; // of the total
constexpr double warningAvailable = 0.10;

struct MemoryKey {
    std::string_view name;
    std::uint64_t MemoryInfo::*field;
};

constexpr auto memoryKeys = std::to_array<MemoryKey>({
    {"MemTotal", &MemoryInfo::total},
    {"AnonPages", &MemoryInfo::anonymous},
    {"Shmem", &MemoryInfo::shared},
    {"Unevictable", &MemoryInfo::unevictable},
    {"SUnreclaim", &MemoryInfo::unreclaimableSlab},
    {"KernelStack", &MemoryInfo::kernelStack},
    {"PageTables", &MemoryInfo::pageTables},
    {"Zswap", &MemoryInfo::zswap},
    {"Buffers", &MemoryInfo::buffers},
    {"Cached", &MemoryInfo::cached},
    {"SReclaimable", &MemoryInfo::reclaimableSlab},
    {"SwapTotal", &MemoryInfo::swapTotal},
    {"SwapFree", &MemoryInfo::swapFree},
});

/// The share behind "avg10=" in a line of the pressure file.
std::optional<double> tenSecondShare(std::string_view line) {
    constexpr std::string_view key = "avg10=";
    while (!line.empty()) {
        const auto word = nextWord(line);
        if (!word.starts_with(key))
            continue;
        const auto share = parsedDecimal(word.substr(key.size()));
        return share && std::isfinite(*share) ? share : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

std::optional<MemoryInfo> parseMemoryInfo(std::string_view text) {
    MemoryInfo memory;
    while (const auto line = nextLine(text)) {
        const auto colon = line->find(':');
        if (colon == std::string_view::npos)
            continue;
        const auto name = line->substr(0, colon);
        const auto kilobytes = leadingNumber(line->substr(colon + 1));
        if (!kilobytes)
            continue;
        const auto bytes = *kilobytes * 1024;
        if (name == "MemAvailable")
            memory.available = bytes;
        else if (const auto key = std::find_if(memoryKeys.begin(), memoryKeys.end(),
                                               [name](const auto& known) { return known.name == name; });
                 key != memoryKeys.end())
            memory.*key->field = bytes;
    }
    return memory.total > 0 ? std::optional(memory) : std::nullopt;
}

std::optional<MemoryStall> parseMemoryStall(std::string_view text) {
    std::optional<double> some;
    std::optional<double> full;
    while (const auto line = nextLine(text)) {
        if (line->starts_with("some "))
            some = tenSecondShare(*line);
        else if (line->starts_with("full "))
            full = tenSecondShare(*line);
    }
    return some && full ? std::optional(MemoryStall{*some, *full}) : std::nullopt;
}

MemoryPressure memoryPressure(const std::optional<MemoryStall>& stall, const std::optional<MemoryInfo>& memory) {
    const double available = memory && memory->available && memory->total > 0
                                 ? static_cast<double>(*memory->available) / static_cast<double>(memory->total)
                                 : 1;
    const auto waiting = stall.value_or(MemoryStall());
    if (waiting.full >= criticalFullStall || available < criticalAvailable)
        return MemoryPressure::critical;
    if (waiting.some >= warningSomeStall || available < warningAvailable)
        return MemoryPressure::warning;
    return MemoryPressure::normal;
}

SwapTraffic parseSwapTraffic(std::string_view text) {
    SwapTraffic traffic;
    while (const auto line = nextLine(text)) {
        if (line->starts_with("pswpin "))
            traffic.pagesIn = leadingNumber(line->substr(7)).value_or(0);
        else if (line->starts_with("pswpout "))
            traffic.pagesOut = leadingNumber(line->substr(8)).value_or(0);
    }
    return traffic;
}

std::optional<std::uint64_t> parseCompressedDriveMemory(std::string_view text) {
    nextWord(text); // the size of what is stored
    nextWord(text); // its size when compressed
    return parsedNumber<std::uint64_t>(nextWord(text));
}

std::vector<std::pair<int, CoreTime>> parseCoreTimes(std::string_view text) {
    constexpr std::size_t idle = 3; // behind user, nice and system
    constexpr std::size_t waiting = 4;
    constexpr std::size_t counted = 8; // up to stolen time; what guests used is in user and nice already
    std::vector<std::pair<int, CoreTime>> cores;
    while (auto line = nextLine(text)) {
        if (!line->starts_with("cpu"))
            break;
        const auto core = parsedNumber<int>(nextWord(*line).substr(3));
        if (!core || *core < 0)
            continue; // the sum of all
        CoreTime time;
        for (std::size_t field = 0; field < counted; ++field) {
            const auto ticks = parsedNumber<std::uint64_t>(nextWord(*line)).value_or(0);
            time.total += ticks;
            if (field != idle && field != waiting)
                time.busy += ticks;
        }
        cores.emplace_back(*core, time);
    }
    return cores;
}

LinuxKernelCounters::LinuxKernelCounters(fs::path processes, fs::path sys)
    : processes_(std::move(processes)),
      sys_(std::move(sys)),
      cores_(readCoreClasses(sys_)),
      pageSize_(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))),
      times_(cores_.count()) {}

std::string LinuxKernelCounters::chipName() {
    const auto text = buffer_.read((processes_ / "cpuinfo").c_str());
    return text ? processorName(*text) : std::string();
}

std::vector<CoreTime> LinuxKernelCounters::coreTimes() {
    const auto text = buffer_.read((processes_ / "stat").c_str());
    const auto cores = text ? parseCoreTimes(*text) : std::vector<std::pair<int, CoreTime>>();
    if (cores.empty())
        return {};
    const auto place = [this](int core) -> CoreTime* {
        std::size_t first = 0;
        for (const auto* list : {&cores_.efficiency, &cores_.performance}) {
            const auto found = std::lower_bound(list->begin(), list->end(), core);
            if (found != list->end() && *found == core)
                return &times_[first + static_cast<std::size_t>(found - list->begin())];
            first += list->size();
        }
        return nullptr;
    };
    for (const auto& [core, time] : cores)
        if (auto* kept = place(core))
            *kept = time;
    return times_;
}

std::optional<MemoryInfo> LinuxKernelCounters::memoryInfo() {
    const auto text = buffer_.read((processes_ / "meminfo").c_str());
    return text ? parseMemoryInfo(*text) : std::nullopt;
}

std::optional<MemoryStatistics> LinuxKernelCounters::memory() {
    const auto memory = memoryInfo();
    if (!memory)
        return std::nullopt;
    const auto swapText = buffer_.read((processes_ / "vmstat").c_str());
    const auto swap = swapText ? parseSwapTraffic(*swapText) : SwapTraffic();
    // What programs share is counted with the files too.
    const auto files = memory->cached + memory->buffers;
    return MemoryStatistics{.total = memory->total,
                            .internal = memory->anonymous + memory->shared,
                            .purgeable = 0,
                            .wired = memory->unevictable + memory->unreclaimableSlab + memory->kernelStack +
                                     memory->pageTables,
                            .compressor = memory->zswap + compressedDrives(),
                            .external = files - std::min(files, memory->shared) + memory->reclaimableSlab,
                            .swapIns = swap.pagesIn * pageSize_,
                            .swapOuts = swap.pagesOut * pageSize_};
}

/// Swap that is kept compressed in memory.
std::uint64_t LinuxKernelCounters::compressedDrives() {
    std::uint64_t bytes = 0;
    for (int drive = 0;; ++drive) {
        const auto text = buffer_.read((sys_ / "block" / ("zram" + std::to_string(drive)) / "mm_stat").c_str());
        if (!text)
            return bytes;
        bytes += parseCompressedDriveMemory(*text).value_or(0);
    }
}

std::optional<SwapUse> LinuxKernelCounters::swap() {
    const auto memory = memoryInfo();
    if (!memory)
        return std::nullopt;
    return SwapUse{memory->swapTotal - std::min(memory->swapTotal, memory->swapFree), memory->swapTotal};
}

MemoryPressure LinuxKernelCounters::memoryPressure() {
    const auto text = buffer_.read((processes_ / "pressure/memory").c_str());
    const auto stall = text ? parseMemoryStall(*text) : std::nullopt;
    return kestrio::memoryPressure(stall, memoryInfo());
}

} // namespace kestrio
