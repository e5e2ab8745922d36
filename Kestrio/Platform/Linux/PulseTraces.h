// Which application a stream of a sound server belongs to, by what the server tells of it. Reads a few small files of
// the process (0.1 ms); callable from any thread.
#pragma once

#include "Kestrio/Platform/ApplicationTrace.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace kestrio {

/// A property of a stream by its name ("application.process.id"). Absent when the server does not tell it.
using StreamProperties = std::function<std::optional<std::string>(const char* name)>;

/// Absent for a stream of another machine, and for one that says nothing of itself. A number of a process counts only
/// where that process runs the program that the stream names: a sandboxed client gives the number inside its sandbox.
std::optional<ApplicationTrace> traceOfStream(const StreamProperties& properties, const std::string& hostName,
                                              const std::filesystem::path& processes);

} // namespace kestrio
