#include "Kestrio/Platform/Linux/CoreClasses.h"

#include "Kestrio/Platform/Linux/KernelText.h"

#include <algorithm>
#include <string>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// More than any machine of one person has; a list is not to fill the memory.
constexpr std::size_t mostCores = 4096;
constexpr int highestCore = 1'000'000;

/// Cores of one design differ in capacity by some percent, as their frequencies do, and the fastest of three clusters
/// is a good sixth above the middle one. A small core has half the capacity of a large one at most.
constexpr double smallCoreShare = 0.7;

std::vector<int> smallCoresByCapacity(const fs::path& sys, const std::vector<int>& cores) {
    std::vector<std::uint64_t> capacities;
    for (const int core : cores) {
        const auto text =
            kernelValue(sys / "devices/system/cpu" / ("cpu" + std::to_string(core)) / "cpu_capacity").value_or("");
        const auto capacity = parsedNumber<std::uint64_t>(text);
        if (!capacity)
            return {};
        capacities.push_back(*capacity);
    }
    if (capacities.empty())
        return {};
    const auto bound = static_cast<double>(*std::max_element(capacities.begin(), capacities.end())) * smallCoreShare;
    std::vector<int> small;
    for (std::size_t i = 0; i < cores.size(); ++i)
        if (static_cast<double>(capacities[i]) < bound)
            small.push_back(cores[i]);
    return small;
}

bool contains(const std::vector<int>& sorted, int core) {
    return std::binary_search(sorted.begin(), sorted.end(), core);
}

} // namespace

bool CoreClasses::isPerformance(int core) const {
    return !contains(efficiency, core);
}

std::vector<int> parseCoreList(std::string_view text) {
    std::vector<int> cores;
    while (!text.empty()) {
        const auto part = text.substr(0, text.find(','));
        text.remove_prefix(std::min(part.size() + 1, text.size()));
        const auto dash = part.find('-');
        const auto first = parsedNumber<int>(part.substr(0, dash));
        const auto last = dash == std::string_view::npos ? first : parsedNumber<int>(part.substr(dash + 1));
        if (!first || !last || *first < 0 || *last > highestCore)
            continue;
        for (int core = *first; core <= *last && cores.size() < mostCores; ++core)
            cores.push_back(core);
    }
    std::sort(cores.begin(), cores.end());
    cores.erase(std::unique(cores.begin(), cores.end()), cores.end());
    return cores;
}

CoreClasses readCoreClasses(const fs::path& sys) {
    auto cores = parseCoreList(kernelValue(sys / "devices/system/cpu/online").value_or(""));
    if (cores.empty())
        cores = {0};
    auto small = parseCoreList(kernelValue(sys / "devices/cpu_atom/cpus").value_or(""));
    if (small.empty())
        small = smallCoresByCapacity(sys, cores);
    CoreClasses classes;
    for (const int core : cores)
        (contains(small, core) ? classes.efficiency : classes.performance).push_back(core);
    // A machine of nothing but small cores has one class.
    if (classes.performance.empty())
        std::swap(classes.efficiency, classes.performance);
    return classes;
}

} // namespace kestrio
