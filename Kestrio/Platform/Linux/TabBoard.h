// The last that every browser's extension told, for whoever asks. Callable from any thread: guarded by a lock of its
// own that is held for a look or an exchange.
//
// A browser has as many connections as profiles with the extension in it. Together they are one browser.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Base/Subscription.h"
#include "Kestrio/Platform/Linux/TabMessages.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class TabBoard {
public:
    using Connection = std::uint64_t;
    using Windows = std::vector<BridgedWindow>;

    /// Replaces what this connection told before.
    void put(Connection connection, const std::string& bundleIdentifier, Windows windows);
    void remove(Connection connection);

    /// The bundle identifiers of the browsers that are connected and have told something, in order.
    std::vector<std::string> browsers() const;
    bool isConnected(const std::string& bundleIdentifier) const;

    /// `receiver`, the one there is, is called when `browsers` has become another answer, on the thread that told the
    /// news; a call may be under way while the token is dropped.
    Subscription observeBrowsers(std::function<void()> receiver) const;

    /// All windows, the one that had the focus last first. Absent when the browser is not connected.
    std::optional<Windows> windows(const std::string& bundleIdentifier) const;

    /// The window that has the focus. When none has, waits for one as long as `patience`; absent then, and when the
    /// browser is not connected (any more).
    std::optional<BridgedWindow> focusedWindow(const std::string& bundleIdentifier, Seconds patience) const;

    /// The tabs that play sound which can be heard.
    std::vector<BridgedTab> audibleTabs(const std::string& bundleIdentifier) const;

private:
    struct Told {
        std::string bundleIdentifier;
        Windows windows;
        std::map<std::int64_t, std::uint64_t> focused; // by window, when it last got the focus, as a count
    };
    struct Placed {
        const BridgedWindow* window;
        std::uint64_t focused;
    };

    std::vector<Placed> frontToBack(const std::string& bundleIdentifier) const;
    const BridgedWindow* focused(const std::string& bundleIdentifier) const;
    bool hasConnection(const std::string& bundleIdentifier) const;
    void tellBrowsers() const;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<Connection, Told> told_;
    std::uint64_t focusCount_ = 0;
    struct Receiver {
        std::mutex mutex;
        std::function<void()> call;
    };
    const std::shared_ptr<Receiver> receiver_ = std::make_shared<Receiver>(); // its token may outlive the board
};

} // namespace kestrio
