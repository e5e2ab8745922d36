// Seam: how long ago the person last touched the keyboard, the mouse or the screen.
//
// Called on the monitor's queue at each tick; never blocks for more than 0.4 s.
#pragma once

#include "Kestrio/Base/Date.h"

#include <optional>

namespace kestrio {

class InputIdle {
public:
    virtual ~InputIdle() = default;

    /// Time since the last input event of any kind, at least 0. Absent when this desktop does not tell; nobody then
    /// counts as idle, and nothing counts as fresh input either.
    virtual std::optional<Seconds> sinceLastInput() = 0;
};

} // namespace kestrio
