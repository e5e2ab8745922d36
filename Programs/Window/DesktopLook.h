// What the desktop asks of how programs look, for a program whose main queue is not the loop that serves the bus.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/DesktopAppearance.h"

#include <functional>
#include <string>

namespace kestrio {

/// The receiver hears of it on the main queue until the token is dropped there; the bus is served on the worker queue.
/// Both queues must outlive the token, the worker queue also the work that it leaves behind.
Subscription observeDesktopLook(const std::string& busAddress, Queue& main, LoopQueue& worker,
                                std::function<void(const DesktopAppearance&)> receiver);

} // namespace kestrio
