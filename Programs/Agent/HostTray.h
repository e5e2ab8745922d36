// The program's two icons in the desktop's bar: today's time with the light of the recording, and the machine's figure
// while the person wants that. Clicks open panels, menus do the rest.
//
// Belongs to the main queue. What it shows follows the model, the settings and the machine's state; today's time is
// asked for once a minute while something is recorded, and bars hear only of what changed.
#pragma once

#include "Kestrio/Link/WindowRequest.h"
#include "Kestrio/Monitor/SystemMenuLabel.h"
#include "Kestrio/Monitor/SystemMonitor.h"
#include "Kestrio/Pages/BarMenu.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Platform/Tray.h"
#include "Kestrio/Shell/AppModel.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class HostTray {
public:
    static constexpr auto statusItem = "kestrio";
    static constexpr auto systemItem = "kestrio-system";

    /// How often today's time is looked at.
    static constexpr Seconds timeInterval{60.0};
    static constexpr Seconds timeTolerance{15.0};

    struct Parts {
        AppModel& model;
        KeyValueStore& settings;
        Tray& tray;
        Calendar calendar;
        /// Adds up the time in front of an interval and answers on the main queue, later.
        std::function<void(DateInterval, std::function<void(Seconds)>)> timeInFront;
        /// Shows a window, with the desktop's leave to take the front.
        std::function<void(const WindowRequest&, const std::string& activationToken)> open;
        /// Ends the program. Within this call, or later.
        std::function<void()> quit;
    };

    /// All must outlive this. Shows the first icon at once.
    explicit HostTray(Parts parts);
    HostTray(const HostTray&) = delete;
    HostTray& operator=(const HostTray&) = delete;

    /// What the machine is like now. The second icon appears with the first state that holds a sample.
    void showSystem(const SystemMonitor::State& state);

    /// Whether somebody could see the second icon: the person wants it, and there is a bar.
    bool isSystemIconShown() const;

private:
    void noteSetting(const std::string& key);
    void noteState(TrackingState state);
    void lookAtTime();
    void askForTime(DateInterval day);

    void updateStatus();
    void updateSystem();
    SystemMenuParts systemParts() const;
    BarMenu menu(const std::string& item) const;

    void hear(const TrayClick& click);
    void hear(const TrayChoice& choice);
    void hear(const TrayMenuOpening& opening);
    /// An action of that item's menu.
    void perform(const BarAction& action, const std::string& item, const std::string& activationToken);

    const Parts parts_;
    std::optional<DateInterval> day_; // that the time is of
    Seconds activeToday_{};
    SystemMonitor::State system_;
    std::optional<MenuBarLabel> statusDrawn_; // what the pictures show
    std::optional<SystemMenuLabel> systemDrawn_;
    std::vector<std::string> insightsListed_; // that the second menu was last told to bars with, by identifier
    TrayItem status_;
    TrayItem systemShown_;
    bool isSystemIn_ = false;
    std::vector<Subscription> tokens_;
    std::shared_ptr<HostTray*> self_ = std::make_shared<HostTray*>(this); // answers hold it weakly
};

} // namespace kestrio
