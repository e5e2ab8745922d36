// Which browsers are here, how each can be read, and what is left to do. Pure functions over what was found.
#pragma once

#include "Kestrio/Platform/Linux/Browsers.h"
#include "Programs/CommandLine/SessionTable.h"

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

struct BrowserFinding {
    std::string bundleIdentifier;
    std::string name;
    BrowserFamily family = BrowserFamily::chromium;
    bool isInstalled = false;
    bool isRunning = false;
    bool mayStartHost = false;             // its native host's manifest is in place
    std::optional<bool> isConnected = {};  // absent: no agent runs, which alone knows
    std::optional<bool> isAccessible = {}; // absent: unknown

    friend bool operator==(const BrowserFinding&, const BrowserFinding&) = default;
};

/// The next step for this browser; empty where none is needed. `extension` is the folder of both forms of ours.
std::string browserRemedy(const BrowserFinding& finding, const std::filesystem::path& extension);

/// Those that are here, a line each with its remedy below.
std::string browserTable(const std::vector<BrowserFinding>& findings, const std::filesystem::path& extension,
                         const TableStyle& style);

nlohmann::ordered_json toJSON(const BrowserFinding& finding, const std::filesystem::path& extension);

} // namespace kestrio
