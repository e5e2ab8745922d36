// The tabs of the settings as QML reads them. Pure functions.
#pragma once

#include "Kestrio/Pages/Settings/CategorySettings.h"
#include "Kestrio/Pages/Settings/ScheduleEditor.h"
#include "Kestrio/Pages/Settings/SettingRow.h"
#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {

QVariant toVariant(const SettingButton& button);
/// `kind` is "fact", "switch", "menu", "segments" or "buttons".
QVariant toVariant(const SettingControl& control);
QVariant toVariant(const SettingRow& row);
QVariant toVariant(const SettingsSection& section);
QVariant toVariant(const SettingsQuestion& question);

/// An entry of a menu, in the application's own name.
QVariant toVariant(const KnownApp& app);
QVariant toVariant(const ScheduleEditor::Weekday& day);
QVariant toVariant(const ScheduleEditor& editor);

QVariant toVariant(const CategorySettings::Row& row);

} // namespace kestrio
