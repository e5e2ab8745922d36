// Where the browsers' native hosts meet the agent: a socket that only the person's own programs reach. Any thread.
//
// The path may be longer than a socket's address can hold; it is reached through its folder.
#pragma once

#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>

namespace kestrio {

/// In the session's runtime folder, or with the data where there is none.
std::filesystem::path tabSocketPath(const Locations& places);

/// Listens at the path (0600, in a folder of 0700 that is made when needed) without blocking. It appears there when it
/// can be connected to, in place of one that an earlier agent left. Holds nothing on failure.
Descriptor listenAtTabSocket(const std::filesystem::path& path);

/// A connection that never blocks; holds nothing when nobody listens.
Descriptor connectToTabSocket(const std::filesystem::path& path);

/// Who is at the other end of a connection; absent when that is a program of another person.
std::optional<pid_t> ownPeer(const Descriptor& connection);

} // namespace kestrio
