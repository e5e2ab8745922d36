#include "Kestrio/Platform/Linux/WaylandClients.h"

#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/KernelText.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/time.h>
#include <system_error>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

using Inodes = std::set<std::uint64_t>;

/// The kernel answers from memory; this is for a machine that is about to stand still.
constexpr timeval patience{0, 200'000};

constexpr std::uint32_t connected = 1; // TCP_ESTABLISHED, which the kernel uses for these sockets too

bool ask(const Descriptor& kernel) {
    struct {
        nlmsghdr head;
        unix_diag_req request;
    } message{};
    message.head.nlmsg_len = sizeof message;
    message.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    message.head.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    message.request.sdiag_family = AF_UNIX;
    message.request.udiag_states = 1U << connected;
    message.request.udiag_show = UDIAG_SHOW_NAME | UDIAG_SHOW_PEER;
    return send(kernel.number(), &message, sizeof message, 0) == sizeof message;
}

/// The other end of a connection whose own end was accepted by a compositor.
std::optional<std::uint64_t> clientOfCompositor(const nlmsghdr* message) {
    if (message->nlmsg_len < NLMSG_LENGTH(sizeof(unix_diag_msg)))
        return std::nullopt;
    std::string_view name;
    std::optional<std::uint32_t> peer;
    const char* const begin = reinterpret_cast<const char*>(message);
    const char* at = begin + NLMSG_LENGTH(sizeof(unix_diag_msg));
    const char* const end = begin + message->nlmsg_len;
    while (end - at >= static_cast<std::ptrdiff_t>(sizeof(rtattr))) {
        rtattr attribute{};
        std::memcpy(&attribute, at, sizeof attribute);
        if (attribute.rta_len < sizeof attribute || attribute.rta_len > end - at)
            break;
        const std::string_view value(at + RTA_LENGTH(0), attribute.rta_len - RTA_LENGTH(0));
        if (attribute.rta_type == UNIX_DIAG_NAME)
            name = value;
        if (attribute.rta_type == UNIX_DIAG_PEER && value.size() == sizeof(std::uint32_t)) {
            std::uint32_t inode = 0;
            std::memcpy(&inode, value.data(), sizeof inode);
            peer = inode;
        }
        at += std::min<std::ptrdiff_t>(RTA_ALIGN(attribute.rta_len), end - at);
    }
    // The kernel may count the zero at the end of a path.
    return peer && isCompositorSocket(name.substr(0, name.find('\0'))) ? std::optional<std::uint64_t>(*peer)
                                                                       : std::nullopt;
}

/// Absent where the kernel does not answer.
std::optional<Inodes> clientsOfCompositors() {
    const Descriptor kernel(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (!kernel || setsockopt(kernel.number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0 ||
        !ask(kernel))
        return std::nullopt;
    Inodes inodes;
    alignas(nlmsghdr) std::array<char, 32 << 10> buffer{};
    for (;;) {
        auto length = recv(kernel.number(), buffer.data(), buffer.size(), 0);
        if (length <= 0)
            return std::nullopt;
        for (auto* message = reinterpret_cast<nlmsghdr*>(buffer.data()); NLMSG_OK(message, length);
             message = NLMSG_NEXT(message, length)) {
            if (message->nlmsg_type == NLMSG_DONE)
                return inodes;
            if (message->nlmsg_type == NLMSG_ERROR)
                return std::nullopt;
            if (const auto client = clientOfCompositor(message))
                inodes.insert(*client);
        }
    }
}

bool holdsAny(const fs::path& descriptors, const Inodes& inodes) {
    constexpr std::string_view prefix = "socket:[";
    std::error_code error;
    for (fs::directory_iterator entry(descriptors, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code gone;
        const auto target = fs::read_symlink(entry->path(), gone).native();
        if (gone || !target.starts_with(prefix))
            continue;
        const auto inode = parsedNumber<std::uint64_t>(
            std::string_view(target).substr(prefix.size(), target.size() - prefix.size() - 1));
        if (inode && inodes.contains(*inode))
            return true;
    }
    return false;
}

bool isAnyCompositorThere(const fs::path& procfs) {
    const auto sockets = readProcessFile(procfs / "net" / "unix").value_or("");
    std::string_view rest = sockets;
    while (const auto line = nextLine(rest))
        if (const auto path = line->find(" /");
            path != std::string_view::npos && isCompositorSocket(line->substr(path + 1)))
            return true;
    return false;
}

} // namespace

bool isCompositorSocket(std::string_view path) {
    constexpr std::string_view prefix = "wayland-";
    if (!path.starts_with('/'))
        return false;
    const auto name = path.substr(path.rfind('/') + 1);
    return name.size() > prefix.size() && name.starts_with(prefix) && name[prefix.size()] >= '0' &&
           name[prefix.size()] <= '9' && !name.ends_with(".lock");
}

std::vector<pid_t> waylandClients(const std::vector<pid_t>& processes, const fs::path& procfs) {
    const auto inodes = clientsOfCompositors();
    if (!inodes)
        return isAnyCompositorThere(procfs) ? processes : std::vector<pid_t>();
    std::vector<pid_t> clients;
    if (!inodes->empty())
        std::ranges::copy_if(processes, std::back_inserter(clients),
                             [&](pid_t process) { return holdsAny(procfs / std::to_string(process) / "fd", *inodes); });
    return clients;
}

} // namespace kestrio
