// Access to this host's browsers, as the windows offer it: what the agent tells of those that run, and what a person's
// word sets going. There is no consent dialog here: being allowed means that the browser may start `kestrio-tabs`, and
// what remains is the person's, who puts the extension into it.
//
// Made and dropped on the main queue. While no agent answers, nothing is known, and no browser counts as installed.
#pragma once

#include "Kestrio/Link/AgentLink.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/NativeHosts.h"
#include "Kestrio/Shell/BrowserAccess.h"

#include <memory>

namespace kestrio {

class HostBrowserAccess {
public:
    struct Host {
        Environment environment;
        std::filesystem::path programs; // the folder that `kestrio-tabs` lies in
        std::string locale;
        /// Starts a program that is none of our business afterwards.
        std::function<void(const std::vector<std::string>& command, bool inBackground)> start;
    };

    /// `worker` is the one that the link's subscriptions run on. All must outlive this.
    HostBrowserAccess(Queue& main, Queue& worker, AgentLink& agent, const Clock& clock, Host host);
    /// Waits for the worker queue.
    ~HostBrowserAccess();
    HostBrowserAccess(const HostBrowserAccess&) = delete;
    HostBrowserAccess& operator=(const HostBrowserAccess&) = delete;

    BrowserAccess& access() { return access_; }

private:
    Permissions::Host permissionsHost();
    void look(Background& agent);
    std::optional<BrowserReadiness> readiness(const std::string& bundleID);
    void allow(const std::string& bundleID);
    bool isSandboxed(const std::string& bundleID);
    std::optional<BrowserStep> stepLeft(const BrowserApp& app);
    void openStep(const BrowserApp& app);
    void openInBackground(const BrowserApp& app);

    Queue& main_;
    Queue& worker_;
    const Host host_;
    const std::filesystem::path extension_;
    // On the worker queue from here:
    DesktopEntries entries_;
    ApplicationIdentity identity_;
    const std::optional<NativeHosts> nativeHosts_; // absent where the person has no home
    std::optional<std::vector<BrowserReading>> readings_;
    std::map<std::string, std::error_code> refused_; // what kept the manifest from being written, by bundle identifier
    // And on the main one:
    const Permissions permissions_;
    BrowserAccess access_;
    std::shared_ptr<HostBrowserAccess*> self_ = std::make_shared<HostBrowserAccess*>(this); // work holds it weakly
    Subscription agent_;
};

} // namespace kestrio
