// A bar in memory, for tests: keeps what it was told to show, and clicks when the test does. Belongs to the test's
// thread.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/Tray.h"

#include <map>

namespace kestrio {

class ScriptedTray final : public Tray {
public:
    std::map<std::string, TrayItem> items; // by identifier
    int changes = 0;                       // of an item that was there
    bool hasBar = true;

    void tell(const TrayEvent& event) { events_.emit(event); }

    void show(const TrayItem& item) override {
        const auto [at, isNew] = items.try_emplace(item.id, item);
        if (isNew || at->second == item)
            return;
        at->second = item;
        ++changes;
    }
    void remove(const std::string& id) override { items.erase(id); }
    bool isShown() const override { return hasBar && !items.empty(); }
    Subscription observe(std::function<void(const TrayEvent&)> receiver) override {
        return events_.subscribe(std::move(receiver));
    }

private:
    Signal<TrayEvent> events_;
};

} // namespace kestrio
