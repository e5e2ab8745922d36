#include "Kestrio/Platform/Linux/TabBridge.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Platform/Linux/TabMessages.h"
#include "Kestrio/Platform/Linux/TabSocket.h"

#include <array>
#include <cerrno>
#include <sys/socket.h>

namespace kestrio {

std::unique_ptr<TabBridge> TabBridge::open(LoopQueue& queue, TabBoard& board, const std::filesystem::path& socket,
                                           BrowserOf browserOf) {
    auto listener = listenAtTabSocket(socket);
    if (!listener) {
        logLine("Kestrio: browsers' extensions cannot reach it: there is no socket to be had at " + socket.string());
        return nullptr;
    }
    return std::unique_ptr<TabBridge>(new TabBridge(queue, board, socket, std::move(listener), std::move(browserOf)));
}

TabBridge::TabBridge(LoopQueue& queue, TabBoard& board, std::filesystem::path socket, Descriptor listener,
                     BrowserOf browserOf)
    : queue_(queue),
      board_(board),
      socket_(std::move(socket)),
      listener_(std::move(listener)),
      browserOf_(std::move(browserOf)),
      accepting_(queue.watch(listener_.number(), [this] { acceptAll(); })) {}

TabBridge::~TabBridge() {
    for (const auto& [id, host] : hosts_)
        board_.remove(id);
    accepting_.cancel();
    std::error_code ignored;
    std::filesystem::remove(socket_, ignored);
}

void TabBridge::acceptAll() {
    while (true) {
        Descriptor connection(accept4(listener_.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (connection)
            accept(std::move(connection));
        else if (errno != EINTR && errno != ECONNABORTED)
            return;
    }
}

void TabBridge::accept(Descriptor connection) {
    const auto process = ownPeer(connection);
    auto browser = process ? browserOf_(*process) : std::nullopt;
    if (!browser) {
        logLine("Kestrio: the tabs of a program that is not known as a browser are not wanted");
        return;
    }
    if (hosts_.size() >= mostConnections) {
        logLine("Kestrio: too many browsers tell their tabs at once");
        return;
    }
    const auto id = ++lastConnection_;
    auto& host = hosts_[id];
    host.connection = std::move(connection);
    host.bundleIdentifier = std::move(*browser);
    host.readable = queue_.watch(host.connection.number(), [this, id] { read(id); });
}

void TabBridge::read(TabBoard::Connection id) {
    auto& host = hosts_.at(id);
    std::array<char, 65'536> buffer; // left as it is: only what is read counts
    while (true) {
        const auto size = recv(host.connection.number(), buffer.data(), buffer.size(), 0);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 && errno == EAGAIN)
            return;
        if (size <= 0)
            return close(id);
        host.frames.add({buffer.data(), static_cast<std::size_t>(size)});
        if (!takeMessages(id, host)) {
            logLine("Kestrio: the extension of " + host.bundleIdentifier +
                    " sent something that is no list of tabs; its connection is closed");
            return close(id);
        }
    }
}

bool TabBridge::takeMessages(TabBoard::Connection id, Host& host) {
    while (const auto message = host.frames.next()) {
        auto windows = bridgedWindows(*message);
        if (!windows)
            return false;
        board_.put(id, host.bundleIdentifier, std::move(*windows));
    }
    return !host.frames.isBroken();
}

void TabBridge::close(TabBoard::Connection id) {
    board_.remove(id);
    hosts_.erase(id);
}

} // namespace kestrio
