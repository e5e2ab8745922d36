#include "Programs/Agent/WindowLauncher.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/DetachedProgram.h"
#include "Kestrio/Shell/Settings.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace kestrio {
namespace {

constexpr auto noWindows = "the windows of Kestrio do not answer";

Background::Failure settingsTabError(const std::string& text) {
    std::vector<std::string_view> known;
    for (const auto tab : allCases<SettingsTab>())
        known.emplace_back(rawText(tab));
    if (std::ranges::find(known, text) != known.end())
        return std::nullopt;
    return fmt::format("there is no tab \"{}\" in the settings; there are {}", text, fmt::join(known, ", "));
}

/// Why nobody can show it, whatever runs.
struct Refusal {
    Background::Failure operator()(const DashboardRequest& request) const {
        return request.page ? dashboardSectionError(*request.page) : std::nullopt;
    }
    Background::Failure operator()(const PanelRequest&) const { return std::nullopt; }
    Background::Failure operator()(const SettingsRequest& request) const {
        return request.tab ? settingsTabError(*request.tab) : std::nullopt;
    }
};

EnvironmentChanges activation(const std::string& token) {
    const auto value = token.empty() ? std::nullopt : std::optional(token);
    return {{"XDG_ACTIVATION_TOKEN", value}, {"DESKTOP_STARTUP_ID", value}};
}

} // namespace

WindowLauncher::WindowLauncher(Parts parts) : parts_(std::move(parts)) {
    if (parts_.bus)
        client_.emplace([bus = parts_.bus](const auto& work) { return bus->perform(work); });
}

Background::Failure WindowLauncher::show(const WindowRequest& request, const std::string& activationToken) {
    if (const auto refused = std::visit(Refusal(), request))
        return refused;
    if (isRunning())
        return client_->show(request, activationToken) ? std::nullopt : Background::Failure(noWindows);
    if (deadline_.isActive()) {
        waiting_.push_back({request, activationToken});
        return std::nullopt;
    }
    return start(request, activationToken);
}

void WindowLauncher::quit() {
    if (isRunning())
        client_->quit();
}

bool WindowLauncher::isRunning() {
    return client_ && client_->isRunning();
}

Background::Failure WindowLauncher::start(const WindowRequest& request, const std::string& activationToken) {
    std::error_code ignored;
    if (!std::filesystem::exists(parts_.program, ignored))
        return fmt::format("the windows of Kestrio are not installed: there is no {}", parts_.program.string());
    if (!parts_.environment("DISPLAY") && !parts_.environment("WAYLAND_DISPLAY"))
        return "Kestrio runs without a screen that it could show a window on";
    auto command = windowArguments(request);
    command.insert(command.begin(), parts_.program.string());
    awaitAppearance(); // before the start, so that it is not missed
    // What this process was started with itself serves the first window alone, which most often is why it was started.
    const bool hasOwnToken = !std::exchange(hasStartedOne_, true) && activationToken.empty();
    if (startDetached(command, hasOwnToken ? EnvironmentChanges() : activation(activationToken)))
        return std::nullopt;
    deadline_.cancel();
    appearing_.cancel();
    return fmt::format("{} could not be started", parts_.program.string());
}

void WindowLauncher::awaitAppearance() {
    if (!parts_.bus)
        return;
    auto appearing = parts_.bus->match(WindowClient::appearingRule(), [this](sdbus::Message&) {
        // Not while the bus is being served, since this calls.
        deadline_ = parts_.queue.after(Seconds(0), [this] { windowsAppeared(); });
    });
    if (!appearing)
        return;
    appearing_ = std::move(*appearing);
    deadline_ = parts_.queue.after(startDeadline, [this] { giveUp(); });
}

void WindowLauncher::windowsAppeared() {
    deadline_.cancel();
    appearing_.cancel();
    for (const auto& waiting : std::exchange(waiting_, {}))
        client_->show(waiting.request, waiting.activationToken);
}

void WindowLauncher::giveUp() {
    deadline_.cancel();
    appearing_.cancel();
    waiting_.clear();
    logLine("Kestrio: the windows were started, but did not appear.");
}

} // namespace kestrio
