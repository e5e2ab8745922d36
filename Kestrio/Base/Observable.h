// A value that others watch. Assigning an equal value tells nobody, so that a poll which finds nothing new
// redraws nothing. Belongs to one queue, like its signal.
#pragma once

#include "Kestrio/Base/Signal.h"

#include <utility>

namespace kestrio {

template <class Value>
class Observable {
public:
    Observable() = default;
    explicit Observable(Value initial) : value_(std::move(initial)) {}

    const Value& value() const { return value_; }

    /// Takes the value and tells the observers, or does nothing when it equals the present one.
    void set(Value value) {
        if (value == value_)
            return;
        value_ = std::move(value);
        changed_.emit(value_);
    }

    /// The observer hears each later change, not the present value.
    Subscription observe(std::function<void(const Value&)> observer) const {
        return changed_.subscribe(std::move(observer));
    }

private:
    Value value_{};
    mutable Signal<Value> changed_;
};

} // namespace kestrio
