// Tells when logind is about to switch the machine off or to restart it.
//
// Belongs to the queue that it was made for. Without a system bus, or without logind, nothing is ever told.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <memory>
#include <string>

namespace kestrio {

class BusConnection;
class LoopQueue;

class PowerOffWatch {
public:
    /// `receiver` is called in the queue's work: with true when the machine is about to go, and with false when that
    /// was called off. `address` is that of the system bus. The queue must outlive this.
    PowerOffWatch(LoopQueue& queue, const std::string& address, std::function<void(bool isNear)> receiver);
    ~PowerOffWatch();
    PowerOffWatch(const PowerOffWatch&) = delete;
    PowerOffWatch& operator=(const PowerOffWatch&) = delete;

private:
    std::unique_ptr<BusConnection> bus_; // null where there is none; outlives the rule
    Subscription rule_;
};

} // namespace kestrio
