// Seam: short messages of the desktop, for what a person should know now.
//
// Used on one queue, the one that the implementation was made for. Nothing waits for more than 0.4 s. A host without
// notifications, or a person who allows none, simply is not told; nobody hears of that here.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <string>

namespace kestrio {

struct Notification {
    std::string id; // a later one with the same takes the place of the earlier
    std::string title;
    std::string body;

    friend bool operator==(const Notification&, const Notification&) = default;
};

class Notifications {
public:
    virtual ~Notifications() = default;

    /// Asks the person to allow notifications, where the host has such a question. The answer changes nothing here.
    virtual void requestPermission() = 0;

    /// Shows it, even while this program is in front.
    virtual void post(const Notification& notification) = 0;

    /// `receiver` is called on the owning queue with the identifier of each notification that the person clicked.
    virtual Subscription observeClicks(std::function<void(const std::string& id)> receiver) = 0;
};

} // namespace kestrio
