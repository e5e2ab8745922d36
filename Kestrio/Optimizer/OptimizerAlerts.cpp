#include "Kestrio/Optimizer/OptimizerAlerts.h"

#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

const std::set<std::string, std::less<>>& browsers() {
    static const std::set<std::string, std::less<>> identifiers{
        "com.google.Chrome",   "com.brave.Browser",          "com.apple.Safari",        "com.microsoft.edgemac",
        "org.mozilla.firefox", "company.thebrowser.Browser", "com.operasoftware.Opera", "com.vivaldi.Vivaldi",
    };
    return identifiers;
}

/// What the person can do about it.
std::string advice(std::span<const AppProcesses> apps) {
    std::vector<std::string_view> open;
    for (const auto& app : apps) {
        if (app.bundleID && browsers().contains(*app.bundleID))
            open.push_back(app.name);
    }
    if (open.size() > 1)
        return fmt::format("{} and {} are both open — quitting one frees the most.", open[0], open[1]);
    return "Closing windows and tabs you aren't using helps most.";
}

} // namespace

OptimizerAlerts::OptimizerAlerts(Host host, Collaborators collaborators)
    : host_(host), parts_(std::move(collaborators)) {}

void OptimizerAlerts::check(const SampledApps& sample, const std::optional<std::string>& front) {
    if (host_.settings.boolean(memoryAlertsKey))
        checkMemory(sample);
    if (host_.settings.boolean(runawayAlertsKey) && sample.hasCPU)
        checkRunaways(sample, front);
}

void OptimizerAlerts::checkMemory(const SampledApps& sample) {
    if (sample.pressure == MemoryPressure::normal) {
        pressureSince_.reset();
        return;
    }
    const Date now = host_.clock.now();
    if (!pressureSince_)
        pressureSince_ = now;
    if (now - *pressureSince_ < pressurePatience)
        return;
    if (lastMemoryAlert_ && now - *lastMemoryAlert_ < memoryAlertPause)
        return;
    lastMemoryAlert_ = now;
    post({"memory", "Memory is under pressure", pressureBody(sample.apps)});
}

std::string OptimizerAlerts::pressureBody(std::span<const AppProcesses> apps) const {
    constexpr std::size_t described = 2;
    std::string body;
    for (const auto& app : apps.first(std::min(apps.size(), described)))
        body += (body.empty() ? "" : "; ") + holding(app);
    return body + ". " + advice(apps);
}

std::string OptimizerAlerts::holding(const AppProcesses& app) const {
    auto text = fmt::format("{} holds {}", app.name, Fmt::fileSize(app.footprint, host_.calendar));
    const std::uint64_t squeezed = app.footprint > app.resident ? app.footprint - app.resident : 0;
    if (squeezed > worthTelling)
        text += fmt::format(" ({} of it squeezed out of RAM)", Fmt::fileSize(squeezed, host_.calendar));
    return text;
}

void OptimizerAlerts::checkRunaways(const SampledApps& sample, const std::optional<std::string>& front) {
    const Date now = host_.clock.now();
    std::set<std::string_view> seen;
    for (const auto& app : sample.apps) {
        const bool isBusy = app.cpuCores >= busyCores;
        if (!isBusy || app.bundleID == front || app.bundleID == parts_.ownBundleID)
            continue;
        seen.insert(app.id);
        noteBusy(app, now);
    }
    std::erase_if(busySince_, [&](const auto& busy) { return !seen.contains(busy.first); });
}

void OptimizerAlerts::noteBusy(const AppProcesses& app, Date now) {
    const auto [busy, isNew] = busySince_.try_emplace(app.id, now);
    if (isNew || now - busy->second < busyPatience)
        return;
    const auto alerted = lastRunawayAlert_.find(app.id);
    if (alerted != lastRunawayAlert_.end() && now - alerted->second < runawayAlertPause)
        return;
    lastRunawayAlert_[app.id] = now;
    tellRunaway(app, now);
}

void OptimizerAlerts::tellRunaway(const AppProcesses& app, Date now) {
    const auto body = fmt::format("{} has kept {} busy for 5 minutes while you weren't using it.", app.name,
                                  Fmt::cores(app.cpuCores, host_.calendar));
    if (parts_.log)
        parts_.log(
            {.at = now, .kind = ResourceEventKind::runaway, .appID = app.id, .appName = app.name, .detail = body});
    post({"runaway-" + app.id, app.name + " is working hard in the background", body});
}

void OptimizerAlerts::post(const Notification& notification) {
    if (!clicks_.isActive())
        clicks_ = host_.notifications.observeClicks([this](const std::string&) {
            if (parts_.openDashboard)
                parts_.openDashboard();
        });
    host_.notifications.post(notification);
}

} // namespace kestrio
