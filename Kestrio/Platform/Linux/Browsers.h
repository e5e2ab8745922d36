// The browsers of this host that can tell their tabs: which they are, how they are found, and where each looks for the
// programs that its extensions may start. Data; immutable; any thread.
#pragma once

#include <span>
#include <string_view>

namespace kestrio {

/// Browsers of one family take the same extension and the same manifests.
enum class BrowserFamily { chromium, firefox };

/// A folder of one person in which a browser looks for manifests of native hosts.
struct NativeHostFolder {
    enum class Base { home, config };
    /// Some folders must not be made where they are missing: their mere presence tells a browser where its profiles
    /// lie.
    enum class When { always, ifTopExists, ifTopExistsOrNoOtherDoes };

    Base base;
    std::string_view top; // the browser's own
    std::string_view rest;
    When when = When::always;
};

struct Browser {
    std::string_view bundleIdentifier;
    std::string_view name;
    BrowserFamily family;
    /// The folder that its program lies in, where several browsers have programs of the same name; else empty.
    std::string_view programFolder;
    std::span<const NativeHostFolder> userFolders;
    /// The same for everybody on this machine.
    std::string_view systemFolder;
};

/// In the order in which people are shown them.
std::span<const Browser> knownBrowsers();

/// Null for an application that is none of them.
const Browser* knownBrowser(std::string_view bundleIdentifier);

} // namespace kestrio
