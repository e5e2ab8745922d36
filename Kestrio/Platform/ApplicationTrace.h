// What leads from something that happens on the machine, a sound or a kept-awake display, to the application behind it.
// A value; valid for any thread.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <sys/types.h>

namespace kestrio {

/// At least one of both is there.
struct ApplicationTrace {
    /// The process that does it; often a helper of the application's main one.
    std::optional<pid_t> process;
    /// The identifier or the name under which the application does it, as it says itself; may be empty.
    std::string name = {};

    friend auto operator<=>(const ApplicationTrace&, const ApplicationTrace&) = default;
};

} // namespace kestrio
