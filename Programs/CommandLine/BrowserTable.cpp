#include "Programs/CommandLine/BrowserTable.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/ExtensionSteps.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

std::string inWords(const std::optional<bool>& truth) {
    return !truth ? "unknown" : *truth ? "yes" : "no";
}

JSON orNull(const std::optional<bool>& truth) {
    return truth ? JSON(*truth) : JSON();
}

bool isHere(const BrowserFinding& finding) {
    return finding.isInstalled || finding.isRunning || finding.isConnected.value_or(false);
}

} // namespace

std::string browserRemedy(const BrowserFinding& finding, const std::filesystem::path& extension) {
    if (finding.isConnected == true)
        return {};
    if (!finding.mayStartHost)
        return "Run: kestrioctl browsers --install";
    if (!finding.isConnected)
        return "Start the agent with: kestrio";
    if (!finding.isRunning)
        return {}; // it may well connect when it runs
    return loadingStep(finding.family, extension);
}

std::string browserTable(const std::vector<BrowserFinding>& findings, const std::filesystem::path& extension,
                         const TableStyle& style) {
    constexpr auto row = "  {:<26} {:<10} {:<8} {:<10} {}\n";
    std::string text = fmt::format(row, "Browser", "Installed", "Running", "Connected", "Accessible");
    if (style.hasColour)
        text = "\x1B[1m" + text.substr(0, text.size() - 1) + "\x1B[0m\n";
    for (const auto& finding : findings) {
        if (!isHere(finding))
            continue;
        text += fmt::format(row, finding.name, inWords(finding.isInstalled), inWords(finding.isRunning),
                            inWords(finding.isConnected), inWords(finding.isAccessible));
        if (const auto remedy = browserRemedy(finding, extension); !remedy.empty())
            text += "    " + remedy + "\n";
    }
    return std::any_of(findings.begin(), findings.end(), isHere) ? text : "  No browser that Kestrio knows is here.\n";
}

JSON toJSON(const BrowserFinding& finding, const std::filesystem::path& extension) {
    const auto remedy = isHere(finding) ? browserRemedy(finding, extension) : "";
    return {{"bundleID", finding.bundleIdentifier},       {"name", finding.name},
            {"installed", finding.isInstalled},           {"running", finding.isRunning},
            {"mayStartHost", finding.mayStartHost},       {"connected", orNull(finding.isConnected)},
            {"accessible", orNull(finding.isAccessible)}, {"remedy", remedy.empty() ? JSON() : JSON(remedy)}};
}

} // namespace kestrio
