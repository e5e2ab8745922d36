// The time since the last input as an X server counts it (MIT-SCREEN-SAVER). Belongs to the queue of its connection.
#pragma once

#include "Kestrio/Platform/InputIdle.h"
#include "Kestrio/Platform/Linux/X11Connection.h"

namespace kestrio {

class X11InputIdle final : public InputIdle {
public:
    /// The connection must outlive this.
    explicit X11InputIdle(X11Connection& connection) : connection_(connection) {}

    std::optional<Seconds> sinceLastInput() override;

private:
    X11Connection& connection_;
};

} // namespace kestrio
