// The tab bridge as the agent runs it: a queue for it, what tells browsers apart, the board and the socket. Made and
// dropped on any thread.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BrowserProcess.h"
#include "Kestrio/Platform/Linux/TabBridge.h"
#include "Kestrio/Platform/Linux/TabSocket.h"

#include <filesystem>
#include <memory>

namespace kestrio {

class BrowserTabs {
public:
    /// The clock must outlive this. Without a socket the board stays empty, and a line in the log says so.
    BrowserTabs(const Clock& clock, const std::filesystem::path& socket)
        : entries_(applicationFolders(processEnvironment), messageLocale(processEnvironment), clock),
          identity_(entries_, IdentityCatalogue::builtIn()) {
        queue_.sync([&] {
            bridge_ = TabBridge::open(queue_, board_, socket,
                                      [this](pid_t host) { return browserThatStarted(identity_, host); });
        });
    }
    ~BrowserTabs() {
        queue_.sync([this] { bridge_.reset(); });
    }
    BrowserTabs(const BrowserTabs&) = delete;
    BrowserTabs& operator=(const BrowserTabs&) = delete;

    const TabBoard& board() const { return board_; }

private:
    TabBoard board_;
    DesktopEntries entries_;       // on the queue
    ApplicationIdentity identity_; // on the queue
    WorkerQueue queue_{"Kestrio.tabs"};
    std::unique_ptr<TabBridge> bridge_; // on the queue
};

} // namespace kestrio
