// Brings up windows: asks the process that has them, or starts one. What is asked for while one starts waits for it, so
// that two never start.
//
// Belongs to the main queue. A request takes some milliseconds; 0.4 s where the windows' process has been stopped.
#pragma once

#include "Kestrio/Base/Queue.h"
#include "Kestrio/Link/Background.h"
#include "Kestrio/Link/WindowClient.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class BusConnection;

class WindowLauncher {
public:
    /// A process that has not said a word by then never will.
    static constexpr Seconds startDeadline{10.0};

    struct Parts {
        Queue& queue;
        BusConnection* bus; // the session's, null where there is none: each request then starts a process
        std::filesystem::path program;
        Environment environment;
    };

    /// Queue and bus must outlive this.
    explicit WindowLauncher(Parts parts);

    /// Shows it, and says what is missing when that cannot be. `activationToken` is the desktop's leave to take the
    /// front, empty where it gave none.
    Background::Failure show(const WindowRequest& request, const std::string& activationToken = {});

    /// Closes all windows, where there are any.
    void quit();

private:
    struct Waiting {
        WindowRequest request;
        std::string activationToken;
    };

    bool isRunning();
    Background::Failure start(const WindowRequest& request, const std::string& activationToken);
    void awaitAppearance();
    void windowsAppeared();
    void giveUp();

    const Parts parts_;
    std::optional<WindowClient> client_;
    bool hasStartedOne_ = false;
    std::vector<Waiting> waiting_; // for the process that starts
    Subscription appearing_;       // while a process starts
    Subscription deadline_;        // likewise
};

} // namespace kestrio
