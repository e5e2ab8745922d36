// The band above a page that says which permission is missing, and what can be done. Plain values.
#pragma once

#include "Kestrio/Model/Models.h"
#include "Kestrio/Shell/BrowserAccess.h"

namespace kestrio {

/// What a button of the band does.
enum class BannerAction {
    grantAccessibility,   // ask the host, and lead to its settings
    requestBrowserAccess, // of the band's browser; leads to the host's settings where the answer was no before
    openBrowserStep,      // lead to where what is left with the band's browser is done
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

/// What the host says once the person asked to be helped; it takes the place of what the band offered.
struct BannerAdvice {
    std::optional<std::string> accessibility = {};
    BrowserAccess::Steps browsers = {};
};

/// The most pressing one: of browsers, one that runs. The one about titles shows also to a person who dismissed that
/// about browsers.
std::optional<PermissionBanner> permissionBanner(bool isAccessibilityGranted, bool dismissedBrowserBanner,
                                                 const std::vector<BrowserPermission>& browserPermissions,
                                                 const BannerAdvice& advice = {});

} // namespace kestrio
