#include "Kestrio/Platform/Linux/NativeHosts.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Platform/Linux/SafeFiles.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using When = NativeHostFolder::When;

std::string fileName() {
    return std::string(nativeHostName) + ".json";
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

std::string content(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

std::string nativeHostManifest(BrowserFamily family, const fs::path& program) {
    nlohmann::ordered_json manifest{
        {"name", nativeHostName},
        {"description", "Tells Kestrio, on this computer, which tabs are open"},
        {"path", program.string()},
        {"type", "stdio"},
    };
    if (family == BrowserFamily::chromium)
        manifest["allowed_origins"] = {"chrome-extension://" + std::string(chromiumExtension) + "/"};
    else
        manifest["allowed_extensions"] = {firefoxExtension};
    return manifest.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::optional<NativeHosts> NativeHosts::ofPerson(const Environment& environment, fs::path program) {
    const auto places =
        locations([&](const std::string& name) { return name == "KESTRIO_HOME" ? std::nullopt : environment(name); });
    if (!places)
        return std::nullopt;
    return NativeHosts(environment("HOME").value_or(""), places->config, std::move(program));
}

NativeHosts::NativeHosts(fs::path home, fs::path config, fs::path program)
    : home_(std::move(home)), config_(std::move(config)), program_(std::move(program)) {}

fs::path NativeHosts::top(const NativeHostFolder& folder) const {
    return (folder.base == NativeHostFolder::Base::home ? home_ : config_) / folder.top;
}

bool NativeHosts::mayBeMade(const Browser& browser, const NativeHostFolder& folder) const {
    if (folder.when == When::always || isThere(top(folder)))
        return true;
    const auto isOtherThere = [&](const NativeHostFolder& other) { return isThere(top(other)); };
    return folder.when == When::ifTopExistsOrNoOtherDoes &&
           std::none_of(browser.userFolders.begin(), browser.userFolders.end(), isOtherThere);
}

std::vector<fs::path> NativeHosts::manifests(const Browser& browser) const {
    std::vector<fs::path> files;
    for (const auto& folder : browser.userFolders)
        if (mayBeMade(browser, folder))
            files.push_back(top(folder) / folder.rest / fileName());
    return files;
}

std::error_code NativeHosts::install(const Browser& browser) const {
    const auto text = nativeHostManifest(browser.family, program_);
    std::error_code first;
    for (const auto& file : manifests(browser)) {
        auto error = makeFolder(file.parent_path());
        if (!error)
            error = replaceFile(file, text, 0600);
        if (!first)
            first = error;
    }
    return first;
}

std::error_code NativeHosts::remove(const Browser& browser) const {
    std::error_code first;
    for (const auto& folder : browser.userFolders) {
        std::error_code error;
        fs::remove(top(folder) / folder.rest / fileName(), error);
        if (!first)
            first = error;
    }
    return first;
}

bool NativeHosts::isInstalled(const Browser& browser, const fs::path& systemRoot) const {
    if (isThere(systemRoot / fs::path(browser.systemFolder).relative_path() / fileName()))
        return true;
    const auto text = nativeHostManifest(browser.family, program_);
    const auto files = manifests(browser);
    return std::all_of(files.begin(), files.end(), [&](const fs::path& file) { return content(file) == text; });
}

} // namespace kestrio
