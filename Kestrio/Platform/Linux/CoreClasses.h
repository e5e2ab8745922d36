// Which logical cores the machine has, and which of them are the small ones that save power. Any thread; reads a file
// per core.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace kestrio {

/// The numbers of the cores that were in use, in order.
struct CoreClasses {
    std::vector<int> efficiency; // none on a machine with one class
    std::vector<int> performance;

    std::size_t count() const { return efficiency.size() + performance.size(); }
    bool isPerformance(int core) const;

    friend bool operator==(const CoreClasses&, const CoreClasses&) = default;
};

/// The numbers of a list such as "0-3,8,10-11". What is malformed in it is passed over; at most 4,096 numbers.
std::vector<int> parseCoreList(std::string_view text);

/// `sys` is `/sys`, or a folder like it. Hybrid processors of the x86 kind name their small cores, others give each
/// core's capacity. Without any word of the cores there is one, a performance core.
CoreClasses readCoreClasses(const std::filesystem::path& sys);

} // namespace kestrio
