#include "Kestrio/Platform/Linux/TabSocket.h"

#include "Kestrio/Base/Files.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr int hostsAtOnce = 64; // that wait to be accepted; a further one would be told to come again

Descriptor newSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

Descriptor openFolder(const fs::path& folder) {
    return Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// Absent when even the name alone is too long.
std::optional<sockaddr_un> address(const Descriptor& folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto path = "/proc/self/fd/" + std::to_string(folder.number()) + "/" + name;
    if (path.size() >= sizeof address.sun_path)
        return std::nullopt;
    std::memcpy(address.sun_path, path.data(), path.size());
    return address;
}

const sockaddr* plain(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

} // namespace

fs::path tabSocketPath(const Locations& places) {
    return places.runtime.empty() ? places.data / "Kestrio" / "tabs.socket"
                                  : places.runtime / "kestrio" / "tabs.socket";
}

Descriptor listenAtTabSocket(const fs::path& path) {
    if (makePrivateFolder(path.parent_path()))
        return Descriptor();
    const auto folder = openFolder(path.parent_path());
    const auto name = path.filename().string();
    const auto unready = "." + name + ".new";
    const auto place = folder ? address(folder, unready) : std::nullopt;
    auto listener = newSocket();
    if (!place || !listener)
        return Descriptor();
    unlinkat(folder.number(), unready.c_str(), 0);
    if (bind(listener.number(), plain(*place), sizeof *place) != 0 || chmod(place->sun_path, 0600) != 0 ||
        listen(listener.number(), hostsAtOnce) != 0 ||
        renameat(folder.number(), unready.c_str(), folder.number(), name.c_str()) != 0) {
        unlinkat(folder.number(), unready.c_str(), 0);
        return Descriptor();
    }
    return listener;
}

Descriptor connectToTabSocket(const fs::path& path) {
    const auto folder = openFolder(path.parent_path());
    const auto place = folder ? address(folder, path.filename().string()) : std::nullopt;
    auto connection = newSocket();
    if (!place || !connection || connect(connection.number(), plain(*place), sizeof *place) != 0)
        return Descriptor();
    return connection;
}

std::optional<pid_t> ownPeer(const Descriptor& connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(connection.number(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || peer.uid != getuid())
        return std::nullopt;
    return peer.pid;
}

} // namespace kestrio
