// The agent's end of the tab bridge: takes the browsers' native hosts in at a socket and writes what they tell on a
// board. A host is believed about its own browser alone: which one that is, its process says, not its message.
//
// Made and dropped in the queue's work; all of it happens there. Nothing is ever sent to a host. Whatever breaks the
// rules of the messages loses its connection, with one line in the log that holds nothing of what it sent.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/TabBoard.h"
#include "Kestrio/Platform/Linux/TabFrames.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

namespace kestrio {

class TabBridge {
public:
    /// The bundle identifier of the browser that started this native host; absent when no browser did.
    using BrowserOf = std::function<std::optional<std::string>(pid_t host)>;

    /// More than anybody has profiles open in.
    static constexpr std::size_t mostConnections = 32;

    /// Null, with a line in the log, when the socket cannot be had. Queue and board must outlive the bridge.
    static std::unique_ptr<TabBridge> open(LoopQueue& queue, TabBoard& board, const std::filesystem::path& socket,
                                           BrowserOf browserOf);
    ~TabBridge();
    TabBridge(const TabBridge&) = delete;
    TabBridge& operator=(const TabBridge&) = delete;

private:
    struct Host {
        Descriptor connection;
        std::string bundleIdentifier;
        TabFrameReader frames;
        Subscription readable;
    };

    TabBridge(LoopQueue& queue, TabBoard& board, std::filesystem::path socket, Descriptor listener,
              BrowserOf browserOf);

    void acceptAll();
    void accept(Descriptor connection);
    void read(TabBoard::Connection id);
    bool takeMessages(TabBoard::Connection id, Host& host);
    void close(TabBoard::Connection id);

    LoopQueue& queue_;
    TabBoard& board_;
    const std::filesystem::path socket_;
    const Descriptor listener_;
    const BrowserOf browserOf_;
    std::map<TabBoard::Connection, Host> hosts_;
    TabBoard::Connection lastConnection_ = 0;
    Subscription accepting_;
};

} // namespace kestrio
