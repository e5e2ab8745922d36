#include "Kestrio/Pages/PermissionBanner.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

PermissionBanner accessibilityBanner() {
    return {.symbol = "lock.shield",
            .tint = SystemColor::orange,
            .title = "Allow Accessibility access to see window titles",
            .text = "Without it only app names are recorded — not which file, document or page you were on. After "
                    "allowing, it takes effect within a few seconds.",
            .buttons = {{"Grant Access", std::nullopt, BannerAction::grantAccessibility}}};
}

PermissionBanner browserBanner(const BrowserPermission& permission) {
    const bool isDenied = permission.status == AutomationStatus::denied;
    return {.symbol = "safari",
            .tint = SystemColor::blue,
            .title = fmt::format("Track {} tabs", permission.browser.name),
            .text = "Allow Kestrio to read the active tab's title and address, so websites and YouTube videos are "
                    "recorded.",
            .buttons = {{isDenied ? "Open Settings" : "Allow", std::nullopt, BannerAction::requestBrowserAccess},
                        {"Dismiss", "xmark", BannerAction::dismiss}},
            .browser = permission.browser};
}

} // namespace

std::optional<PermissionBanner> permissionBanner(bool isAccessibilityGranted, bool dismissedBrowserBanner,
                                                 const std::vector<BrowserPermission>& browserPermissions) {
    if (!isAccessibilityGranted)
        return accessibilityBanner();
    if (dismissedBrowserBanner)
        return std::nullopt;
    const auto missing = std::ranges::find_if(browserPermissions, [](const BrowserPermission& permission) {
        return permission.status != AutomationStatus::granted;
    });
    return missing == browserPermissions.end() ? std::nullopt : std::optional(browserBanner(*missing));
}

} // namespace kestrio
