#include "Kestrio/Pages/Settings/SettingRow.h"

#include <fmt/format.h>

namespace kestrio {

SettingRow switchRow(const KeyValueStore& settings, std::string key, std::string title,
                     std::optional<std::string> help) {
    const bool isOn = settings.boolean(key);
    return {.id = std::move(key), .title = std::move(title), .help = std::move(help), .control = SettingSwitch{isOn}};
}

SettingPicker numberPicker(const std::vector<NumberChoice>& choices, std::optional<std::int64_t> current) {
    SettingPicker picker;
    for (const auto& [number, title] : choices)
        picker.choices.push_back({title, number, number == current});
    return picker;
}

std::string countOf(std::int64_t count, std::string_view one, std::string_view several) {
    return fmt::format("{} {}", count, count == 1 ? one : several);
}

const SettingRow* rowOf(const std::vector<SettingsSection>& sections, std::string_view id) {
    for (const auto& section : sections)
        for (const auto& row : section.rows)
            if (row.id == id)
                return &row;
    return nullptr;
}

std::optional<SettingValue> chosenValue(const SettingRow& row, std::size_t place) {
    const auto* const picker = std::get_if<SettingPicker>(&row.control);
    return picker && place < picker->choices.size() ? std::optional(picker->choices[place].value) : std::nullopt;
}

} // namespace kestrio
