// The tab "Permissions" as QML reads it. Belongs to the main queue.
#pragma once

#include "Kestrio/Pages/Settings/PermissionsSettings.h"
#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

namespace kestrio {

class PermissionsSettingsModel final : public kestrio::SettingsFormModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")

public:
    explicit PermissionsSettingsModel(const WindowParts& parts);

    void press(const QString& row, int button) override;

protected:
    Sections currentSections() const override;

private:
    void refreshBrowsers();

    PermissionsSettings::State state_;
    std::vector<Subscription> tokens_;
};

} // namespace kestrio
