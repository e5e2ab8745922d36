// The tab "Data": where the history is and how much of it there is, taking it elsewhere and bringing it back, and
// deleting it. Pure.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/DatabaseTrouble.h"
#include "Kestrio/Pages/Settings/SettingRow.h"
#include "Kestrio/Reports/SessionExport.h"

#include <cstdint>

namespace kestrio::DataSettings {

/// What is stored; nothing at all before anything was recorded.
struct Stored {
    std::string fileName;
    std::uint64_t bytes = 0;
    std::int64_t sessions = 0;
    std::optional<Date> since = {};
    std::optional<DatabaseTrouble> trouble = {}; // why nothing else is known
    friend bool operator==(const Stored&, const Stored&) = default;
};

struct State {
    std::optional<Stored> stored = {}; // absent until it is known
    ExportRange range = ExportRange::all;
    std::int64_t deleteAfterDays = 365;
    std::optional<std::string> exportResult = {};
    std::optional<std::string> importResult = {};
    bool isExporting = false;
    bool isImporting = false;
    bool isAgentThere = true; // who alone writes the history
};

// The rows.
inline constexpr auto location = "location";
inline constexpr auto size = "size";
inline constexpr auto sessionCount = "sessionCount";
inline constexpr auto since = "since";
inline constexpr auto range = "range";
inline constexpr auto exportFile = "exportFile";
inline constexpr auto importFiles = "importFiles";
inline constexpr auto olderThan = "olderThan";
inline constexpr auto deleting = "deleting";
// Of the row `deleting`.
inline constexpr std::size_t deleteOldButton = 0;
inline constexpr std::size_t deleteAllButton = 1;

inline constexpr auto importPrompt = "Choose one or more CSV files exported by Kestrio (or Timeweft)";
inline constexpr auto importingText = "Importing…";

std::vector<SettingsSection> sections(const State& state, const Calendar& calendar);

SettingsQuestion deleteOldQuestion(std::int64_t days);
SettingsQuestion deleteAllQuestion();

} // namespace kestrio::DataSettings
