// What the windows are made over: made once in the program's wiring, and handed on to every model. All of it belongs to
// the main queue and outlives the windows.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Link/AgentLink.h"
#include "Kestrio/Pages/Viewpoint.h"
#include "Kestrio/Platform/DesktopAppearance.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Platform/LoginItem.h"
#include "Kestrio/Reports/ReportStore.h"
#include "Kestrio/Shell/BrowserAccess.h"
#include "Kestrio/Shell/ClassificationSettings.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace kestrio {

class ArchiveLink;

/// In points.
struct WindowSize {
    int width = 0;
    int height = 0;
    friend bool operator==(const WindowSize&, const WindowSize&) = default;
};

/// What the windows have the host do.
struct WindowHost {
    /// Starts the agent, which then says of itself that it runs. False when it cannot be started.
    std::function<bool()> startAgent = [] { return false; };
    /// Whether the application of this bundle identifier shows sites.
    std::function<bool(const std::string& bundleID)> isBrowser = [](const auto&) { return false; };
    /// What a person can do here where something cannot be read, by the name that other hosts have for the place in
    /// their settings.
    std::function<std::optional<std::string>(std::string_view place)> privacyAdvice = [](auto) { return std::nullopt; };
    /// Starts this host's own system monitor. Empty where it has none.
    std::function<void()> openActivityMonitor = {};
    /// The file with an application's icon, as `AppIconView` asks for it: on a thread of its own.
    std::function<std::optional<std::filesystem::path>(const std::string& application, int pixels)> iconFile =
        [](const auto&, int) { return std::nullopt; };
    /// What the desktop asks of how programs look: the receiver hears of it on the main queue, until the token is
    /// dropped.
    std::function<Subscription(std::function<void(const DesktopAppearance&)>)> observeDesktop = [](const auto&) {
        return Subscription();
    };
    /// Whether windows are blended with what is behind them.
    std::function<bool()> blendsWindows = [] { return true; };
    /// What helpers ask about this program and this machine, a line for each.
    std::function<std::string()> systemInfo = [] { return std::string(); };
    /// Shows a file among the others of its folder, in the person's file manager.
    std::function<void(const std::filesystem::path& file)> showInFiles = [](const auto&) {};
    /// The file with the recorded sessions, for people to look for.
    std::filesystem::path historyFile = {};
    /// The size that the dashboard had when it was last closed; absent when it never was.
    std::function<std::optional<WindowSize>()> storedSize = [] { return std::nullopt; };
    std::function<void(WindowSize)> storeSize = [](auto) {};
};

struct WindowParts {
    const Clock& clock;
    Queue& queue;
    const Calendar& calendar;
    KeyValueStore& settings; // tells of changes on the main queue
    ClassificationSettings& classification;
    AgentLink& agent;
    ReportStore& dashboard; // of the range that the dashboard shows
    ReportStore& today;     // of this day, for the panel
    BrowserAccess* browserAccess = nullptr;
    LoginItem* loginItem = nullptr;
    ArchiveLink* archive = nullptr;
    WindowHost host = {};

    Viewpoint viewpoint() const { return {clock.now(), calendar}; }
};

} // namespace kestrio
