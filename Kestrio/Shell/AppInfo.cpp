#include "Kestrio/Shell/AppInfo.h"

#include <fmt/format.h>

// Given by the build; one that does not know says nothing.
#ifndef KESTRIO_VERSION
#    define KESTRIO_VERSION ""
#endif
#ifndef KESTRIO_BUILD
#    define KESTRIO_BUILD ""
#endif

namespace kestrio::AppInfo {
namespace {

std::string orElse(const char* text, const char* fallback) {
    return *text ? text : fallback;
}

} // namespace

std::string version() {
    return orElse(KESTRIO_VERSION, "1.0.0");
}

std::string build() {
    return orElse(KESTRIO_BUILD, "1");
}

std::string diagnostics(const HostFacts& host) {
    return fmt::format("Kestrio {} ({})\n{}\n{}, {} GB RAM", version(), build(), host.system, host.chip,
                       host.physicalMemory >> 30);
}

} // namespace kestrio::AppInfo
