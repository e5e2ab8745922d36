// The files that let a person's browsers start `kestrio-tabs` for the extension. Any thread; blocks for small files.
#pragma once

#include "Kestrio/Platform/Linux/Browsers.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace kestrio {

/// The name under which the extension asks for its host, and the manifest's name.
inline constexpr std::string_view nativeHostName = "dev.haldorvinter.kestrio.tabs";

/// How the two forms of the extension are known to their browsers. The first follows from the manifest's key.
inline constexpr std::string_view chromiumExtension = "hohgnikmikihpciphpobnoaofnnlmllm";
inline constexpr std::string_view firefoxExtension = "tabs@kestrio.haldorvinter.dev";

/// The text of a manifest that lets our extension, and no other, start `program` (an absolute path).
std::string nativeHostManifest(BrowserFamily family, const std::filesystem::path& program);

/// One person's manifests. Browsers look for them in their own places only: `KESTRIO_HOME` does not move these.
class NativeHosts {
public:
    /// Absent when the environment names no home. `program` is the path of `kestrio-tabs`.
    static std::optional<NativeHosts> ofPerson(const Environment& environment, std::filesystem::path program);

    NativeHosts(std::filesystem::path home, std::filesystem::path config, std::filesystem::path program);

    /// Where the browser's manifests belong, those among its folders that may be made.
    std::vector<std::filesystem::path> manifests(const Browser& browser) const;

    /// Writes them, each whole or not at all. On failure the first error; the others are written all the same.
    std::error_code install(const Browser& browser) const;

    /// Removes them wherever they may have been written. What is not there is no failure.
    std::error_code remove(const Browser& browser) const;

    /// Whether a manifest for this very program lies in all of the places, or one for any program in the system's
    /// folder, taken below `systemRoot`.
    bool isInstalled(const Browser& browser, const std::filesystem::path& systemRoot = "/") const;

private:
    std::filesystem::path top(const NativeHostFolder& folder) const;
    bool mayBeMade(const Browser& browser, const NativeHostFolder& folder) const;

    const std::filesystem::path home_;
    const std::filesystem::path config_;
    const std::filesystem::path program_;
};

} // namespace kestrio
