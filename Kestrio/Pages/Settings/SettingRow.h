// What the tabs of the settings are made of: sections of rows, each with a control and a help text that unfolds. Plain
// values in the words that show.
//
// A row is known by its identifier; where it stands for one stored value that is the value's key, and what its control
// chooses is what is to be stored.
#pragma once

#include "Kestrio/Pages/Icons.h"
#include "Kestrio/Shell/Settings.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrio {

/// On or off.
struct SettingSwitch {
    bool isOn = false;
    friend bool operator==(const SettingSwitch&, const SettingSwitch&) = default;
};

struct SettingChoice {
    std::string title;
    SettingValue value;
    bool isCurrent = false;
    friend bool operator==(const SettingChoice&, const SettingChoice&) = default;
};

/// One of several. Where none is current the stored value is not among them, and stays until one is chosen.
struct SettingPicker {
    enum class Shape { menu, segments };
    std::vector<SettingChoice> choices;
    Shape shape = Shape::menu;
    std::string prompt = {}; // what a menu says while none is current
    bool areNames = false;   // of applications, which stay as they are
    friend bool operator==(const SettingPicker&, const SettingPicker&) = default;
};

/// Says something.
struct SettingFact {
    std::string text;
    friend bool operator==(const SettingFact&, const SettingFact&) = default;
};

struct SettingButton {
    std::string title;
    bool isEnabled = true;
    std::string symbol = {}; // alone in the title's place where there is one
    friend bool operator==(const SettingButton&, const SettingButton&) = default;
};

struct SettingButtons {
    std::vector<SettingButton> buttons;
    std::string text = {}; // before them
    friend bool operator==(const SettingButtons&, const SettingButtons&) = default;
};

using SettingControl = std::variant<SettingFact, SettingSwitch, SettingPicker, SettingButtons>;

/// Whether a row's title is words of this program, or a name that stays as it is.
enum class SettingTitle { words, mainWords, name };

struct SettingRow {
    static constexpr auto helpSymbol = "questionmark.circle";
    static constexpr auto showHelp = "Explain";
    static constexpr auto hideHelp = "Hide the explanation";

    std::string id;
    std::string title;
    std::optional<std::string> help = {};
    SettingControl control;
    bool isDisabled = false;
    std::optional<RowIcon> icon = {};
    SettingTitle titleKind = SettingTitle::words;
    friend bool operator==(const SettingRow&, const SettingRow&) = default;
};

struct SettingsSection {
    std::string title;
    std::optional<std::string> help = {}; // unfolds below the title
    std::vector<SettingRow> rows;
    std::optional<std::string> note = {}; // below the rows
    friend bool operator==(const SettingsSection&, const SettingsSection&) = default;
};

/// Asked before something that cannot be undone.
struct SettingsQuestion {
    static constexpr auto cancel = "Cancel";

    std::string title;
    std::string text;
    std::string confirm;
    friend bool operator==(const SettingsQuestion&, const SettingsQuestion&) = default;
};

/// A switch on the boolean under the key.
SettingRow switchRow(const KeyValueStore& settings, std::string key, std::string title,
                     std::optional<std::string> help = std::nullopt);

/// A picker among numbers of days or minutes, each with its words.
struct NumberChoice {
    std::int64_t number;
    std::string title;
};
SettingPicker numberPicker(const std::vector<NumberChoice>& choices, std::optional<std::int64_t> current);

/// "1 day", "30 days".
std::string countOf(std::int64_t count, std::string_view one, std::string_view several);

/// Null when no section has a row of this identifier.
const SettingRow* rowOf(const std::vector<SettingsSection>& sections, std::string_view id);

/// What the row's picker stands for at this place; absent for another control or place.
std::optional<SettingValue> chosenValue(const SettingRow& row, std::size_t place);

} // namespace kestrio
