#include "Programs/CommandLine/TopTable.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Monitor/MonitorJSON.h"
#include "Kestrio/Resources/KernelStats.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

constexpr std::size_t barColumns = 10;
constexpr std::size_t valueColumns = 10;
constexpr std::size_t leastNameColumns = 12;
constexpr std::size_t mostNameColumns = 36;

/// Slower than this is nothing that anybody looks for.
constexpr double leastSpeed = 1'000; // bytes per second
constexpr double leastWakeups = 0.5; // per second

struct Cell {
    const AppProcesses& app;
    const TopReading& reading;
    const Calendar& calendar;

    /// "–" where there is no baseline to measure from.
    template <class Text>
    std::string perSecond(std::uint64_t increase, Text text) const {
        if (!reading.scan.hasCPU || !(reading.interval > Seconds(0)))
            return "–";
        return text(static_cast<double>(increase) / reading.interval.count());
    }
    std::string speed(std::uint64_t bytes) const {
        return perSecond(
            bytes, [this](double rate) { return rate < leastSpeed ? std::string() : Fmt::speed(rate, calendar); });
    }
};

/// A column behind the name. Narrow terminals show the first ones only.
struct Column {
    const char* title;
    std::string (*text)(const Cell& cell);
};

const Column columns[] = {
    {"CPU",
     [](const Cell& cell) { return cell.reading.scan.hasCPU ? fmt::format("{:.1f}%", cell.app.cpuCores * 100) : "–"; }},
    {"Memory", [](const Cell& cell) { return Fmt::memory(cell.app.footprint, cell.calendar); }},
    {"Processes", [](const Cell& cell) { return fmt::format("{}", cell.app.processes.size()); }},
    {"Read", [](const Cell& cell) { return cell.speed(cell.app.diskRead); }},
    {"Written", [](const Cell& cell) { return cell.speed(cell.app.diskWritten); }},
    {"Wake-ups",
     [](const Cell& cell) {
         return cell.perSecond(cell.app.wakeups, [](double rate) {
             return rate < leastWakeups ? std::string() : fmt::format("{:.0f}/s", rate);
         });
     }},
};

class Table {
public:
    Table(const TopReading& reading, TopOrder order, const Calendar& calendar, const TableStyle& style)
        : reading_(reading),
          order_(order),
          calendar_(calendar),
          paint_(style.hasColour),
          width_(std::max<std::size_t>(style.width, 40)),
          apps_(ordered(reading.scan.apps, order)) {
        const auto fixed = 2 + 2 + barColumns;
        columnCount_ = std::min(std::size(columns), (width_ - fixed - leastNameColumns) / (valueColumns + 1));
        const auto room = width_ - fixed - columnCount_ * (valueColumns + 1);
        for (const auto& app : apps_)
            nameColumns_ = std::max(nameColumns_, text::columns(text::fittedToColumns(app.name, mostNameColumns)));
        nameColumns_ = std::clamp(nameColumns_, leastNameColumns, std::min(room, mostNameColumns));
    }

    std::string text(std::optional<std::size_t> rows) {
        addSummary();
        addHeader();
        constexpr std::size_t linesAbove = 5;
        const auto room = rows ? std::max(*rows, linesAbove + 1) - linesAbove : apps_.size();
        const auto shown = apps_.size() <= room ? apps_.size() : room - 1;
        for (std::size_t i = 0; i < shown; ++i)
            addApp(apps_[i]);
        if (shown < apps_.size())
            text_ += "  " + paint_.dim(fmt::format("and {} more", apps_.size() - shown)) + "\n";
        return text_;
    }

private:
    void addSummary() {
        std::string cpu = "CPU ";
        cpu += reading_.load ? fmt::format("{:.0f}% of {} {}", *reading_.load * 100, reading_.cores,
                                           reading_.cores == 1 ? "core" : "cores")
                             : "–";
        std::string memory = "Memory –";
        if (reading_.memory) {
            const auto parts = KernelStats::breakdown(*reading_.memory, reading_.memory->total);
            memory = fmt::format("Memory {} of {}", Fmt::memory(parts.apps + parts.wired + parts.compressed, calendar_),
                                 Fmt::memory(reading_.memory->total, calendar_));
        }
        if (reading_.swap && reading_.swap->total > 0)
            memory += fmt::format(", swap {}", Fmt::memory(reading_.swap->used, calendar_));
        const auto counts = fmt::format("{} applications, {} processes", apps_.size(), reading_.processCount);
        addFitted(cpu + "   " + memory + "   pressure " + std::string(rawValue(reading_.pressure)), true);
        addFitted(counts, false);
        text_ += "\n";
    }

    void addFitted(const std::string& line, bool isBold) {
        const auto fitted = text::fittedToColumns(line, width_ - 2);
        text_ += "  " + (isBold ? paint_.bold(fitted) : paint_.dim(fitted)) + "\n";
    }

    void addHeader() {
        auto line = padded("Application", nameColumns_) + "  " + std::string(barColumns, ' ');
        for (std::size_t i = 0; i < columnCount_; ++i)
            line += " " + paddedLeft(columns[i].title, valueColumns);
        text_ += "  " + paint_.dim(line) + "\n";
        text_ += "  " + paint_.dim(ruler(text::columns(line))) + "\n";
    }

    static std::string ruler(std::size_t length) {
        std::string line;
        for (std::size_t i = 0; i < length; ++i)
            line += "─";
        return line;
    }

    void addApp(const AppProcesses& app) {
        const auto name = padded(text::fittedToColumns(app.name, nameColumns_), nameColumns_);
        auto line = fmt::format("  {}  {}", app.bundleID ? paint_.bold(name) : name,
                                paint_.shade(order_ == TopOrder::cpu ? 0 : 1, bar(share(app), barColumns)));
        for (std::size_t i = 0; i < columnCount_; ++i)
            line += " " + paddedLeft(columns[i].text({app, reading_, calendar_}), valueColumns);
        line.erase(line.find_last_not_of(' ') + 1);
        text_ += line + "\n";
    }

    /// Of the whole machine.
    double share(const AppProcesses& app) const {
        if (order_ == TopOrder::cpu)
            return app.cpu;
        const auto total = reading_.memory ? reading_.memory->total : 0;
        return total > 0 ? static_cast<double>(app.footprint) / static_cast<double>(total) : 0;
    }

    const TopReading& reading_;
    const TopOrder order_;
    const Calendar& calendar_;
    const Painter paint_;
    const std::size_t width_;
    const std::vector<AppProcesses> apps_;
    std::size_t columnCount_ = 0;
    std::size_t nameColumns_ = 0;
    std::string text_;
};

template <class Value>
JSON optional(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON();
}

JSON toJSON(const AppProcesses& app) {
    auto processes = JSON::array();
    for (const auto& process : app.processes)
        processes.push_back({{"pid", process.pid}, {"start", process.start}});
    return {{"id", app.id},
            {"name", app.name},
            {"bundleID", optional(app.bundleID)},
            {"appPath", optional(app.appPath)},
            {"cpu", app.cpu},
            {"cpuCores", app.cpuCores},
            {"pcoreShare", optional(app.pcoreShare)},
            {"recentPcoreShare", optional(app.recentPcoreShare)},
            {"footprint", app.footprint},
            {"resident", app.resident},
            {"pageins", app.pageins},
            {"diskRead", app.diskRead},
            {"diskWritten", app.diskWritten},
            {"energy", app.energy},
            {"wakeups", app.wakeups},
            {"processes", std::move(processes)}};
}

} // namespace

std::optional<TopOrder> topOrder(std::string_view word) {
    if (word == "cpu")
        return TopOrder::cpu;
    return word == "memory" ? std::optional(TopOrder::memory) : std::nullopt;
}

std::vector<AppProcesses> ordered(std::vector<AppProcesses> apps, TopOrder order) {
    const auto rank = [order](const AppProcesses& app) {
        const auto memory = static_cast<double>(app.footprint);
        return order == TopOrder::cpu ? std::pair(-app.cpuCores, -memory) : std::pair(-memory, -app.cpuCores);
    };
    std::sort(apps.begin(), apps.end(), [&rank](const AppProcesses& a, const AppProcesses& b) {
        return std::tuple(rank(a), a.name, a.id) < std::tuple(rank(b), b.name, b.id);
    });
    return apps;
}

std::string topTable(const TopReading& reading, TopOrder order, const Calendar& calendar, const TableStyle& style,
                     std::optional<std::size_t> rows) {
    return Table(reading, order, calendar, style).text(rows);
}

JSON toJSON(const TopReading& reading, TopOrder order) {
    auto apps = JSON::array();
    for (const auto& app : ordered(reading.scan.apps, order))
        apps.push_back(toJSON(app));
    return {{"hasCPU", reading.scan.hasCPU},
            {"interval", reading.interval.count()},
            {"processCount", reading.processCount},
            {"cores", reading.cores},
            {"load", optional(reading.load)},
            {"memoryTotal", reading.memory ? JSON(reading.memory->total) : JSON()},
            {"swapUsed", reading.swap ? JSON(reading.swap->used) : JSON()},
            {"pressure", rawValue(reading.pressure)},
            {"apps", std::move(apps)}};
}

} // namespace kestrio
