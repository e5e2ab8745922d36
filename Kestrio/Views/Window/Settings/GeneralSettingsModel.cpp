#include "Kestrio/Views/Window/Settings/GeneralSettingsModel.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Pages/Settings/GeneralSettings.h"

namespace kestrio {

SettingsFormModel::Sections GeneralSettingsModel::currentSections() const {
    const auto* const loginItem = parts().loginItem;
    return {
        GeneralSettings::sections(parts().settings, loginItem ? std::optional(loginItem->isEnabled()) : std::nullopt)};
}

void GeneralSettingsModel::set(const std::string& row, const SettingValue& value) {
    if (row != GeneralSettings::launchAtLogin)
        return SettingsFormModel::set(row, value);
    auto* const loginItem = parts().loginItem;
    const auto* const isOn = std::get_if<bool>(&value);
    if (!loginItem || !isOn)
        return;
    if (const auto failure = *isOn ? loginItem->enable() : loginItem->disable())
        logLine("Kestrio: launch at login change failed: " + *failure);
}

} // namespace kestrio
