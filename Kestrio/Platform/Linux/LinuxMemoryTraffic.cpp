#include "Kestrio/Platform/Linux/LinuxMemoryTraffic.h"

#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/KernelText.h"

#include <algorithm>
#include <linux/perf_event.h>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view controllers = "uncore_imc";
/// Counters that always run. Where a controller has them, its programmable ones count the same again.
constexpr std::string_view freeRunning = "uncore_imc_free_running";

// The same event has had several names.
constexpr std::string_view readEvents[] = {"data_reads", "data_read", "cas_count_read"};
constexpr std::string_view writeEvents[] = {"data_writes", "data_write", "cas_count_write"};

std::vector<fs::path> memoryControllers(const fs::path& sys) {
    std::vector<fs::path> devices;
    std::error_code error;
    for (fs::directory_iterator at(sys / "bus/event_source/devices", error), end; !error && at != end;
         at.increment(error))
        if (at->path().filename().native().starts_with(controllers))
            devices.push_back(at->path());
    const auto isFreeRunning = [](const fs::path& device) {
        return device.filename().native().starts_with(freeRunning);
    };
    if (std::any_of(devices.begin(), devices.end(), isFreeRunning))
        std::erase_if(devices, [&](const fs::path& device) { return !isFreeRunning(device); });
    return devices;
}

} // namespace

std::optional<unsigned> parseFormatShift(std::string_view text) {
    constexpr std::string_view word = "config:";
    if (!text.starts_with(word))
        return std::nullopt;
    const auto shift = parsedNumber<unsigned>(text.substr(word.size(), text.find('-') - word.size()));
    return shift && *shift < 64 ? shift : std::nullopt;
}

std::optional<std::uint64_t>
parseEventConfig(std::string_view text, const std::function<std::optional<unsigned>(std::string_view name)>& shiftOf) {
    std::uint64_t config = 0;
    while (!text.empty()) {
        const auto term = text.substr(0, text.find(','));
        text.remove_prefix(std::min(term.size() + 1, text.size()));
        const auto equals = term.find('=');
        auto digits = equals == std::string_view::npos ? std::string_view("1") : term.substr(equals + 1);
        const bool isHexadecimal = digits.starts_with("0x");
        const auto value = parsedNumber<std::uint64_t>(digits.substr(isHexadecimal ? 2 : 0), isHexadecimal ? 16 : 10);
        const auto shift = shiftOf(term.substr(0, equals));
        if (!value || !shift)
            return std::nullopt;
        config |= *value << *shift;
    }
    return config;
}

std::optional<double> parseBytesPerCount(std::string_view scale, std::string_view unit) {
    const auto number = parsedDecimal(scale);
    if (!number || !(*number > 0) || unit != "MiB")
        return std::nullopt;
    return *number * 1'048'576;
}

LinuxMemoryTraffic::Reader LinuxMemoryTraffic::openCounter(const PerformanceEvent& event, int core) {
    perf_event_attr attributes{};
    attributes.size = sizeof attributes;
    attributes.type = event.type;
    attributes.config = event.config;
    const auto opened = syscall(SYS_perf_event_open, &attributes, -1, core, -1, PERF_FLAG_FD_CLOEXEC);
    if (opened < 0)
        return {};
    return [counter = std::make_shared<Descriptor>(static_cast<int>(opened))]() -> std::optional<std::uint64_t> {
        std::uint64_t value = 0;
        return ::read(counter->number(), &value, sizeof value) == sizeof value ? std::optional(value) : std::nullopt;
    };
}

LinuxMemoryTraffic::LinuxMemoryTraffic(const fs::path& sys, const Opener& opener) {
    for (const auto& device : memoryControllers(sys)) {
        hasControllers_ = true;
        const auto open = [&](const auto& names, Counters& into) {
            return std::any_of(std::begin(names), std::end(names),
                               [&](std::string_view name) { return openEvent(device, name, opener, into); });
        };
        // Half of the controllers would be half of the traffic.
        if (!open(readEvents, reads_) || !open(writeEvents, writes_)) {
            reads_.clear();
            writes_.clear();
            return;
        }
    }
}

bool LinuxMemoryTraffic::openEvent(const fs::path& device, std::string_view name, const Opener& opener,
                                   Counters& into) {
    const auto text = [&](const std::string& file) { return kernelValue(device / file); };
    const auto event = "events/" + std::string(name);
    const auto type = parsedNumber<std::uint32_t>(text("type").value_or(""));
    const auto terms = text(event);
    const auto bytesPerCount =
        parseBytesPerCount(text(event + ".scale").value_or(""), text(event + ".unit").value_or(""));
    if (!type || !terms || !bytesPerCount)
        return false;
    const auto config = parseEventConfig(*terms, [&](std::string_view field) {
        return parseFormatShift(text("format/" + std::string(field)).value_or(""));
    });
    if (!config)
        return false;
    Counters opened;
    for (const int core : parseCoreList(text("cpumask").value_or(""))) {
        auto read = opener({*type, *config}, core);
        if (!read)
            return false;
        opened.push_back({std::move(read), *bytesPerCount});
    }
    std::move(opened.begin(), opened.end(), std::back_inserter(into));
    return !opened.empty();
}

std::optional<std::uint64_t> LinuxMemoryTraffic::sum(const Counters& counters) {
    double bytes = 0;
    for (const auto& counter : counters) {
        const auto count = counter.read();
        if (!count)
            return std::nullopt;
        bytes += static_cast<double>(*count) * counter.bytesPerCount;
    }
    return static_cast<std::uint64_t>(bytes);
}

std::optional<std::vector<MemoryChannel>> LinuxMemoryTraffic::channels() {
    if (reads_.empty() || writes_.empty())
        return std::nullopt;
    const auto read = sum(reads_);
    const auto written = sum(writes_);
    if (!read || !written)
        return std::nullopt;
    return std::vector<MemoryChannel>{{"", *read, *written}};
}

} // namespace kestrio
