#include "Programs/CommandLine/MonitorText.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Monitor/MonitorJSON.h"
#include "Kestrio/Monitor/SystemPanel.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

constexpr std::size_t leastWidth = 40;
constexpr std::size_t mostTextColumns = 96; // longer lines are hard to read
constexpr std::size_t nameColumns = 8;
constexpr std::size_t valueColumns = 15; // "999.99 GB free" and a blank
constexpr std::size_t barColumns = 16;
constexpr std::size_t leastWidthForBars = 72;
constexpr std::size_t mostListColumns = 42;
constexpr std::size_t gapBetweenLists = 4;
constexpr double hottest = 100; // degrees Celsius, at the end of the bar

std::string painted(const Painter& paint, SystemTone tone, const std::string& text) {
    switch (tone) {
    case SystemTone::good: return paint.good(text);
    case SystemTone::neutral: return paint.shade(0, text);
    case SystemTone::cautious: return paint.doubtful(text);
    case SystemTone::alarming: return paint.bad(text);
    }
    return text;
}

/// Told by their form too, for those who see no colours.
const char* mark(SystemInsight::Level level) {
    switch (level) {
    case SystemInsight::Level::good:
    case SystemInsight::Level::info: return "●";
    case SystemInsight::Level::warning: return "▲";
    case SystemInsight::Level::critical: return "■";
    }
    return "";
}

/// The text in lines of at most so many columns, parted at blanks. A word that is longer is cut.
std::vector<std::string> wrapped(const std::string& text, std::size_t columns) {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t start = 0; start < text.size();) {
        const auto end = std::min(text.find(' ', start), text.size());
        const auto word = text.substr(start, end - start);
        if (!line.empty() && text::columns(line) + 1 + text::columns(word) > columns) {
            lines.push_back(text::fittedToColumns(line, columns));
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
        start = end + 1;
    }
    lines.push_back(text::fittedToColumns(line, columns));
    return lines;
}

double shareOf(double part, double total) {
    return total > 0 ? std::clamp(part / total, 0.0, 1.0) : 0;
}

class Lines {
public:
    Lines(const MonitorPicture& picture, const Calendar& calendar, const TableStyle& style)
        : picture_(picture), calendar_(calendar), paint_(style.hasColour), width_(std::max(style.width, leastWidth)) {}

    std::string text() {
        addHeader();
        addTiles();
        addBattery();
        addInsights();
        addTopApps();
        return text_;
    }

private:
    void addHeader() {
        const auto header = systemHeader(picture_.chip, picture_.uptime, picture_.insights);
        const auto level = highestLevel(picture_.insights);
        text_ += fmt::format("  {}   {}\n", paint_.bold(header.title),
                             painted(paint_, header.tone, fmt::format("{} {}", mark(level), header.status)));
        const auto facts = header.chip + (header.chip.empty() ? "" : " · ") + "up " + header.uptime +
                           (picture_.isLowPowerMode ? " · saving power" : "");
        text_ += "  " + paint_.dim(text::fittedToColumns(facts, width_ - 2)) + "\n\n";
    }

    void addTiles() {
        const auto& snapshot = picture_.snapshot;
        auto tiles = systemTiles(snapshot, {}, picture_.cores, calendar_);
        // One moment has no trend.
        tiles[0].detail = fmt::format("{} {}", picture_.cores, picture_.cores == 1 ? "core" : "cores");
        const std::array shares{
            snapshot.cpu, shareOf(static_cast<double>(snapshot.memoryUsed), static_cast<double>(snapshot.memoryTotal)),
            shareOf(snapshot.temperature.value_or(0), hottest),
            snapshot.disk ? 1 - shareOf(static_cast<double>(snapshot.disk->free),
                                        static_cast<double>(std::max<std::int64_t>(snapshot.disk->total, 1)))
                          : 0.0};
        for (std::size_t i = 0; i < tiles.size(); ++i)
            addRow(tiles[i].title, tiles[i].value, tiles[i].detail, shares[i], tiles[i].tone);
    }

    void addBattery() {
        if (!picture_.snapshot.battery)
            return;
        const auto row = batteryRow(*picture_.snapshot.battery);
        addRow("Battery", row.figure, row.words, static_cast<double>(picture_.snapshot.battery->level) / 100,
               row.tone == SystemTone::neutral ? SystemTone::good : row.tone);
    }

    void addRow(const std::string& name, const std::string& value, const std::string& detail, double share,
                SystemTone tone) {
        const bool hasBar = width_ >= leastWidthForBars;
        auto line = "  " + paint_.dim(padded(name, nameColumns)) + " ";
        if (hasBar)
            line += painted(paint_, tone, bar(share, barColumns)) + "  ";
        line += hasBar ? padded(value, valueColumns) : painted(paint_, tone, padded(value, valueColumns));
        const auto taken = 2 + nameColumns + 1 + (hasBar ? barColumns + 2 : 0) + valueColumns + 1;
        line += " " + paint_.dim(text::fittedToColumns(detail, width_ - std::min(width_, taken)));
        addLine(line);
    }

    void addInsights() {
        text_ += "\n";
        for (const auto& insight : picture_.insights) {
            const auto lines = wrapped(insight.text, std::min(width_, mostTextColumns) - 4);
            for (std::size_t i = 0; i < lines.size(); ++i)
                text_ += "  " + (i == 0 ? painted(paint_, tone(insight.level), mark(insight.level)) : " ") + " " +
                         lines[i] + "\n";
        }
    }

    void addTopApps() {
        const auto room = width_ - 2;
        const bool sideBySide = room >= 2 * mostListColumns + gapBetweenLists;
        const auto columns = std::min(room, mostListColumns);
        const auto memory = list(TopAppsMode::memory, columns);
        const auto power = list(TopAppsMode::power, columns);
        if (!sideBySide) {
            for (const auto& lines : {memory, power})
                addList(lines);
            return;
        }
        std::vector<std::string> rows;
        for (std::size_t i = 0; i < std::max(memory.size(), power.size()); ++i)
            rows.push_back((i < memory.size() ? memory[i] : padded("", columns)) + std::string(gapBetweenLists, ' ') +
                           (i < power.size() ? power[i] : ""));
        addList(rows);
    }

    void addList(const std::vector<std::string>& lines) {
        text_ += "\n";
        for (const auto& line : lines)
            addLine("  " + line);
    }

    /// Each line exactly so many columns wide.
    std::vector<std::string> list(TopAppsMode mode, std::size_t columns) const {
        constexpr std::size_t figureColumns = 10;
        const auto apps = topApps(picture_.snapshot, mode, calendar_);
        const auto nameRoom = columns - figureColumns;
        const std::string title = mode == TopAppsMode::memory ? "Top apps by memory" : "Top apps by power";
        std::vector<std::string> lines{paint_.dim(padded(title, columns))};
        for (const auto& row : apps.rows)
            lines.push_back(padded(text::fittedToColumns(row.name, nameRoom), nameRoom) +
                            paddedLeft(row.figure, figureColumns));
        if (apps.emptyText)
            lines.push_back(padded(text::fittedToColumns(*apps.emptyText, columns), columns));
        return lines;
    }

    void addLine(std::string line) {
        line.erase(line.find_last_not_of(' ') + 1);
        text_ += line + "\n";
    }

    const MonitorPicture& picture_;
    const Calendar& calendar_;
    const Painter paint_;
    const std::size_t width_;
    std::string text_;
};

} // namespace

std::string monitorText(const MonitorPicture& picture, const Calendar& calendar, const TableStyle& style) {
    return Lines(picture, calendar, style).text();
}

JSON toJSON(const MonitorPicture& picture) {
    JSON json{{"chip", picture.chip.empty() ? JSON() : JSON(picture.chip)},
              {"cores", picture.cores},
              {"uptime", picture.uptime.count()},
              {"lowPowerMode", picture.isLowPowerMode}};
    json.update(toJSON(picture.snapshot));
    json["insights"] = JSON::array();
    for (const auto& insight : picture.insights)
        json["insights"].push_back({{"id", insight.id}, {"level", rawValue(insight.level)}, {"text", insight.text}});
    return json;
}

} // namespace kestrio
