// Tells faces what the system monitor sees, for as long as they look: while anybody does, the monitor counts as
// visible.
//
// Belongs to the main queue, like the monitor.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/MonitorReading.h"

#include <functional>
#include <memory>

namespace kestrio {

class MonitorFeed {
public:
    using Receiver = std::function<void(const MonitorReading&)>;

    struct Setup {
        std::size_t cores = 1;
        /// What the optimizer holds; absent while it is off. Asked with each reading.
        std::function<std::optional<OptimizerCounts>()> optimizer = [] { return std::nullopt; };
    };

    /// All must outlive this. Tokens may outlive it.
    MonitorFeed(Queue& main, const Clock& clock, SystemMonitor& monitor, Setup setup);

    /// The receiver is called with each new reading, every two seconds or so, until the token is dropped: the first
    /// time within moments, and never within this call.
    Subscription observe(Receiver receiver);

private:
    MonitorReading reading() const;
    void tell();
    void tellSoon(std::weak_ptr<const Receiver> newcomer);
    void noteLeaving();

    Queue& main_;
    const Clock& clock_;
    SystemMonitor& monitor_;
    const Setup setup_;
    Signal<MonitorReading> readings_;
    Subscription states_;                                                       // while somebody looks
    std::shared_ptr<MonitorFeed*> self_ = std::make_shared<MonitorFeed*>(this); // tokens and work hold it weakly
};

} // namespace kestrio
