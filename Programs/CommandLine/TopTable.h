// The applications and what each of them uses, with all their processes, as a table for a terminal or as data. Pure
// functions of their arguments.
#pragma once

#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Resources/AppProcessScanner.h"
#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

enum class TopOrder { cpu, memory };

/// Absent for a word that stands for no order.
std::optional<TopOrder> topOrder(std::string_view word);

/// One moment of the machine.
struct TopReading {
    AppProcessScanner::Scan scan;
    Seconds interval{0}; // that the increases are of
    std::size_t processCount = 0;
    std::size_t cores = 1;
    std::optional<double> load = {}; // of all cores, 0 to 1
    std::optional<MemoryStatistics> memory = {};
    std::optional<SwapUse> swap = {};
    MemoryPressure pressure = MemoryPressure::normal;
};

/// Ordered by what was asked for, the greatest first; equal ones by name.
std::vector<AppProcesses> ordered(std::vector<AppProcesses> apps, TopOrder order);

/// Sizes are in the words of the calendar's locale. `rows` bounds the lines, with one for what is left out; absent for
/// all of them. Ends with a line feed.
std::string topTable(const TopReading& reading, TopOrder order, const Calendar& calendar, const TableStyle& style,
                     std::optional<std::size_t> rows = {});

nlohmann::ordered_json toJSON(const TopReading& reading, TopOrder order);

} // namespace kestrio
