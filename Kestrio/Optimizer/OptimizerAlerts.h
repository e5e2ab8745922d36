// Tells the person, by the desktop's notifications, of two things worth acting on: memory pressure that does not go
// away, and an application in the background that keeps a core busy. Each is told rarely.
//
// Belongs to one queue and does not wait.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Optimizer/SampledApps.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Platform/Notifications.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace kestrio {

class OptimizerAlerts {
public:
    static constexpr auto memoryAlertsKey = "optimizerMemoryAlerts";
    static constexpr auto runawayAlertsKey = "optimizerRunawayAlerts";

    static constexpr Seconds pressurePatience{60};
    static constexpr Seconds memoryAlertPause{1800};
    static constexpr Seconds busyPatience{300};
    static constexpr Seconds runawayAlertPause{3600}; // for each application
    static constexpr double busyCores = 0.9;
    /// An application is said to be squeezed when more than this many bytes of it are out of physical memory.
    static constexpr std::uint64_t worthTelling = 536'870'912;

    /// All must outlive the alerts.
    struct Host {
        const Clock& clock;
        const Calendar& calendar;
        const KeyValueStore& settings;
        Notifications& notifications;
    };
    struct Collaborators {
        std::string ownBundleID;
        std::function<void(const ResourceEvent&)> log = {};
        /// The person clicked on an alert.
        std::function<void()> openDashboard = {};
    };

    OptimizerAlerts(Host host, Collaborators collaborators);

    /// Called with each sample while the optimizer is on; `front` is the bundle identifier of the application in front.
    void check(const SampledApps& sample, const std::optional<std::string>& front);

    /// For when the person turns an alert on.
    void requestPermission() { host_.notifications.requestPermission(); }

private:
    void checkMemory(const SampledApps& sample);
    void checkRunaways(const SampledApps& sample, const std::optional<std::string>& front);
    void noteBusy(const AppProcesses& app, Date now);
    void tellRunaway(const AppProcesses& app, Date now);
    std::string pressureBody(std::span<const AppProcesses> apps) const;
    std::string holding(const AppProcesses& app) const;
    void post(const Notification& notification);

    const Host host_;
    const Collaborators parts_;

    std::optional<Date> pressureSince_; // when the present spell began
    std::optional<Date> lastMemoryAlert_;
    std::map<std::string, Date> busySince_; // by application, when its present spell began
    std::map<std::string, Date> lastRunawayAlert_;
    Subscription clicks_; // taken with the first alert
};

} // namespace kestrio
