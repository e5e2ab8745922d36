#include "Programs/Tabs/TabRelay.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Platform/Linux/TabSocket.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>

namespace kestrio {
namespace {

constexpr std::size_t pieceSize = 16'384;

enum class Read { some, nothing, end };
struct Piece {
    Read outcome;
    std::string_view bytes;
};

Piece readPiece(int descriptor, std::array<char, pieceSize>& buffer) {
    const auto size = ::read(descriptor, buffer.data(), buffer.size());
    if (size > 0)
        return {Read::some, {buffer.data(), static_cast<std::size_t>(size)}};
    const bool isLater = size < 0 && (errno == EINTR || errno == EAGAIN);
    return {isLater ? Read::nothing : Read::end, {}};
}

} // namespace

TabRelay::TabRelay(int input, std::filesystem::path socket) : input_(input), socket_(std::move(socket)) {}

bool TabRelay::run() {
    while (!hasEnded_ && !isBroken_) {
        if (!notices_)
            watchFolder();
        connectIfDue();
        const auto agentEvents = static_cast<short>(POLLIN | (isSending() ? POLLOUT : 0));
        std::array<pollfd, 3> watched{{
            {input_, POLLIN, 0},
            {notices_ ? notices_.number() : -1, POLLIN, 0},
            {agent_ ? agent_.number() : -1, agentEvents, 0},
        }};
        if (poll(watched.data(), watched.size(), waitMilliseconds()) < 0 && errno != EINTR)
            return false;
        if (watched[2].revents & ~POLLOUT)
            readAgent();
        if (watched[1].revents)
            folderChanged();
        if (watched[0].revents && !readBrowser())
            isBroken_ = true;
        send();
    }
    return hasEnded_;
}

bool TabRelay::readBrowser() {
    std::array<char, pieceSize> buffer;
    const auto piece = readPiece(input_, buffer);
    hasEnded_ = piece.outcome == Read::end;
    frames_.add(piece.bytes);
    while (auto message = frames_.next()) {
        last_ = tabFrame(*message);
        isUnsent_ = true;
    }
    return !frames_.isBroken();
}

/// The folder is made when needed: the agent may start long after the browser.
void TabRelay::watchFolder() {
    if (makePrivateFolder(socket_.parent_path()))
        return;
    Descriptor notices(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!notices || inotify_add_watch(notices.number(), socket_.parent_path().c_str(),
                                      IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR) < 0)
        return;
    notices_ = std::move(notices);
    connect();
}

void TabRelay::folderChanged() {
    alignas(inotify_event) std::array<char, pieceSize> buffer;
    const auto piece = readPiece(notices_.number(), buffer);
    bool isFolderThere = true;
    bool isAgentNew = false;
    for (auto rest = piece.bytes; rest.size() >= sizeof(inotify_event);) {
        const auto* notice = reinterpret_cast<const inotify_event*>(rest.data());
        isFolderThere = isFolderThere && !(notice->mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED));
        isAgentNew = isAgentNew || (notice->len > 0 && socket_.filename() == notice->name);
        rest.remove_prefix(std::min(rest.size(), sizeof(inotify_event) + notice->len));
    }
    if (!isFolderThere)
        return notices_.close();
    if (isAgentNew) { // whatever became of the one before
        hangUp();
        connect();
    }
}

void TabRelay::connect() {
    notBefore_.reset();
    agent_ = connectToTabSocket(socket_);
    isUnsent_ = last_.has_value();
    if (!agent_)
        notBefore_ = clock_.uptime() + patience;
}

/// Without notices of the folder an agent is looked for now and then; with them, only when there is news to tell one
/// that hung up.
void TabRelay::connectIfDue() {
    if (!agent_ && (!notBefore_ || clock_.uptime() >= *notBefore_) && (!notices_ || isUnsent_))
        connect();
}

void TabRelay::hangUp() {
    agent_.close();
    sending_.clear();
    notBefore_ = clock_.uptime() + patience;
}

void TabRelay::readAgent() {
    std::array<char, pieceSize> buffer; // an agent has nothing to say; this is how its end is heard of
    if (readPiece(agent_.number(), buffer).outcome == Read::end)
        hangUp();
}

void TabRelay::send() {
    while (isSending()) {
        if (sending_.empty()) {
            sending_ = *last_;
            isUnsent_ = false;
        }
        const auto size = ::send(agent_.number(), sending_.data(), sending_.size(), MSG_NOSIGNAL);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0 && errno == EAGAIN)
            return;
        if (size < 0)
            return hangUp();
        sending_.erase(0, static_cast<std::size_t>(size));
    }
}

int TabRelay::waitMilliseconds() const {
    constexpr auto nowAndThen = static_cast<int>(patience.count() * 1000);
    return notices_ ? -1 : nowAndThen;
}

} // namespace kestrio
