// The desktop's bar as most desktops have it: each item is a `StatusNotifierItem` with a name of its own.
//
// Made, used and dropped on its queue.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/Linux/StatusNotifierItem.h"

#include <algorithm>
#include <map>

namespace kestrio {

class StatusNotifierTray final : public Tray {
public:
    /// `busAddress` is that of the session bus. The queue must outlive this.
    StatusNotifierTray(LoopQueue& queue, std::string busAddress) : queue_(queue), busAddress_(std::move(busAddress)) {}

    void show(const TrayItem& item) override {
        auto& shown = items_[item.id];
        if (shown)
            shown->show(item);
        else
            shown = std::make_unique<StatusNotifierItem>(queue_, busAddress_, ++lastNumber_, item,
                                                         [this](const TrayEvent& event) { events_.emit(event); });
    }
    void remove(const std::string& id) override { items_.erase(id); }
    bool isShown() const override {
        return std::ranges::any_of(items_, [](const auto& entry) { return entry.second->isShown(); });
    }
    Subscription observe(std::function<void(const TrayEvent&)> receiver) override {
        return events_.subscribe(std::move(receiver));
    }

private:
    LoopQueue& queue_;
    const std::string busAddress_;
    int lastNumber_ = 0;
    std::map<std::string, std::unique_ptr<StatusNotifierItem>> items_;
    Signal<TrayEvent> events_;
};

} // namespace kestrio
