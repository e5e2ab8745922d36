// Where the browsers' extension lies, and what a person does once so that a browser takes it. Any thread.
#pragma once

#include "Kestrio/Platform/Linux/Browsers.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kestrio {

/// The folder with both forms of the extension, by that of the programs: beside it where they were built, or shared
/// where they were installed.
std::filesystem::path extensionFolder(const std::filesystem::path& programs);

/// What is to be done in a browser of the family. `extension` is the folder of both forms.
std::string loadingStep(BrowserFamily family, const std::filesystem::path& extension);

/// The address of the browser's own page on which that is done, where it opens such a page for another program.
std::optional<std::string> extensionPage(BrowserFamily family);

} // namespace kestrio
