// The token of anything that can be called off: a timer, an observer, a watched descriptor.
#pragma once

#include <functional>
#include <utility>

namespace kestrio {

/// Move-only. Dropping it, moving over it or calling `cancel` ends what it stands for; a call that is already under
/// way on another thread still finishes. An empty subscription stands for nothing.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    ~Subscription() { cancel(); }

    void cancel() {
        if (auto cancel = std::exchange(cancel_, nullptr))
            cancel();
    }
    bool isActive() const { return cancel_ != nullptr; }

private:
    std::function<void()> cancel_;
};

} // namespace kestrio
