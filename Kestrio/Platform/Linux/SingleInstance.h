// The guard against a second agent: a lock on a file in the data folder, for as long as this value lives. It ends with
// the process however that ends; the file itself is never removed, since removing it could let two hold one lock each.
#pragma once

#include "Kestrio/Platform/Linux/Descriptor.h"

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <variant>

namespace kestrio {

class SingleInstance {
public:
    /// Another process holds it.
    struct Taken {
        /// As that process wrote it; absent when the file doesn't say (yet).
        std::optional<pid_t> processIdentifier;
    };
    /// The lock cannot be had or tested, in words for the log.
    struct Failed {
        std::string reason;
    };
    using Answer = std::variant<SingleInstance, Taken, Failed>;

    /// Tries at once, without waiting. The folder is made when needed (0700), the file `agent.lock` too (0600).
    static Answer acquire(const std::filesystem::path& dataFolder);

private:
    explicit SingleInstance(Descriptor lock) : lock_(std::move(lock)) {}

    Descriptor lock_;
};

} // namespace kestrio
