#include "Programs/CommandLine/MachineText.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Monitor/MonitorJSON.h"
#include "Kestrio/Resources/KernelStats.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

constexpr std::size_t nameColumns = 12;
constexpr std::size_t mostBarColumns = 48;
constexpr std::size_t leastWidthForClasses = 70;

struct MemoryPart {
    const char* name;
    std::uint64_t KernelStats::MemoryBreakdown::*bytes;
};

constexpr auto memoryParts = std::to_array<MemoryPart>({
    {"applications", &KernelStats::MemoryBreakdown::apps},
    {"wired", &KernelStats::MemoryBreakdown::wired},
    {"compressed", &KernelStats::MemoryBreakdown::compressed},
    {"cached files", &KernelStats::MemoryBreakdown::cached},
    {"free", &KernelStats::MemoryBreakdown::free},
});

std::string coresText(const MachineReading& reading) {
    const auto count = reading.efficiencyCores + reading.performanceCores;
    auto text = fmt::format("{} {}", count, count == 1 ? "core" : "cores");
    if (reading.efficiencyCores > 0)
        text += fmt::format(": {} performance, {} efficiency", reading.performanceCores, reading.efficiencyCores);
    return text;
}

class Lines {
public:
    Lines(const Calendar& calendar, const TableStyle& style)
        : calendar_(calendar), paint_(style.hasColour), width_(std::max<std::size_t>(style.width, 40)) {}

    std::string text(const MachineReading& reading) {
        addLine("Processor", reading.chip.empty() ? "does not tell its name" : reading.chip);
        addLine("Cores", coresText(reading));
        if (reading.load)
            addLoad(*reading.load, reading.efficiencyCores > 0);
        if (reading.memory)
            addMemory(*reading.memory);
        addPressure(reading.pressure);
        if (reading.swap)
            addLine("Swap", reading.swap->total == 0
                                ? "none"
                                : fmt::format("{} of {} used", Fmt::memory(reading.swap->used, calendar_),
                                              Fmt::memory(reading.swap->total, calendar_)));
        if (reading.drives)
            addDrives(*reading.drives);
        if (reading.test)
            addLine("Drive test", testText(*reading.test, calendar_));
        if (reading.traffic)
            addTraffic(*reading.traffic, reading.topSpeed);
        addAbsences(reading.absences);
        return text_;
    }

private:
    void addLine(const std::string& name, const std::string& value) {
        text_ += fmt::format("  {} {}\n", paint_.dim(padded(name, nameColumns)),
                             text::fittedToColumns(value, width_ - nameColumns - 3));
    }

    void addPainted(const std::string& name, const std::string& value) {
        text_ += fmt::format("  {} {}\n", paint_.dim(padded(name, nameColumns)), value);
    }

    void addLoad(const MachineReading::Load& load, bool hasClasses) {
        auto text = fmt::format("{} {:3.0f}%", paint_.shade(0, bar(load.all, 10)), load.all * 100);
        if (hasClasses && width_ >= leastWidthForClasses)
            text += fmt::format("   performance {:.0f}%, efficiency {:.0f}%", load.byClass.performance * 100,
                                load.byClass.efficiency * 100);
        addPainted("Load", text);
    }

    void addMemory(const MemoryStatistics& statistics) {
        const auto memory = KernelStats::breakdown(statistics, statistics.total);
        addLine("Memory", Fmt::memory(statistics.total, calendar_));
        const auto barColumns = std::min(mostBarColumns, width_ - nameColumns - 4);
        std::string strip;
        std::size_t drawn = 0;
        double upTo = 0;
        for (std::size_t i = 0; i + 1 < memoryParts.size(); ++i) {
            upTo += static_cast<double>(memory.*memoryParts[i].bytes) / static_cast<double>(statistics.total);
            const auto end =
                std::min(barColumns, static_cast<std::size_t>(std::lround(upTo * static_cast<double>(barColumns))));
            strip += paint_.shade(i, repeated("█", end - std::min(drawn, end)));
            drawn = std::max(drawn, end);
        }
        addPainted("", strip + paint_.dim(repeated("░", barColumns - drawn)));
        for (std::size_t i = 0; i < memoryParts.size(); ++i) {
            const bool isFree = i + 1 == memoryParts.size();
            addPainted("", fmt::format("{} {:<13}{:>9}", isFree ? paint_.dim("░") : paint_.shade(i, "█"),
                                       memoryParts[i].name, Fmt::memory(memory.*memoryParts[i].bytes, calendar_)));
        }
    }

    static std::string repeated(const char* text, std::size_t count) {
        std::string result;
        for (std::size_t i = 0; i < count; ++i)
            result += text;
        return result;
    }

    void addPressure(MemoryPressure pressure) {
        const std::string word(rawValue(pressure));
        switch (pressure) {
        case MemoryPressure::normal: addPainted("Pressure", paint_.good(word)); break;
        case MemoryPressure::warning: addPainted("Pressure", paint_.doubtful(word)); break;
        case MemoryPressure::critical: addPainted("Pressure", paint_.bad(word)); break;
        }
    }

    void addDrives(const SSDTraffic& drives) {
        auto text = fmt::format("reading {}, writing {}, {:.0f} requests/s", Fmt::speed(drives.read, calendar_),
                                Fmt::speed(drives.write, calendar_), drives.requestsPerSecond);
        if (drives.wait)
            text += fmt::format(", {:.1f} ms each", *drives.wait * 1000);
        addLine("Drives", text);
    }

    void addTraffic(const RAMTraffic& traffic, std::optional<double> topSpeed) {
        auto text = fmt::format("reading {}, writing {}", Fmt::speed(traffic.read, calendar_),
                                Fmt::speed(traffic.write, calendar_));
        if (topSpeed)
            text += fmt::format(", {} at most", Fmt::speed(*topSpeed, calendar_));
        addLine("RAM traffic", text);
        for (const auto& client : traffic.clients)
            addLine("", fmt::format("{}: {}", client.name, Fmt::speed(client.bytesPerSecond, calendar_)));
    }

    void addAbsences(const std::vector<MachineReading::Absence>& absences) {
        if (absences.empty())
            return;
        std::size_t columns = 0;
        for (const auto& absence : absences)
            columns = std::max(columns, text::columns(absence.what));
        text_ += "\n  Not to be had here:\n";
        for (const auto& absence : absences)
            text_ += fmt::format("  {} {}  {}\n", paint_.doubtful("○"), padded(absence.what, columns),
                                 text::fittedToColumns(absence.why, width_ - std::min(width_, columns + 6)));
    }

    const Calendar& calendar_;
    const Painter paint_;
    const std::size_t width_;
    std::string text_;
};

JSON memoryJSON(const MemoryStatistics& statistics) {
    const auto memory = KernelStats::breakdown(statistics, statistics.total);
    return {{"total", statistics.total},     {"apps", memory.apps},
            {"wired", memory.wired},         {"compressed", memory.compressed},
            {"cached", memory.cached},       {"free", memory.free},
            {"swapIns", statistics.swapIns}, {"swapOuts", statistics.swapOuts}};
}

JSON drivesJSON(const SSDTraffic& drives) {
    return {{"readBytesPerSecond", drives.read},
            {"writeBytesPerSecond", drives.write},
            {"requestsPerSecond", drives.requestsPerSecond},
            {"wait", drives.wait ? JSON(*drives.wait) : JSON()}};
}

JSON trafficJSON(const RAMTraffic& traffic) {
    auto clients = JSON::array();
    for (const auto& client : traffic.clients)
        clients.push_back({{"id", client.id}, {"name", client.name}, {"bytesPerSecond", client.bytesPerSecond}});
    return {
        {"readBytesPerSecond", traffic.read}, {"writeBytesPerSecond", traffic.write}, {"clients", std::move(clients)}};
}

} // namespace

std::string testText(const SSDSpeedTest::Result& result, const Calendar& calendar) {
    return fmt::format("reads {}, writes {}", Fmt::speed(result.readBytesPerSecond, calendar),
                       Fmt::speed(result.writeBytesPerSecond, calendar));
}

std::string machineText(const MachineReading& reading, const Calendar& calendar, const TableStyle& style) {
    return Lines(calendar, style).text(reading);
}

JSON toJSON(const MachineReading& reading) {
    JSON json{{"chip", reading.chip.empty() ? JSON() : JSON(reading.chip)},
              {"efficiencyCores", reading.efficiencyCores},
              {"performanceCores", reading.performanceCores},
              {"load", nullptr},
              {"memory", reading.memory ? memoryJSON(*reading.memory) : JSON()},
              {"pressure", rawValue(reading.pressure)},
              {"swap", nullptr},
              {"drives", reading.drives ? drivesJSON(*reading.drives) : JSON()},
              {"traffic", reading.traffic ? trafficJSON(*reading.traffic) : JSON()},
              {"topSpeed", reading.topSpeed ? JSON(*reading.topSpeed) : JSON()},
              {"driveTest", reading.test ? JSON::parse(SSDSpeedTest::encoded(*reading.test)) : JSON()},
              {"absent", JSON::array()}};
    if (reading.load)
        json["load"] = {{"all", reading.load->all},
                        {"efficiency", reading.load->byClass.efficiency},
                        {"performance", reading.load->byClass.performance}};
    if (reading.swap)
        json["swap"] = {{"used", reading.swap->used}, {"total", reading.swap->total}};
    for (const auto& absence : reading.absences)
        json["absent"].push_back({{"what", absence.what}, {"why", absence.why}});
    return json;
}

} // namespace kestrio
