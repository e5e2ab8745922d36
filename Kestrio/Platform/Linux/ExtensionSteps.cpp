#include "Kestrio/Platform/Linux/ExtensionSteps.h"

namespace kestrio {

namespace fs = std::filesystem;

fs::path extensionFolder(const fs::path& programs) {
    const auto prefix = programs.parent_path();
    std::error_code ignored;
    const auto built = prefix / "extension";
    return fs::exists(built, ignored) ? built : prefix / "share" / "kestrio" / "extension";
}

std::string loadingStep(BrowserFamily family, const fs::path& extension) {
    if (family == BrowserFamily::chromium)
        return "Open chrome://extensions, switch on Developer mode, choose Load unpacked and the folder " +
               (extension / "chromium").string();
    return "Open about:debugging, choose This Firefox, Load Temporary Add-on and the file " +
           (extension / "firefox" / "manifest.json").string() + "; where unsigned add-ons are allowed, install " +
           (extension / "firefox.xpi").string() + " for good";
}

std::optional<std::string> extensionPage(BrowserFamily family) {
    // Chromium opens a new tab in place of its own pages.
    return family == BrowserFamily::firefox ? std::optional("about:debugging#/runtime/this-firefox") : std::nullopt;
}

} // namespace kestrio
