// The band above a page that says which permission is missing, and what can be done. Plain values.
#pragma once

#include "Kestrio/Model/Models.h"
#include "Kestrio/Shell/BrowserAccess.h"

namespace kestrio {

/// What a button of the band does.
enum class BannerAction {
    grantAccessibility,   // ask the host, and lead to its settings
    requestBrowserAccess, // of the band's browser; leads to the host's settings where the answer was no before
    dismiss,              // for ever
};

struct BannerButton {
    std::string title;
    std::optional<std::string> symbol;
    BannerAction action = BannerAction::dismiss;
    friend bool operator==(const BannerButton&, const BannerButton&) = default;
};

struct PermissionBanner {
    std::string symbol;
    SystemColor tint = SystemColor::orange;
    std::string title;
    std::string text;
    std::vector<BannerButton> buttons;
    std::optional<BrowserApp> browser = {}; // that it is about
    friend bool operator==(const PermissionBanner&, const PermissionBanner&) = default;
};

/// The most pressing one. The one about titles shows also to a person who dismissed that about browsers.
std::optional<PermissionBanner> permissionBanner(bool isAccessibilityGranted, bool dismissedBrowserBanner,
                                                 const std::vector<BrowserPermission>& browserPermissions);

} // namespace kestrio
