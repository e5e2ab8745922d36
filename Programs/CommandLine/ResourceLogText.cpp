#include "Programs/CommandLine/ResourceLogText.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Shell/HostWords.h"
#include "Programs/CommandLine/CostText.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <set>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

constexpr Seconds minute{60};
constexpr double day = 86'400;
constexpr std::int64_t warning = 2; // the log's codes of memory pressure
constexpr std::int64_t critical = 4;
constexpr std::int64_t feltLag = 500; // milliseconds

// The columns of seconds before the application's name.
constexpr std::size_t timeColumns = 18;
constexpr std::size_t figureColumns = 10;

std::string statusLine(const char* name, const std::string& text) {
    return fmt::format("  {:<9}{}\n", name, text);
}

std::string since(const std::optional<Date>& first, const Calendar& calendar) {
    return first ? ", since " + calendar.localized(*first, "yMMMdjmm") : "";
}

/// What is logged within what the log spans; the two differ by the time that the machine was off.
std::string covered(const LogContents& contents, const Calendar& calendar) {
    if (!contents.firstMinute || !contents.lastMinute)
        return "nothing yet";
    const auto span = *contents.lastMinute + minute - *contents.firstMinute;
    const auto days = static_cast<std::size_t>(std::max(span.count() / day + 0.5, 1.0));
    return fmt::format("{} to {}: {} logged in {}", calendar.localized(*contents.firstMinute, "yMMMdjmm"),
                       calendar.localized(*contents.lastMinute, "yMMMdjmm"),
                       Fmt::duration(static_cast<double>(contents.minutes) * minute), counted(days, "day"));
}

std::string rows(std::int64_t count) {
    return counted(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)), "row");
}

std::string pace(const LogStatus& status, const Calendar& calendar) {
    if (status.agent && status.agent->lowered)
        return loweredPaceText(*status.agent->lowered, calendar);
    if (status.pace <= 0)
        return "minute summaries only";
    return status.pace == 1 ? "a detailed reading every second"
                            : fmt::format("a detailed reading every {} seconds", status.pace);
}

std::string kept(const LogStatus& status) {
    return fmt::format("minutes and events for {}, seconds for {}",
                       counted(static_cast<std::size_t>(std::max<std::int64_t>(status.days, 0)), "day"),
                       counted(static_cast<std::size_t>(std::max<std::int64_t>(status.detailDays, 0)), "day"));
}

/// Without an agent there is nothing to tell.
std::string cost(const LogStatus& status, const Calendar& calendar) {
    if (!status.agent || !status.isOn)
        return {};
    return statusLine("Cost", status.agent->cost ? costText(*status.agent->cost, calendar)
                                                 : "measured in the program's first minute");
}

JSON optionalDate(const std::optional<Date>& date) {
    return date ? JSON(date->seconds()) : JSON();
}

template <class Value>
JSON optionalValue(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON();
}

std::string pressureWord(std::int64_t code) {
    return code >= critical ? "critical" : code >= warning ? "warning" : "normal";
}

std::string pressureCell(std::int64_t code, const Painter& painter) {
    const auto word = padded(pressureWord(code), figureColumns);
    return code >= critical ? painter.bad(word) : code >= warning ? painter.doubtful(word) : word;
}

std::vector<std::string> namesOf(const std::vector<ResourceEvent>& events) {
    std::set<std::string> names;
    for (const auto& event : events)
        if (event.appName)
            names.insert(*event.appName);
    return {names.begin(), names.end()};
}

std::string figure(const std::string& text) {
    return paddedLeft(text, figureColumns);
}

} // namespace

std::string logStatusText(const LogStatus& status, const Calendar& calendar) {
    const auto& contents = status.contents;
    return statusLine("Log", status.isOn ? "on, " + pace(status, calendar) : "off") +
           statusLine("Covers", covered(contents, calendar)) + statusLine("Minutes", rows(contents.minutes)) +
           statusLine("Apps", fmt::format("{} of {}", rows(contents.appMinutes),
                                          counted(static_cast<std::size_t>(contents.apps), "app"))) +
           statusLine("Seconds", rows(contents.seconds) + since(contents.firstSecond, calendar)) +
           statusLine("Events", rows(contents.events)) + statusLine("Setups", rows(contents.setups)) +
           statusLine("Kept", kept(status)) +
           statusLine("File",
                      fmt::format("{}, {}", Fmt::fileSize(static_cast<std::uint64_t>(status.fileSize), calendar),
                                  status.file.string())) +
           cost(status, calendar);
}

JSON toJSON(const LogStatus& status) {
    const auto& contents = status.contents;
    return {{"isOn", status.isOn},
            {"pace", status.pace},
            {"days", status.days},
            {"detailDays", status.detailDays},
            {"file", status.file.string()},
            {"fileSize", status.fileSize},
            {"minutes", contents.minutes},
            {"appMinutes", contents.appMinutes},
            {"seconds", contents.seconds},
            {"events", contents.events},
            {"apps", contents.apps},
            {"setups", contents.setups},
            {"firstMinute", optionalDate(contents.firstMinute)},
            {"lastMinute", optionalDate(contents.lastMinute)},
            {"firstSecond", optionalDate(contents.firstSecond)},
            {"agent", status.agent ? toJSON(*status.agent) : JSON()}};
}

std::string eventTable(const std::vector<ResourceEvent>& events, const Calendar& calendar, const TableStyle& style) {
    const Painter painter(style.hasColour);
    std::size_t titleColumns = 0;
    for (const auto& event : events)
        titleColumns = std::max(titleColumns, text::columns(hostWords(title(event.kind))));
    const auto names = namesOf(events);
    std::string table;
    for (const auto& event : events) {
        std::string about = event.appName.value_or("");
        for (const auto& part :
             {hostWords(event.detail, names), event.bytes ? Fmt::memory(*event.bytes, calendar) : std::string()})
            if (!part.empty())
                about += (about.empty() ? "" : ", ") + part;
        const auto used = 2 + timeColumns + titleColumns + 2;
        const auto room = style.width > used + 10 ? style.width - used : 10;
        auto line = "  " + painter.dim(padded(calendar.localized(event.at, "MMMdjmmss"), timeColumns)) +
                    padded(hostWords(title(event.kind)), titleColumns + 2) + text::fittedToColumns(about, room);
        line.erase(line.find_last_not_of(' ') + 1);
        table += line + "\n";
    }
    return table;
}

JSON toJSON(const ResourceEvent& event) {
    return {{"id", event.id},
            {"at", event.at.seconds()},
            {"kind", std::string(storedText(event.kind))},
            {"appID", optionalValue(event.appID)},
            {"appName", optionalValue(event.appName)},
            {"detail", event.detail},
            {"bytes", optionalValue(event.bytes)}};
}

std::string secondsHeading(const TableStyle& style) {
    std::string heading = "  " + padded("Time", timeColumns);
    for (const char* name : {"CPU", "Memory", "Swap", "Read back", "SSD", "Stall"})
        heading += figure(name);
    return Painter(style.hasColour).bold(heading + "  " + padded("Pressure", figureColumns) + "In front") + "\n";
}

std::string secondsRow(const SystemSecond& second, const Calendar& calendar, const TableStyle& style) {
    const Painter painter(style.hasColour);
    const auto stall = figure(fmt::format("{} ms", second.lagMilliseconds));
    auto row = "  " + painter.dim(padded(calendar.localized(second.at, "MMMdjmmss"), timeColumns)) +
               figure(Fmt::percent(second.cpu, 1)) + figure(Fmt::memory(second.memoryUsed, calendar)) +
               figure(Fmt::memory(second.swapUsed, calendar)) + figure(Fmt::speed(second.swapInRate, calendar)) +
               figure(Fmt::speed(second.ssdRead + second.ssdWrite, calendar)) +
               (second.lagMilliseconds >= feltLag ? painter.bad(stall) : stall) + "  " +
               pressureCell(second.pressure, painter) + text::fittedToColumns(second.frontApp.value_or(""), 40);
    row.erase(row.find_last_not_of(' ') + 1);
    return row + "\n";
}

JSON toJSON(const SystemSecond& second) {
    return {{"at", second.at.seconds()},
            {"cpu", second.cpu},
            {"cpuPerformance", second.cpuPerformance},
            {"cpuEfficiency", second.cpuEfficiency},
            {"memoryUsed", second.memoryUsed},
            {"compressed", second.compressed},
            {"swapUsed", second.swapUsed},
            {"pressure", second.pressure},
            {"thermal", second.thermal},
            {"ramRead", second.ramRead},
            {"ramWrite", second.ramWrite},
            {"ssdRead", second.ssdRead},
            {"ssdWrite", second.ssdWrite},
            {"swapInRate", second.swapInRate},
            {"swapOutRate", second.swapOutRate},
            {"lagMilliseconds", second.lagMilliseconds},
            {"idleSeconds", second.idleSeconds},
            {"state", second.state},
            {"frontApp", optionalValue(second.frontApp)}};
}

} // namespace kestrio
