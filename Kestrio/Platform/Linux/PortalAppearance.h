// What the desktop asks of how programs look, from the settings of its portal: light or dark, contrast, motion, the
// size of text. Read once, and again at each notice that one of them changed; a portal that starts later is found.
//
// Belongs to the queue of its bus, on which the receiver is called. Never waits for the portal.
#pragma once

#include "Kestrio/Base/Subscription.h"
#include "Kestrio/Platform/DesktopAppearance.h"

#include <functional>
#include <memory>
#include <optional>

namespace sdbus {
class IProxy;
} // namespace sdbus

namespace kestrio {

class BusConnection;

class PortalAppearance {
public:
    using Receiver = std::function<void(const DesktopAppearance&)>;

    /// The bus must outlive this. The receiver hears what the portal says first, and of every change from then on;
    /// nothing where there is no portal.
    PortalAppearance(BusConnection& sessionBus, Receiver receiver);
    ~PortalAppearance();
    PortalAppearance(const PortalAppearance&) = delete;
    PortalAppearance& operator=(const PortalAppearance&) = delete;

private:
    void ask();

    BusConnection& bus_;
    const Receiver receiver_;
    std::optional<DesktopAppearance> told_;
    std::unique_ptr<sdbus::IProxy> portal_;
    Subscription owners_;
    Subscription changes_;
};

} // namespace kestrio
