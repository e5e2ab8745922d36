// Starting a program that is none of our business afterwards.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// What a program finds otherwise in its environment than we do; an absent value is taken out of it.
using EnvironmentChanges = std::map<std::string, std::optional<std::string>>;

/// Starts the program with its arguments in a session of its own, without our descriptors, signals and standard
/// streams; it leaves no zombie. The first argument is looked up in $PATH. False when it cannot be started. Blocks for
/// a few milliseconds; any thread.
bool startDetached(const std::vector<std::string>& arguments, const EnvironmentChanges& changes = {});

} // namespace kestrio
