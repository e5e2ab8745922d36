#include "Kestrio/Activity/Permissions.h"

#include "Kestrio/Base/Collation.h"

#include <algorithm>
#include <utility>

namespace kestrio {

Permissions::Permissions(std::set<std::string> browsers, std::string locale, Host host)
    : browsers_(std::move(browsers)), locale_(std::move(locale)), host_(std::move(host)) {}

std::vector<BrowserApp> Permissions::installedScriptableBrowsers() const {
    std::vector<BrowserApp> installed;
    if (!host_.applicationName)
        return installed;
    for (const auto& bundleID : browsers_)
        if (auto name = host_.applicationName(bundleID))
            installed.push_back({bundleID, std::move(*name)});
    const Collation collation(locale_);
    std::stable_sort(installed.begin(), installed.end(),
                     [&](const BrowserApp& a, const BrowserApp& b) { return collation.isBefore(a.name, b.name); });
    return installed;
}

AutomationStatus Permissions::automationStatus(const std::string& bundleID, Asking asking) const {
    const auto status = currentStatus(bundleID);
    if (asking == Asking::no || status != AutomationStatus::notDetermined || !host_.askForConsent)
        return status;
    host_.askForConsent(bundleID);
    return currentStatus(bundleID);
}

AutomationStatus Permissions::currentStatus(const std::string& bundleID) const {
    return status(host_.readiness ? host_.readiness(bundleID) : std::nullopt);
}

AutomationStatus Permissions::status(const std::optional<BrowserReadiness>& readiness) {
    if (!readiness)
        return AutomationStatus::unknown;
    if (!readiness->isRunning)
        return AutomationStatus::notRunning;
    if (readiness->isRefused)
        return AutomationStatus::denied;
    return readiness->isBridgeConnected || readiness->isAccessibilityReadable ? AutomationStatus::granted
                                                                              : AutomationStatus::notDetermined;
}

std::optional<BrowserStep> Permissions::stepLeft(const BrowserApp& browser) const {
    return host_.stepLeft ? host_.stepLeft(browser) : std::nullopt;
}

void Permissions::openStep(const BrowserApp& browser) const {
    if (host_.openStep)
        host_.openStep(browser);
}

void Permissions::openInBackground(const BrowserApp& browser) const {
    if (host_.openInBackground)
        host_.openInBackground(browser);
}

void Permissions::openPrivacyPane(const std::string& anchor) const {
    if (host_.openPrivacyPane)
        host_.openPrivacyPane(anchor);
}

} // namespace kestrio
