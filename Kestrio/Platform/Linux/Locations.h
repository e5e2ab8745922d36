// Where this host keeps a program's files. `KESTRIO_HOME` moves everything below one folder, for tests and trials.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace kestrio {

/// The person's base folders. The program's own folder `Kestrio` lies in each of the first three; nothing is made here.
struct Locations {
    std::filesystem::path data;    // $XDG_DATA_HOME, or $KESTRIO_HOME/data
    std::filesystem::path config;  // $XDG_CONFIG_HOME, or $KESTRIO_HOME/config
    std::filesystem::path cache;   // $XDG_CACHE_HOME, or $KESTRIO_HOME/cache
    std::filesystem::path runtime; // $XDG_RUNTIME_DIR, or $KESTRIO_HOME/run; may be empty

    std::filesystem::path settingsFile() const { return config / "Kestrio" / "settings.json"; }
    /// Where the oldest name of the program kept its settings.
    std::filesystem::path timeweftSettingsFile() const { return config / "com.personal.Timeweft.json"; }
    std::filesystem::path autostartFolder() const { return config / "autostart"; }
};

/// Absent when neither `KESTRIO_HOME` nor `HOME` is set to an absolute path: there is then no place to keep anything.
using Environment = std::function<std::optional<std::string>(const std::string& name)>;
std::optional<Locations> locations(const Environment& environment);

/// The environment of this process.
std::optional<std::string> processEnvironment(const std::string& name);

} // namespace kestrio
