#include "Kestrio/Views/Window/Settings/PermissionsSettingsModel.h"

#include <algorithm>

namespace kestrio {

PermissionsSettingsModel::PermissionsSettingsModel(const WindowParts& parts) : SettingsFormModel(parts) {
    state_.areBrowsersKnown = !parts.browserAccess;
    const auto takeStatus = [this](const std::optional<AgentStatus>& status) {
        state_.isAccessibilityGranted = status ? std::optional(status->isAccessibilityGranted) : std::nullopt;
        look();
    };
    tokens_.push_back(parts.agent.status().observe(takeStatus));
    if (parts.browserAccess) {
        const auto& permissions = parts.browserAccess->permissions();
        state_.browsers = permissions.value();
        tokens_.push_back(permissions.observe([this](const auto& all) {
            state_.browsers = all;
            state_.areBrowsersKnown = true;
            look();
        }));
        refreshBrowsers();
    }
    takeStatus(parts.agent.status().value());
}

SettingsFormModel::Sections PermissionsSettingsModel::currentSections() const {
    return {PermissionsSettings::sections(state_)};
}

void PermissionsSettingsModel::press(const QString& row, int /*button*/) {
    const auto id = row.toStdString();
    if (id == PermissionsSettings::accessibility)
        state_.advice = parts().host.privacyAdvice(Permissions::accessibilityPane);
    const auto browser = std::ranges::find(state_.browsers, id, [](const auto& one) { return one.browser.bundleID; });
    if (browser != state_.browsers.end() && parts().browserAccess)
        parts().browserAccess->request(browser->browser);
    else
        refreshBrowsers();
    look();
}

void PermissionsSettingsModel::refreshBrowsers() {
    if (parts().browserAccess)
        parts().browserAccess->refresh();
}

} // namespace kestrio
