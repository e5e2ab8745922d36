// Telling whoever asked to be told. A signal belongs to one queue: subscribing, emitting and dropping tokens all
// happen there. Receivers may subscribe and unsubscribe, themselves included, from within a call.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace kestrio {

template <class... Arguments>
class Signal {
public:
    using Receiver = std::function<void(const Arguments&...)>;

    /// The receiver is called at each later `emit`, in the order of subscribing, until the token is dropped.
    /// The token may outlive the signal.
    Subscription subscribe(Receiver receiver) {
        const auto id = receivers_->next++;
        receivers_->byID.emplace(id, std::make_shared<Receiver>(std::move(receiver)));
        return Subscription([weak = std::weak_ptr(receivers_), id] {
            if (auto receivers = weak.lock())
                receivers->byID.erase(id);
        });
    }

    void emit(const Arguments&... arguments) const {
        const auto receivers = receivers_;
        const auto end = receivers->next; // who joins during this call hears of the next one
        for (auto at = receivers->byID.begin(); at != receivers->byID.end() && at->first < end;) {
            const auto id = at->first;
            const auto receiver = at->second;
            (*receiver)(arguments...);
            at = receivers->byID.upper_bound(id);
        }
    }

    bool hasReceivers() const { return !receivers_->byID.empty(); }

private:
    struct Receivers {
        std::uint64_t next = 0;
        std::map<std::uint64_t, std::shared_ptr<Receiver>> byID;
    };
    std::shared_ptr<Receivers> receivers_ = std::make_shared<Receivers>();
};

} // namespace kestrio
