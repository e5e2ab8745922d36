#include "Programs/Window/DesktopLook.h"

#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/PortalAppearance.h"

#include <optional>

namespace kestrio {
namespace {

/// On the worker queue.
struct PortalWatch {
    std::unique_ptr<BusConnection> bus;
    std::optional<PortalAppearance> portal;
};

} // namespace

Subscription observeDesktopLook(const std::string& busAddress, Queue& main, LoopQueue& worker,
                                std::function<void(const DesktopAppearance&)> receiver) {
    const auto watch = std::make_shared<PortalWatch>();
    const auto wanted = std::make_shared<const std::function<void(const DesktopAppearance&)>>(std::move(receiver));
    worker.async([watch, busAddress, &main, &worker, weak = std::weak_ptr(wanted)] {
        watch->bus = BusConnection::open(worker, busAddress);
        if (!watch->bus)
            return;
        watch->portal.emplace(*watch->bus, [&main, weak](const DesktopAppearance& look) {
            main.async([weak, look] {
                if (const auto told = weak.lock())
                    (*told)(look);
            });
        });
    });
    return Subscription([watch, wanted, &worker] {
        worker.async([watch] {
            watch->portal.reset();
            watch->bus.reset();
        });
    });
}

} // namespace kestrio
