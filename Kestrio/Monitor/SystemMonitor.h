// The model behind the second menu-bar icon and its panel: the latest picture of the machine, some minutes of CPU
// history, and what is worth saying about them, kept fresh by a timer that runs slower while nobody looks.
//
// Belongs to the main queue. Samples alone are taken on the worker queue, one at a time.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Observable.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Monitor/SystemInsight.h"
#include "Kestrio/Monitor/SystemSampler.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class SystemMonitor {
public:
    /// The name of the worker queue that it wants.
    static constexpr const char* queueLabel = "kestrio.system";
    static constexpr std::size_t longestHistory = 60;

    struct State {
        std::optional<SystemSnapshot> snapshot = {}; // absent before the first sample
        std::vector<double> cpuHistory = {};         // the latest last
        std::vector<SystemInsight> insights = {};    // the worst first; empty before the first sample

        friend bool operator==(const State&, const State&) = default;
    };

    struct Setup {
        std::string chipName; // may be empty
        Calendar calendar;
        /// Whether the icon is shown; asked on the main queue at each firing of the timer.
        std::function<bool()> isIconShown;
    };

    /// The queues and the sampler must outlive this. The sampler is touched on the worker alone.
    SystemMonitor(Queue& main, Queue& worker, SystemSampler& sampler, Setup setup);
    /// Waits for a sample that is under way.
    ~SystemMonitor();
    SystemMonitor(const SystemMonitor&) = delete;
    SystemMonitor& operator=(const SystemMonitor&) = delete;

    /// Starts the timer and refreshes once.
    void start();

    /// Takes a sample, unless one is under way: a detailed one while the panel is open.
    void refresh();

    bool isPanelVisible() const { return isPanelVisible_; }
    /// Told by the panel as it appears and disappears.
    void setPanelVisible(bool isVisible);

    const std::string& chipName() const { return setup_.chipName; }
    const State& state() const { return state_.value(); }
    Subscription observe(std::function<void(const State&)> observer) const {
        return state_.observe(std::move(observer));
    }

private:
    void scheduleTimer();
    void timerFired();
    void apply(SystemSnapshot snapshot);

    Queue& main_;
    Queue& worker_;
    SystemSampler& sampler_;
    const Setup setup_;
    Observable<State> state_;
    bool isPanelVisible_ = false;
    bool inFlight_ = false;
    Subscription timer_;
    Subscription secondRefresh_;
    // Samples that come back after this is gone find it expired.
    std::shared_ptr<SystemMonitor*> self_ = std::make_shared<SystemMonitor*>(this);
};

} // namespace kestrio
