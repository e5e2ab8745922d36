#include "Kestrio/Link/LocalBackground.h"

namespace kestrio {

LocalBackground::LocalBackground(AppModel& model, Facts facts, Services services)
    : model_(model), facts_(std::move(facts)), services_(std::move(services)) {
    const auto soon = [this](const auto&) { tellSoon(); };
    tokens_.push_back(model_.live().observe(soon));
    tokens_.push_back(model_.liveAlongside().observe(soon));
    tokens_.push_back(model_.unsaved().observe(soon));
    tokens_.push_back(model_.isAccessibilityGranted().observe(soon));
    const auto state = [this](const auto&) {
        stateChanged_.emit();
        tellSoon();
    };
    tokens_.push_back(model_.trackingState().observe(state));
    tokens_.push_back(model_.pausedUntil().observe(state));
}

std::optional<AgentStatus> LocalBackground::status() {
    const auto look = model_.showLive(); // takes over what is open at this moment
    AgentStatus status;
    status.state = model_.trackingState().value();
    status.pausedUntil = model_.pausedUntil().value();
    status.live = model_.live().value();
    status.alongside = model_.liveAlongside().value();
    status.unsaved = static_cast<std::int64_t>(model_.unsaved().value());
    status.isAccessibilityGranted = model_.isAccessibilityGranted().value();
    status.version = facts_.version;
    status.processIdentifier = facts_.processIdentifier;
    status.dataFolder = facts_.dataFolder;
    status.startedAt = facts_.startedAt;
    return status;
}

Background::Failure LocalBackground::pause(std::optional<Seconds> length) {
    if (length && !(*length > Seconds(0) && *length <= distantFuture - model_.clock().now()))
        return "a pause must last longer than 0 seconds, and end before the year 4001";
    model_.pause(length);
    return std::nullopt;
}

Background::Failure LocalBackground::resume() {
    model_.resume();
    return std::nullopt;
}

Background::Failure LocalBackground::openDashboard(std::optional<std::string> page) {
    return openWindow(DashboardRequest{std::move(page)});
}

Background::Failure LocalBackground::openSettings(std::optional<std::string> tab) {
    return openWindow(SettingsRequest{std::move(tab)});
}

Background::Failure LocalBackground::quit() {
    if (!services_.quit)
        return "This is not a program that can be ended.";
    afterwards(services_.quit);
    return std::nullopt;
}

Background::Failure LocalBackground::openWindow(const WindowRequest& request) {
    return services_.openWindow ? services_.openWindow(request) : Failure("There are no windows here.");
}

Subscription LocalBackground::importFiles(std::vector<SessionFile> files, ImportReceiver receiver) {
    if (!services_.importFiles) {
        model_.queue().async([receiver = std::move(receiver)] {
            receiver.ended(ImportFailure{"There is no database here to import into."});
        });
        return {};
    }
    auto ended = [this, ended = std::move(receiver.ended)](const ImportOutcome& outcome) {
        ended(outcome);
        if (std::holds_alternative<ImportReport>(outcome))
            activityDataDidChange_.emit();
    };
    return services_.importFiles(std::move(files), {std::move(receiver.progress), std::move(ended)});
}

Background::Failure LocalBackground::deleteActivity(std::optional<Date> before) {
    if (!services_.deleteActivity)
        return "There is no database here to delete from.";
    if (before && !(*before <= model_.clock().now()))
        return "what is deleted must lie in the past";
    services_.deleteActivity(before, [this] { activityDataDidChange_.emit(); });
    return std::nullopt;
}

Background::Failure LocalBackground::deleteResourceLog() {
    if (!services_.deleteResourceLog)
        return "There is no resource log here.";
    services_.deleteResourceLog();
    return std::nullopt;
}

Subscription LocalBackground::observeData(std::function<void()> receiver) {
    return activityDataDidChange_.subscribe(std::move(receiver));
}

std::optional<std::vector<BrowserReading>> LocalBackground::browsers() {
    return services_.browsers ? services_.browsers() : std::vector<BrowserReading>();
}

Subscription LocalBackground::observeBrowsers(std::function<void()> receiver) {
    return services_.observeBrowsers ? services_.observeBrowsers(std::move(receiver)) : Subscription();
}

std::optional<AgentCost> LocalBackground::ownCost() {
    return services_.ownCost ? services_.ownCost() : AgentCost();
}

Subscription LocalBackground::observe(std::function<void(const AgentStatus&)> receiver) {
    auto look = std::make_shared<Subscription>(model_.showLive());
    auto token = std::make_shared<Subscription>(changed_.subscribe(std::move(receiver)));
    return Subscription([look, token] {
        token->cancel();
        look->cancel();
    });
}

Subscription LocalBackground::observeMonitor(std::function<void(const MonitorReading&)> receiver) {
    return services_.observeMonitor ? services_.observeMonitor(std::move(receiver)) : Subscription();
}

Subscription LocalBackground::observeState(std::function<void()> receiver) {
    return stateChanged_.subscribe(std::move(receiver));
}

/// One poll changes several values one after the other; observers hear of them together.
void LocalBackground::tellSoon() {
    if (telling_.isActive() || !changed_.hasReceivers())
        return;
    telling_ = model_.queue().after(Seconds(0), [this] {
        telling_.cancel();
        if (const auto now = status())
            changed_.emit(*now);
    });
}

} // namespace kestrio
