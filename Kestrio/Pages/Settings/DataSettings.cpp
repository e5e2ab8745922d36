#include "Kestrio/Pages/Settings/DataSettings.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Pages/HistoryNotice.h"

#include <fmt/format.h>

namespace kestrio::DataSettings {
namespace {

SettingRow fact(const char* id, std::string title, std::string text) {
    return {.id = id, .title = std::move(title), .control = SettingFact{std::move(text)}};
}

SettingRow buttonRow(const char* id, std::string title, std::vector<SettingButton> buttons, std::string text = {}) {
    return {.id = id,
            .title = std::move(title),
            .control = SettingButtons{.buttons = std::move(buttons), .text = std::move(text)}};
}

constexpr auto unknown = "–";

SettingsSection unreadableStorage(const Stored& stored, DatabaseTrouble trouble) {
    const bool isThere = trouble != DatabaseTrouble::missing;
    return {.title = "Storage",
            .rows = {buttonRow(location, "Location", {{"Show in Finder", isThere}}, stored.fileName),
                     fact(size, "Size", unknown), fact(sessionCount, "Recorded sessions", unknown),
                     fact(since, "Tracking since", unknown)},
            .note = isThere ? std::optional(historyNotice(trouble, stored.fileName, HistoryShown::nothing).text)
                            : std::nullopt}; // before anything was recorded there is no file either
}

SettingsSection storage(const std::optional<Stored>& stored, const Calendar& calendar) {
    if (stored && stored->trouble)
        return unreadableStorage(*stored, *stored->trouble);
    const bool isThere = stored && stored->bytes > 0;
    const auto start = stored && stored->since ? calendar.localized(*stored->since, "yMMMMd") : unknown;
    return {.title = "Storage",
            .rows = {buttonRow(location, "Location", {{"Show in Finder", isThere}}, stored ? stored->fileName : ""),
                     fact(size, "Size", stored ? Fmt::fileSize(stored->bytes, calendar) : ""),
                     fact(sessionCount, "Recorded sessions",
                          stored ? calendar.decimal(static_cast<double>(stored->sessions), 0) : ""),
                     fact(since, "Tracking since", stored ? start : "")}};
}

SettingPicker rangePicker(ExportRange current) {
    SettingPicker picker;
    for (const auto value : allExportRanges)
        picker.choices.push_back({std::string(label(value)), std::string(rawValue(value)), value == current});
    return picker;
}

SettingsSection exporting(const State& state) {
    return {.title = "Export",
            .rows = {{.id = range, .title = "Range", .control = rangePicker(state.range)},
                     buttonRow(exportFile, "CSV file", {{"Export…", !state.isExporting}})},
            .note = state.isExporting ? std::string(exportingText) : state.exportResult};
}

SettingsSection importing(const State& state) {
    constexpr auto explanation =
        "Restore activity from files you exported, e.g. after reinstalling. You can pick several files at once. "
        "Anything already in your history is skipped, so importing the same file again — or exports with overlapping "
        "dates — never creates duplicates.";
    return {.title = "Import",
            .help = explanation,
            .rows = {buttonRow(importFiles, "CSV files", {{"Import…", state.isAgentThere && !state.isImporting}})},
            .note = state.isImporting ? importingText : state.importResult};
}

SettingsSection cleanUp(const State& state) {
    std::vector<NumberChoice> choices;
    for (const std::int64_t days : {30, 90, 180, 365})
        choices.push_back({days, countOf(days, "day", "days")});
    return {.title = "Clean Up",
            .rows = {{.id = olderThan,
                      .title = "Delete activity older than",
                      .control = numberPicker(choices, state.deleteAfterDays)},
                     buttonRow(deleting, "",
                               {{"Delete Old Activity…", state.isAgentThere},
                                {"Delete All Activity…", state.isAgentThere}})}};
}

} // namespace

std::vector<SettingsSection> sections(const State& state, const Calendar& calendar) {
    return {storage(state.stored, calendar), exporting(state), importing(state), cleanUp(state)};
}

SettingsQuestion deleteOldQuestion(std::int64_t days) {
    return {.title = fmt::format("Delete activity older than {} days?", days),
            .text = "This can't be undone.",
            .confirm = "Delete"};
}

SettingsQuestion deleteAllQuestion() {
    return {.title = "Delete all recorded activity?",
            .text = "Your whole history will be erased. This can't be undone.",
            .confirm = "Delete Everything"};
}

} // namespace kestrio::DataSettings
