// A large value that others watch, and hold on to: whoever took a share keeps the value of that moment when another
// takes its place. Assigning an equal value tells nobody. Belongs to one queue; the shares go anywhere.
#pragma once

#include "Kestrio/Base/Signal.h"

#include <memory>
#include <utility>

namespace kestrio {

template <class Value>
class SharedObservable {
public:
    explicit SharedObservable(Value initial) : value_(std::make_shared<const Value>(std::move(initial))) {}

    const Value& value() const { return *value_; }
    const std::shared_ptr<const Value>& share() const { return value_; }

    /// Takes the value and tells the observers, or does nothing when it equals the present one.
    void set(std::shared_ptr<const Value> value) {
        if (value == value_ || *value == *value_)
            return;
        value_ = std::move(value);
        changed_.emit(*share());
    }

    /// The observer hears each later change, not the present value.
    Subscription observe(std::function<void(const Value&)> observer) const {
        return changed_.subscribe(std::move(observer));
    }

private:
    std::shared_ptr<const Value> value_;
    mutable Signal<Value> changed_;
};

} // namespace kestrio
