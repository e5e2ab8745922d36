// The person's settings in memory, with the values that the program registers beneath them.
#pragma once

#include "Kestrio/Pages/Settings/SettingRow.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"

#include <gtest/gtest.h>

namespace kestrio {

struct SettingsBench {
    SettingsBench() { AppSettings::registerDefaults(settings, nullptr, "dev.test"); }

    MemoryKeyValueStore settings;
};

using Titles = std::vector<std::string>;

inline Titles titles(const SettingsSection& section) {
    Titles all;
    for (const auto& row : section.rows)
        all.push_back(row.title);
    return all;
}

inline Titles choiceTitles(const SettingRow& row) {
    Titles all;
    if (const auto* const picker = std::get_if<SettingPicker>(&row.control))
        for (const auto& choice : picker->choices)
            all.push_back(choice.title);
    return all;
}

/// The title of the choice that holds; empty where none does, or the row has none.
inline std::string current(const SettingRow& row) {
    if (const auto* const picker = std::get_if<SettingPicker>(&row.control))
        for (const auto& choice : picker->choices)
            if (choice.isCurrent)
                return choice.title;
    return {};
}

inline bool isOn(const SettingRow& row) {
    const auto* const control = std::get_if<SettingSwitch>(&row.control);
    return control && control->isOn;
}

inline Titles buttonTitles(const SettingRow& row) {
    Titles all;
    if (const auto* const buttons = std::get_if<SettingButtons>(&row.control))
        for (const auto& button : buttons->buttons)
            all.push_back(button.title);
    return all;
}

/// What the row says beside its title: a fact, or the words before its buttons.
inline std::string said(const SettingRow& row) {
    if (const auto* const fact = std::get_if<SettingFact>(&row.control))
        return fact->text;
    const auto* const buttons = std::get_if<SettingButtons>(&row.control);
    return buttons ? buttons->text : std::string();
}

} // namespace kestrio
