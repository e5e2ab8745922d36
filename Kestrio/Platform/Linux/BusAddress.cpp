#include "Kestrio/Platform/Linux/BusAddress.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fmt/format.h>
#include <optional>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>

namespace kestrio {
namespace {

/// The part of the text up to the separator, which is taken off it together with the separator.
std::string_view takeUntil(std::string_view& text, char separator) {
    const auto end = std::min(text.find(separator), text.size());
    const auto part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

std::optional<int> hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return std::nullopt;
}

/// Addresses write unusual bytes as %41.
std::string unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto high = text[at] == '%' && at + 2 < text.size() ? hexDigit(text[at + 1]) : std::nullopt;
        const auto low = high ? hexDigit(text[at + 2]) : std::nullopt;
        plain += low ? static_cast<char>(*high * 16 + *low) : text[at];
        at += low ? 2 : 0;
    }
    return plain;
}

/// The socket's name as the kernel takes it: a leading NUL stands for the abstract namespace.
std::optional<std::string> socketName(std::string_view address) {
    if (takeUntil(address, ':') != "unix")
        return std::nullopt;
    while (!address.empty()) {
        auto value = takeUntil(address, ',');
        const auto key = takeUntil(value, '=');
        if (key == "path")
            return unescaped(value);
        if (key == "abstract")
            return std::string(1, '\0') + unescaped(value);
    }
    return std::nullopt;
}

Descriptor connectedTo(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.empty() || name.size() >= sizeof address.sun_path)
        return {};
    std::memcpy(address.sun_path, name.data(), name.size());
    const bool abstract = name.front() == '\0';
    const auto length = offsetof(sockaddr_un, sun_path) + name.size() + (abstract ? 0 : 1);
    Descriptor descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // Never in progress: a local socket connects at once, or its queue is full and it does not.
    if (!descriptor ||
        connect(descriptor.number(), reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(length)) != 0)
        return {};
    return descriptor;
}

/// The user's number in decimal, each character as two hexadecimal digits.
std::string greeting() {
    std::string text("\0AUTH EXTERNAL ", 15);
    for (const char c : std::to_string(geteuid()))
        text += fmt::format("{:02x}", static_cast<unsigned>(c));
    return text + "\r\n";
}

bool saysOK(const Descriptor& descriptor, Uptime deadline) {
    const auto text = greeting();
    if (send(descriptor.number(), text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size()))
        return false;
    const SystemClock clock;
    while (true) {
        const auto patience = std::max(0.0, (deadline - clock.uptime()).count());
        pollfd waiting{descriptor.number(), POLLIN, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(patience * 1000));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        std::array<char, 64> answer{};
        const auto size = recv(descriptor.number(), answer.data(), answer.size(), 0);
        return size > 0 && std::string_view(answer.data(), static_cast<std::size_t>(size)).starts_with("OK ");
    }
}

} // namespace

std::optional<std::string> answeringBus(const std::string& addresses, Seconds deadline) {
    const auto end = SystemClock().uptime() + deadline;
    std::string_view rest(addresses);
    while (!rest.empty()) {
        const auto address = takeUntil(rest, ';');
        const auto name = socketName(address);
        const auto descriptor = name ? connectedTo(*name) : Descriptor();
        if (descriptor && saysOK(descriptor, end))
            return std::string(address);
    }
    return std::nullopt;
}

} // namespace kestrio
