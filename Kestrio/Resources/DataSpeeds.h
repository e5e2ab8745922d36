// How fast data moves: between the chip and its memory, and to and from the drives.
//
// Pure functions over two readings, and a meter that keeps the last one; the meter belongs to the queue of the sampler
// that owns it. Speeds are in bytes per second. What cannot be read is absent.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Platform/Disks.h"
#include "Kestrio/Platform/MemoryTraffic.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

namespace RAMSpeed {

/// The most that the chip of this exact name moves to and from its memory. Absent for all others.
std::optional<double> topSpeed(std::string_view chipName);

} // namespace RAMSpeed

/// One interval of memory traffic.
struct RAMTraffic {
    /// One consumer of memory bandwidth.
    struct Client {
        std::string id;
        std::string name;
        double bytesPerSecond = 0;

        friend bool operator==(const Client&, const Client&) = default;
    };

    double read = 0;
    double write = 0;
    std::vector<Client> clients; // the largest first

    friend bool operator==(const RAMTraffic&, const RAMTraffic&) = default;
};

class RAMTrafficMeter {
public:
    /// The traffic must outlive the meter.
    explicit RAMTrafficMeter(MemoryTraffic& traffic) : traffic_(traffic) {}

    /// Since the last call. Absent at the first call, where no time has passed or nothing moved, and where the host
    /// does not tell; a reading that fails leaves the earlier one in place.
    std::optional<RAMTraffic> sample(Uptime now);

    struct Group {
        std::string_view id;
        std::string_view name;

        friend bool operator==(const Group&, const Group&) = default;
    };

    /// What people call the parts of a chip that units of these names belong to.
    static Group group(std::string_view unit);

private:
    MemoryTraffic& traffic_;
    std::optional<std::vector<MemoryChannel>> previous_;
    Uptime previousAt_;
};

/// One interval of disk traffic.
struct SSDTraffic {
    double read = 0;
    double write = 0;
    double requestsPerSecond = 0;
    std::optional<double> wait = {}; // seconds per request; absent without requests

    friend bool operator==(const SSDTraffic&, const SSDTraffic&) = default;
};

/// Absent when no time has passed, and when any counter went down: a drive went away, or a counter began anew.
std::optional<SSDTraffic> rates(const DiskCounters& newer, const DiskCounters& older, double seconds);

} // namespace kestrio
