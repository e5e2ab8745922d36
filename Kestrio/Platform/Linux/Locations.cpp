#include "Kestrio/Platform/Linux/Locations.h"

#include <cstdlib>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// The desktop's rule for its folder variables: a path that is not absolute counts as unset.
std::optional<fs::path> absolutePath(const Environment& environment, const std::string& name) {
    const auto value = environment(name);
    if (!value || !fs::path(*value).is_absolute())
        return std::nullopt;
    return fs::path(*value).lexically_normal();
}

} // namespace

std::optional<Locations> locations(const Environment& environment) {
    if (const auto home = absolutePath(environment, "KESTRIO_HOME"))
        return Locations{*home / "data", *home / "config", *home / "cache", *home / "run"};
    const auto home = absolutePath(environment, "HOME");
    if (!home)
        return std::nullopt;
    return Locations{
        absolutePath(environment, "XDG_DATA_HOME").value_or(*home / ".local" / "share"),
        absolutePath(environment, "XDG_CONFIG_HOME").value_or(*home / ".config"),
        absolutePath(environment, "XDG_CACHE_HOME").value_or(*home / ".cache"),
        absolutePath(environment, "XDG_RUNTIME_DIR").value_or(fs::path()),
    };
}

std::optional<std::string> processEnvironment(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace kestrio
