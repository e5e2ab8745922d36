// Which browsers there are to be read, and whether this host lets us read each of them.
//
// Callable from any thread that the host's functions may be called from. Never on the main thread: asking for consent
// may take as long as the person takes to answer.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

struct BrowserApp {
    std::string bundleID; // its identity
    std::string name;     // as the person reads it

    friend bool operator==(const BrowserApp&, const BrowserApp&) = default;
};

enum class AutomationStatus {
    granted,
    denied,        // the person said no, and asking again is no use
    notDetermined, // the browser runs, and offers nothing to read so far
    notRunning,
    unknown, // the host cannot tell
};

struct BrowserPermission {
    BrowserApp browser; // its identity
    AutomationStatus status = AutomationStatus::unknown;

    friend bool operator==(const BrowserPermission&, const BrowserPermission&) = default;
};

/// What the host knows of a browser's readiness to be read.
struct BrowserReadiness {
    bool isRunning = false;
    bool isBridgeConnected = false;       // its extension talks to us
    bool isAccessibilityReadable = false; // it shows its pages to assistive programs
    bool isRefused = false;               // the person does not want it read
};

/// What is left to a person before a browser can be read, once they allowed it.
struct BrowserStep {
    std::string text;
    std::optional<std::string> button; // leads to where it is done; absent where there is no such place

    friend bool operator==(const BrowserStep&, const BrowserStep&) = default;
};

class Permissions {
public:
    /// The places in the host's settings at which a person can mend what is missing.
    static constexpr auto accessibilityPane = "Privacy_Accessibility";
    static constexpr auto automationPane = "Privacy_Automation";

    /// What the host contributes. A function that is left out answers nothing.
    struct Host {
        /// The name of an installed application by its bundle identifier. Absent when it is not installed.
        std::function<std::optional<std::string>(const std::string& bundleID)> applicationName;
        /// Absent when it cannot be told.
        std::function<std::optional<BrowserReadiness>(const std::string& bundleID)> readiness;
        /// Does what this host can do to be let in, on the person's word; returns when they have answered.
        std::function<void(const std::string& bundleID)> askForConsent;
        /// Absent when nothing is.
        std::function<std::optional<BrowserStep>(const BrowserApp& browser)> stepLeft;
        /// Leads the person to where the step is done.
        std::function<void(const BrowserApp& browser)> openStep;
        /// Starts the application without taking the front from another.
        std::function<void(const BrowserApp& browser)> openInBackground;
        /// Leads the person to the place of that name, or says what to do where there is none.
        std::function<void(const std::string& anchor)> openPrivacyPane;
    };

    /// `browsers` are the bundle identifiers that can be read here; `locale` decides about the order of names.
    Permissions(std::set<std::string> browsers, std::string locale, Host host);

    /// The readable browsers that are installed, by name, in the person's order and without regard to case.
    std::vector<BrowserApp> installedScriptableBrowsers() const;

    enum class Asking { no, ifNeeded };
    /// With `ifNeeded` a running browser that has not been decided upon is asked for; that may block for long.
    AutomationStatus automationStatus(const std::string& bundleID, Asking asking) const;

    std::optional<BrowserStep> stepLeft(const BrowserApp& browser) const;
    void openStep(const BrowserApp& browser) const;
    void openInBackground(const BrowserApp& browser) const;
    void openPrivacyPane(const std::string& anchor) const;

    /// The rule: a browser that does not run tells nothing, and a refusal outweighs whatever could be read.
    static AutomationStatus status(const std::optional<BrowserReadiness>& readiness);

private:
    AutomationStatus currentStatus(const std::string& bundleID) const;

    const std::set<std::string> browsers_;
    const std::string locale_;
    const Host host_;
};

} // namespace kestrio
