// Whether the person set the desktop to save power, as its power profiles say: a connection to the system bus on a
// queue of the agent's, kept while it lives.
//
// Made and dropped on any other queue.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/PowerProfiles.h"

#include <memory>
#include <optional>

namespace kestrio {

class SavingPower {
public:
    /// The queue must outlive this. Without a bus nothing tells.
    explicit SavingPower(LoopQueue& queue) : queue_(queue) {
        queue_.sync([this] {
            bus_ = BusConnection::open(queue_, BusConnection::Bus::system);
            if (bus_)
                profiles_ = std::make_unique<PowerProfiles>(*bus_);
        });
    }
    ~SavingPower() {
        queue_.sync([this] {
            profiles_.reset();
            bus_.reset();
        });
    }
    SavingPower(const SavingPower&) = delete;
    SavingPower& operator=(const SavingPower&) = delete;

    /// Absent where no service tells. Any thread; never blocks.
    std::optional<bool> operator()() const { return profiles_ ? profiles_->isSavingPower() : std::nullopt; }

private:
    LoopQueue& queue_;
    std::unique_ptr<BusConnection> bus_;
    std::unique_ptr<PowerProfiles> profiles_;
};

} // namespace kestrio
