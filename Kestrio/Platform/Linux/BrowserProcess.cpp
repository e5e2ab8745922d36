#include "Kestrio/Platform/Linux/BrowserProcess.h"

#include "Kestrio/Platform/Linux/Browsers.h"

#include <algorithm>
#include <charconv>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr int mostAncestors = 4; // browsers start native hosts themselves, or through a script

/// Of several browsers whose programs have the same name, the one whose folder this is.
const Browser* byProgramFolder(const fs::path& program) {
    const auto folder = program.parent_path().filename().string();
    const auto all = knownBrowsers();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Browser& browser) {
        return !browser.programFolder.empty() && browser.programFolder == folder;
    });
    return found == all.end() ? nullptr : &*found;
}

bool isOwn(const fs::path& folder) {
    struct stat status {};
    return stat(folder.c_str(), &status) == 0 && status.st_uid == getuid();
}

/// The process that a folder of `/proc` is about. Absent for any other folder.
std::optional<pid_t> processOf(const fs::path& folder) {
    const auto name = folder.filename().string();
    pid_t process = 0;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), process);
    const bool isNumber = parsed.ec == std::errc() && parsed.ptr == name.data() + name.size();
    return isNumber ? std::optional(process) : std::nullopt;
}

} // namespace

std::optional<std::string> browserOfProcess(ApplicationIdentity& identity, pid_t process) {
    const auto evidence = readProcessEvidence(identity.processes(), process);
    if (evidence.executable)
        if (const auto* browser = byProgramFolder(*evidence.executable))
            return std::string(browser->bundleIdentifier);
    // The program's name stands in for the window's class, which is much the same with browsers: so what the browser
    // was started from is not taken for the browser.
    const auto name = evidence.programNames.empty() ? std::string() : evidence.programNames.front();
    const auto found = identity.identify({process, name}).bundleIdentifier;
    return found && knownBrowser(*found) ? found : std::nullopt;
}

std::optional<std::string> browserThatStarted(ApplicationIdentity& identity, pid_t process) {
    auto ancestor = readParent(identity.processes(), process);
    for (int count = 0; ancestor && *ancestor > 1 && count < mostAncestors; ++count) {
        if (auto browser = browserOfProcess(identity, *ancestor))
            return browser;
        ancestor = readParent(identity.processes(), *ancestor);
    }
    return std::nullopt;
}

std::set<std::string> runningBrowsers(ApplicationIdentity& identity) {
    std::set<std::string> running;
    std::error_code error;
    for (fs::directory_iterator at(identity.processes(), error), end; !error && at != end; at.increment(error)) {
        const auto process = processOf(at->path());
        if (!process || !isOwn(at->path()))
            continue;
        if (auto browser = browserOfProcess(identity, *process))
            running.insert(std::move(*browser));
    }
    return running;
}

} // namespace kestrio
