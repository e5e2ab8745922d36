#include "Kestrio/Link/LocalOptimizer.h"

#include "Kestrio/Optimizer/Optimizer.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"

#include <cmath>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr auto isOff = "the optimizer is off";

/// A rule for longer than this is meant to be one for good.
constexpr double mostHours = 24.0 * 366;

HeldApp heldApp(const ManagedApp& app) {
    return {.id = app.id,
            .name = app.name,
            .pid = app.pid,
            .control = app.control,
            .frozen = static_cast<std::int64_t>(app.frozen.size()),
            .slowed = static_cast<std::int64_t>(app.slowed.size()),
            .footprint = app.frozenFootprint,
            .isManual = app.isManual};
}

std::string nameOf(const RunningApplication& application) {
    return application.localizedName.value_or(application.bundleIdentifier.value_or(""));
}

std::string notRunning(const std::string& appID) {
    return appID + " does not run, or has no window";
}

} // namespace

LocalOptimizer::LocalOptimizer(Queue& queue, Optimizer& optimizer, Workspace& workspace)
    : queue_(queue), optimizer_(optimizer), workspace_(workspace) {}

std::optional<OptimizerStatus> LocalOptimizer::status() {
    return queue_.sync([this] {
        OptimizerStatus status{.isEnabled = optimizer_.isEnabled().value(),
                               .tuning = optimizer_.tuning().value(),
                               .rules = optimizer_.rules().value()};
        for (const auto& [id, app] : optimizer_.managed().value())
            status.held.push_back(heldApp(app));
        return status;
    });
}

std::optional<std::vector<PlannedApp>> LocalOptimizer::plan() {
    return queue_.sync([this] { return optimizer_.plan(); });
}

/// Does what cannot fail.
template <class Work>
OptimizerLink::Failure LocalOptimizer::doing(Work work) {
    queue_.sync(work);
    return std::nullopt;
}

OptimizerLink::Failure LocalOptimizer::setEnabled(bool enabled) {
    return doing([&] { optimizer_.setEnabled(enabled); });
}

OptimizerLink::Failure LocalOptimizer::setTuning(const tindra::OptimizerTuning& tuning) {
    if (!encoded(tuning))
        return "a number of the tuning is none";
    return doing([&] { optimizer_.setTuning(tuning); });
}

OptimizerLink::Failure LocalOptimizer::setRules(const tindra::OptimizerRules& rules) {
    if (!encoded(rules))
        return "the rules cannot be stored";
    return doing([&] {
        optimizer_.setRules(rules);
        optimizer_.tick();
    });
}

OptimizerLink::Failure LocalOptimizer::setTier(const std::string& appID, std::optional<tindra::AppTier> tier) {
    return doing([&] { optimizer_.setTier(tier, appID); });
}

OptimizerLink::Failure LocalOptimizer::setOverride(const std::string& appID, tindra::AppTier tier, double hours) {
    if (!(hours > 0 && hours <= mostHours))
        return "a rule for now lasts for more than 0 hours, and a year at most";
    return doing([&] {
        const auto application = running(appID);
        optimizer_.setOverride(tier, appID, application ? nameOf(*application) : appID, hours);
    });
}

OptimizerLink::Failure LocalOptimizer::removeOverride(const std::string& appID) {
    return doing([&] { optimizer_.removeOverride(appID); });
}

OptimizerLink::Failure LocalOptimizer::freeze(const std::string& appID) {
    return queue_.sync([&]() -> Failure {
        const auto application = running(appID);
        return application ? freezeRunning(*application) : Failure(notRunning(appID));
    });
}

OptimizerLink::Failure LocalOptimizer::slow(const std::string& appID) {
    return queue_.sync([&]() -> Failure {
        if (!optimizer_.isEnabled().value())
            return isOff;
        const auto application = running(appID);
        if (!application)
            return notRunning(appID);
        optimizer_.moveToEfficiencyCores(*application);
        const auto& managed = optimizer_.managed().value();
        const auto held = managed.find(appID);
        if (held == managed.end() || held->second.slowed.empty())
            return fmt::format("nothing of {} could be slowed", nameOf(*application));
        return std::nullopt;
    });
}

OptimizerLink::Failure LocalOptimizer::resume(const std::string& appID) {
    return queue_.sync([&]() -> Failure {
        const auto& managed = optimizer_.managed().value();
        const auto held = managed.find(appID);
        if (held == managed.end() || !(held->second.isHeld() || held->second.isManual))
            return appID + " is neither frozen nor slowed";
        optimizer_.resume(appID);
        return std::nullopt;
    });
}

OptimizerLink::Failure LocalOptimizer::quit(const std::string& appID) {
    return queue_.sync([&]() -> Failure {
        const auto application = running(appID);
        if (!application)
            return notRunning(appID);
        optimizer_.quit(*application);
        return std::nullopt;
    });
}

OptimizerLink::Failure LocalOptimizer::resumeAll() {
    return doing([&] { optimizer_.releaseAll(); });
}

/// The process that is held, where an application runs more than once, else the first.
std::optional<RunningApplication> LocalOptimizer::running(const std::string& appID) {
    const auto& managed = optimizer_.managed().value();
    const auto held = managed.find(appID);
    std::optional<RunningApplication> found;
    for (auto& application : workspace_.runningApplications()) {
        if (application.bundleIdentifier != appID)
            continue;
        if (held != managed.end() && application.processIdentifier == held->second.pid)
            return application;
        if (!found)
            found = application;
    }
    return found;
}

OptimizerLink::Failure LocalOptimizer::freezeRunning(const RunningApplication& application) {
    if (!optimizer_.isEnabled().value())
        return isOff;
    optimizer_.freezeNow(application);
    const auto& managed = optimizer_.managed().value();
    const auto held = managed.find(*application.bundleIdentifier);
    if (held != managed.end() && held->second.isFrozen() && held->second.isManual)
        return std::nullopt;
    return whyNotFrozen(application);
}

std::string LocalOptimizer::whyNotFrozen(const RunningApplication& application) {
    const auto name = nameOf(application);
    if (optimizer_.isLocked(*application.bundleIdentifier))
        return name + " is never frozen: the desktop or a long job may need it";
    const auto front = workspace_.frontmostApplication();
    if (front && front->bundleIdentifier == application.bundleIdentifier)
        return name + " is in front";
    if (const auto reason = optimizer_.refusal(application))
        return fmt::format("{} is left alone: {}", name, *reason);
    return fmt::format("nothing of {} could be stopped", name);
}

} // namespace kestrio
