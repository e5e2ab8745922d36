// This machine's own account of itself, from `/etc/os-release`, `/proc/cpuinfo`, `/proc/meminfo` and the kernel's name.
// Any thread; takes the time of a few small files.
#pragma once

#include "Kestrio/Platform/HostFacts.h"

#include <filesystem>
#include <string_view>

namespace kestrio {

/// `root` is "/", or a folder like it.
HostFacts hostFacts(const std::filesystem::path& root = "/");

/// `PRETTY_NAME` of an os-release text, unquoted; empty when it has none.
std::string prettyName(std::string_view osRelease);

/// The processor's name of a cpuinfo text: "model name" on x86, "Model" or "Hardware" on Arm boards; empty without.
std::string processorName(std::string_view cpuinfo);

/// `MemTotal` of a meminfo text in bytes; 0 without.
std::uint64_t totalMemory(std::string_view meminfo);

} // namespace kestrio
