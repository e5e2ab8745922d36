#include "Kestrio/Resources/DataSpeeds.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestrio {
namespace {

struct ChipSpeed {
    std::string_view chip;
    double bytesPerSecond;
};

constexpr auto chipSpeeds = std::to_array<ChipSpeed>({
    {"Apple M1", 68'250'000'000},
    {"Apple M1 Pro", 200'000'000'000},
    {"Apple M2 Pro", 200'000'000'000},
    {"Apple M1 Max", 400'000'000'000},
    {"Apple M2 Max", 400'000'000'000},
    {"Apple M1 Ultra", 800'000'000'000},
    {"Apple M2 Ultra", 800'000'000'000},
    {"Apple M2", 100'000'000'000},
    {"Apple M3", 100'000'000'000},
    {"Apple M3 Pro", 150'000'000'000},
    {"Apple M4", 120'000'000'000},
    {"Apple M4 Pro", 273'000'000'000},
});

constexpr RAMTrafficMeter::Group otherGroup{"other", "Other"};

struct UnitGroup {
    std::string_view unit;
    RAMTrafficMeter::Group group;
};

constexpr auto unitGroups = std::to_array<UnitGroup>({
    {"PCPU", {"fast", "Fast cores"}},
    {"ECPU", {"efficient", "Efficiency cores"}},
    {"GFX", {"graphics", "Graphics & AI"}},
    {"ANE", {"graphics", "Graphics & AI"}},
    {"DISP", {"media", "Screen, video & camera"}},
    {"DISPEXT", {"media", "Screen, video & camera"}},
    {"DFR", {"media", "Screen, video & camera"}},
    {"ISP", {"media", "Screen, video & camera"}},
    {"JPG", {"media", "Screen, video & camera"}},
    {"VDEC", {"media", "Screen, video & camera"}},
    {"VENC", {"media", "Screen, video & camera"}},
    {"MSR", {"media", "Screen, video & camera"}},
    {"ANS2", {"storage", "SSD & ports"}},
    {"PCIE", {"storage", "SSD & ports"}},
    {"ATC0", {"storage", "SSD & ports"}},
    {"ATC1", {"storage", "SSD & ports"}},
    {"SBR", {"storage", "SSD & ports"}},
});

/// What a channel has moved between two readings. A counter that went down has moved nothing.
struct Moved {
    double read = 0;
    double written = 0;
};

Moved moved(const MemoryChannel& now, const std::vector<MemoryChannel>& before) {
    const auto old = std::find_if(before.begin(), before.end(),
                                  [&now](const MemoryChannel& channel) { return channel.unit == now.unit; });
    if (old == before.end())
        return {};
    const auto increase = [](std::uint64_t newer, std::uint64_t older) {
        return newer > older ? static_cast<double>(newer - older) : 0;
    };
    return {increase(now.read, old->read), increase(now.written, old->written)};
}

/// Adds to the client of the group, which is made with its first channel.
void addToClient(std::vector<RAMTraffic::Client>& clients, RAMTrafficMeter::Group group, double bytesPerSecond) {
    auto client = std::find_if(clients.begin(), clients.end(),
                               [&group](const RAMTraffic::Client& known) { return known.id == group.id; });
    if (client == clients.end())
        client = clients.insert(client, {std::string(group.id), std::string(group.name), 0});
    client->bytesPerSecond += bytesPerSecond;
}

/// What the whole has moved beyond its known parts. It may stand beside a client of the same id, that of unknown units.
void addRemainder(RAMTraffic& traffic) {
    constexpr double negligible = 1.0; // bytes per second; less is the error of the sums
    double known = 0;
    for (const auto& client : traffic.clients)
        known += client.bytesPerSecond;
    const double total = traffic.read + traffic.write;
    if (total > known + negligible)
        traffic.clients.push_back({std::string(otherGroup.id), std::string(otherGroup.name), total - known});
}

} // namespace

std::optional<double> RAMSpeed::topSpeed(std::string_view chipName) {
    const auto* known = std::find_if(chipSpeeds.begin(), chipSpeeds.end(),
                                     [chipName](const ChipSpeed& speed) { return speed.chip == chipName; });
    return known == chipSpeeds.end() ? std::nullopt : std::optional(known->bytesPerSecond);
}

RAMTrafficMeter::Group RAMTrafficMeter::group(std::string_view unit) {
    const auto* known = std::find_if(unitGroups.begin(), unitGroups.end(),
                                     [unit](const UnitGroup& entry) { return entry.unit == unit; });
    return known == unitGroups.end() ? otherGroup : known->group;
}

std::optional<RAMTraffic> RAMTrafficMeter::sample(Uptime now) {
    auto channels = traffic_.channels();
    if (!channels)
        return std::nullopt;
    const auto previous = std::exchange(previous_, std::move(channels));
    const double seconds = (now - std::exchange(previousAt_, now)).count();
    if (!previous || !(seconds > 0))
        return std::nullopt;
    RAMTraffic traffic;
    for (const auto& channel : *previous_) {
        const auto bytes = moved(channel, *previous);
        if (channel.unit.empty()) {
            traffic.read = bytes.read / seconds;
            traffic.write = bytes.written / seconds;
        } else {
            addToClient(traffic.clients, group(channel.unit), (bytes.read + bytes.written) / seconds);
        }
    }
    if (!(traffic.read + traffic.write > 0) && traffic.clients.empty())
        return std::nullopt;
    addRemainder(traffic);
    std::stable_sort(traffic.clients.begin(), traffic.clients.end(),
                     [](const auto& a, const auto& b) { return a.bytesPerSecond > b.bytesPerSecond; });
    return traffic;
}

std::optional<SSDTraffic> rates(const DiskCounters& newer, const DiskCounters& older, double seconds) {
    if (!(seconds > 0) || newer.bytesRead < older.bytesRead || newer.bytesWritten < older.bytesWritten ||
        newer.operations < older.operations || newer.nanosBusy < older.nanosBusy)
        return std::nullopt;
    const auto increase = [&](std::uint64_t DiskCounters::*counter) {
        return static_cast<double>(newer.*counter - older.*counter);
    };
    const double operations = increase(&DiskCounters::operations);
    return SSDTraffic{.read = increase(&DiskCounters::bytesRead) / seconds,
                      .write = increase(&DiskCounters::bytesWritten) / seconds,
                      .requestsPerSecond = operations / seconds,
                      .wait = operations > 0 ? std::optional(increase(&DiskCounters::nanosBusy) / operations / 1e9)
                                             : std::nullopt};
}

} // namespace kestrio
