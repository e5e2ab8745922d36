// The tab "General" as QML reads it. Belongs to the main queue.
#pragma once

#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

namespace kestrio {

class GeneralSettingsModel final : public kestrio::SettingsFormModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")

public:
    explicit GeneralSettingsModel(const WindowParts& parts) : SettingsFormModel(parts) { look(); }

protected:
    Sections currentSections() const override;
    void set(const std::string& row, const SettingValue& value) override;
};

} // namespace kestrio
