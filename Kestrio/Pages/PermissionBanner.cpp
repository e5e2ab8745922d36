#include "Kestrio/Pages/PermissionBanner.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr auto dismissTitle = "Dismiss";

PermissionBanner accessibilityBanner(const std::optional<std::string>& advice) {
    PermissionBanner banner{.symbol = "lock.shield",
                            .tint = SystemColor::orange,
                            .title = "Allow Accessibility access to see window titles",
                            .text = "Without it only app names are recorded — not which file, document or page you "
                                    "were on. After allowing, it takes effect within a few seconds.",
                            .buttons = {{"Grant Access", std::nullopt, BannerAction::grantAccessibility}}};
    if (advice) {
        banner.text = *advice;
        banner.buttons.clear();
    }
    return banner;
}

PermissionBanner browserBanner(const BrowserPermission& permission) {
    const bool isDenied = permission.status == AutomationStatus::denied;
    return {.symbol = "safari",
            .tint = SystemColor::blue,
            .title = fmt::format("Track {} tabs", permission.browser.name),
            .text = "Allow Kestrio to read the active tab's title and address, so websites and YouTube videos are "
                    "recorded.",
            .buttons = {{isDenied ? "Open Settings" : "Allow", std::nullopt, BannerAction::requestBrowserAccess},
                        {dismissTitle, "xmark", BannerAction::dismiss}},
            .browser = permission.browser};
}

PermissionBanner withStep(PermissionBanner banner, const BrowserStep& step) {
    banner.text = step.text;
    banner.buttons.clear();
    if (step.button)
        banner.buttons.push_back({*step.button, std::nullopt, BannerAction::openBrowserStep});
    banner.buttons.push_back({dismissTitle, "xmark", BannerAction::dismiss});
    return banner;
}

/// The first that cannot be read and runs, else the first that cannot be read. Null when there is none.
const BrowserPermission* mostPressing(const std::vector<BrowserPermission>& permissions) {
    const BrowserPermission* found = nullptr;
    for (const auto& permission : permissions) {
        if (permission.status == AutomationStatus::granted)
            continue;
        if (permission.status != AutomationStatus::notRunning)
            return &permission;
        if (!found)
            found = &permission;
    }
    return found;
}

} // namespace

std::optional<PermissionBanner> permissionBanner(bool isAccessibilityGranted, bool dismissedBrowserBanner,
                                                 const std::vector<BrowserPermission>& browserPermissions,
                                                 const BannerAdvice& advice) {
    if (!isAccessibilityGranted)
        return accessibilityBanner(advice.accessibility);
    const auto* const missing = dismissedBrowserBanner ? nullptr : mostPressing(browserPermissions);
    if (!missing)
        return std::nullopt;
    auto banner = browserBanner(*missing);
    const auto step = advice.browsers.find(missing->browser.bundleID);
    return step == advice.browsers.end() ? std::move(banner) : withStep(std::move(banner), step->second);
}

} // namespace kestrio
