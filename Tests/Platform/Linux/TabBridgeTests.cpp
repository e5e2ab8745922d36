#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"
#include "Kestrio/Platform/Linux/TabBridge.h"
#include "Kestrio/Platform/Linux/TabSocket.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"

#include <csignal>
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

const std::string firefox = "org.mozilla.firefox";

std::string telling(const std::string& title, bool isFocused = true) {
    return fmt::format(
        R"({{"version":1,"windows":[{{"id":1,"type":"normal","state":"normal","focused":{},"left":0,"top":0,)"
        R"("width":8,"height":6,"tabs":[{{"url":"https://x.example/","title":"{}","active":true,)"
        R"("audible":false,"muted":false}}]}}]}})",
        isFocused, title);
}

/// The agent's end, on a queue of its own.
class Agent {
public:
    explicit Agent(
        const fs::path& socket, TabBridge::BrowserOf browserOf = [](pid_t) { return firefox; }) {
        queue_.sync([&] { bridge_ = TabBridge::open(queue_, board, socket, std::move(browserOf)); });
    }
    ~Agent() {
        queue_.sync([this] { bridge_.reset(); });
    }
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    bool isOpen() const { return bridge_ != nullptr; }
    std::string frontTitle() const {
        const auto window = board.focusedWindow(firefox, Seconds(0));
        return window ? window->tabs.front().title : "";
    }
    bool hears(const std::string& title) const {
        return eventually([&] { return frontTitle() == title; });
    }

    TabBoard board;

private:
    WorkerQueue queue_{"tabs"};
    std::unique_ptr<TabBridge> bridge_; // on the queue
};

/// A real `kestrio-tabs`, before which the test plays the browser.
class Host {
public:
    explicit Host(const fs::path& home) {
        int input[2], output[2];
        if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input[0], 0);
        posix_spawn_file_actions_adddup2(&actions, output[1], 1);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        const auto setting = "KESTRIO_HOME=" + home.string();
        char* const arguments[] = {const_cast<char*>(KESTRIO_TABS), const_cast<char*>("manifest.json"), nullptr};
        char* const environment[] = {const_cast<char*>(setting.c_str()), nullptr};
        if (posix_spawn(&process_, KESTRIO_TABS, &actions, nullptr, arguments, environment) != 0)
            throw std::runtime_error("no host");
        posix_spawn_file_actions_destroy(&actions);
        close(input[0]);
        close(output[1]);
        input_ = Descriptor(input[1]);
        output_ = Descriptor(output[0]);
    }
    ~Host() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const auto size = ::write(input_.number(), bytes.data(), bytes.size());
            ASSERT_GT(size, 0);
            bytes.remove_prefix(static_cast<std::size_t>(size));
        }
    }
    void tell(const std::string& text) const { write(tabFrame(text)); }
    void closeInput() { input_.close(); }
    pid_t process() const { return process_; }

    /// The exit status once it has ended.
    int end() {
        int status = 0;
        const bool hasEnded = eventually([&] { return waitpid(process_, &status, WNOHANG) == process_; });
        if (!hasEnded)
            return -1;
        process_ = 0;
        return WEXITSTATUS(status);
    }
    /// All that it ever wrote to standard output, once it has ended.
    std::string output() const {
        char buffer[256];
        const auto size = read(output_.number(), buffer, sizeof buffer);
        return {buffer, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
    }

private:
    pid_t process_ = 0;
    Descriptor input_;
    Descriptor output_;
};

struct Place {
    TemporaryFolder folder;
    fs::path home = folder.path() / "home";
    fs::path socket = home / "run" / "kestrio" / "tabs.socket";
};

Descriptor connected(const fs::path& socket) {
    auto connection = connectToTabSocket(socket);
    EXPECT_TRUE(connection);
    return connection;
}

bool isClosedByPeer(const Descriptor& connection) {
    return eventually([&] {
        char byte = 0;
        const auto size = recv(connection.number(), &byte, 1, 0);
        return size == 0 || (size < 0 && errno == ECONNRESET);
    });
}

void sendAll(const Descriptor& connection, std::string_view bytes) {
    eventually([&] {
        const auto size = send(connection.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (size > 0)
            bytes.remove_prefix(static_cast<std::size_t>(size));
        return bytes.empty() || (size < 0 && errno != EAGAIN);
    });
}

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

TEST(TabSocket, liesInTheRuntimeFolderOrWithTheData) {
    EXPECT_EQ(tabSocketPath({"/d", "/c", "/h", "/r"}), "/r/kestrio/tabs.socket");
    EXPECT_EQ(tabSocketPath({"/d", "/c", "/h", ""}), "/d/Kestrio/tabs.socket");
}

TEST(TabSocket, nobodyElseReachesIt) {
    const Place place;
    const Agent agent(place.socket);
    EXPECT_EQ(modeOf(place.socket), 0600U);
    EXPECT_EQ(modeOf(place.socket.parent_path()), 0700U);
    const auto connection = connected(place.socket);
    EXPECT_EQ(ownPeer(connection), getpid());
}

TEST(TabSocket, itsPathMayBeLongerThanAnAddress) {
    const Place place;
    const auto socket = place.home / std::string(200, 'x') / std::string(200, 'y') / "tabs.socket";
    const Agent agent(socket);
    ASSERT_TRUE(agent.isOpen());
    EXPECT_TRUE(connected(socket));
}

TEST(TabSocket, takesThePlaceOfOneThatWasLeft) {
    const Place place;
    { const auto left = listenAtTabSocket(place.socket); }
    EXPECT_TRUE(fs::exists(place.socket));
    EXPECT_FALSE(connectToTabSocket(place.socket)) << "nobody listens";
    const Agent agent(place.socket);
    EXPECT_TRUE(connected(place.socket));
}

TEST(TabBridge, goesWithItsSocket) {
    const Place place;
    { const Agent agent(place.socket); }
    EXPECT_FALSE(fs::exists(place.socket));
}

TEST(TabBridge, withoutAPlaceForItsSocketThereIsNoneAndALineSaysSo) {
    const Place place;
    place.folder.write("home/run", "a file");
    const ExpectedLog log;
    const Agent agent(place.socket);
    EXPECT_FALSE(agent.isOpen());
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST(TabBridge, whatAHostTellsIsOnTheBoardUntilItGoes) {
    const Place place;
    const Agent agent(place.socket);
    auto connection = connected(place.socket);
    EXPECT_FALSE(agent.board.isConnected(firefox)) << "nothing was told yet";
    sendAll(connection, tabFrame(telling("One")) + tabFrame(telling("Two")));
    EXPECT_TRUE(agent.hears("Two"));
    connection.close();
    EXPECT_TRUE(eventually([&] { return !agent.board.isConnected(firefox); }));
}

TEST(TabBridge, aBadMessageClosesItsConnectionWithOneLineThatHoldsNothingOfIt) {
    const std::string secret = "SECRET";
    const std::string bad[] = {
        std::string("\0\0\0\0", 4),
        std::string("\xFF\xFF\xFF\xFF", 4) + secret,
        tabFrame(secret),
        tabFrame("{\"version\":1,\"windows\":\"" + secret + "\"}"),
        tabFrame("{\"version\":1,\"windows\":[{\"title\":\"" + secret + "\"}]}"),
        tabFrame(telling(secret + "\xFF")),
        tabFrame(telling(std::string(5000, 'x'))),
        tabFrame(std::string(1000, '[')),
    };
    const Place place;
    const Agent agent(place.socket);
    const auto other = connected(place.socket);
    sendAll(other, tabFrame(telling("Other")));
    EXPECT_TRUE(agent.hears("Other"));
    for (const auto& bytes : bad) {
        const ExpectedLog log;
        const auto connection = connected(place.socket);
        sendAll(connection, tabFrame(telling("Good")));
        EXPECT_TRUE(agent.hears("Good"));
        sendAll(connection, bytes + tabFrame(telling("After")) + bytes);
        EXPECT_TRUE(isClosedByPeer(connection));
        EXPECT_TRUE(agent.hears("Other")) << "what it told is gone, and the other still there";
        EXPECT_EQ(log.lines(), std::vector<std::string>{"Kestrio: the extension of org.mozilla.firefox sent something "
                                                        "that is no list of tabs; its connection is closed"});
    }
}

TEST(TabBridge, aMessageThatIsCutOffIsNoneAndNoFault) {
    const Place place;
    const Agent agent(place.socket);
    auto connection = connected(place.socket);
    sendAll(connection, tabFrame(telling("One")));
    EXPECT_TRUE(agent.hears("One"));
    sendAll(connection, tabFrame(telling("Two")).substr(0, 50));
    connection.close();
    EXPECT_TRUE(eventually([&] { return !agent.board.isConnected(firefox); }));
}

TEST(TabBridge, aProgramThatNoBrowserStartedIsTurnedAway) {
    const Place place;
    const ExpectedLog log;
    const Agent agent(place.socket, [](pid_t) { return std::nullopt; });
    const auto connection = connected(place.socket);
    EXPECT_TRUE(isClosedByPeer(connection));
    EXPECT_TRUE(eventually([&] { return log.lines().size() == 1; }));
}

TEST(TabBridge, moreConnectionsThanAnybodyNeedsAreTurnedAway) {
    const Place place;
    const ExpectedLog log;
    const Agent agent(place.socket);
    std::vector<Descriptor> connections;
    for (std::size_t count = 0; count < TabBridge::mostConnections; ++count)
        connections.push_back(connected(place.socket));
    const auto last = connectToTabSocket(place.socket);
    EXPECT_TRUE(isClosedByPeer(last));
    EXPECT_EQ(log.lines().size(), 1U);
    connections.front().close();
    // One place is free again.
    EXPECT_TRUE(eventually([&] {
        const auto next = connectToTabSocket(place.socket);
        sendAll(next, tabFrame(telling("Late")));
        return next && eventually([&] { return agent.frontTitle() == "Late"; }, 1);
    }));
}

TEST(KestrioTabs, handsOnWhatTheBrowserTells) {
    const Place place;
    pid_t asked = 0;
    const Agent agent(place.socket, [&](pid_t host) {
        asked = host;
        return firefox;
    });
    Host host(place.home);
    for (const char* title : {"One", "Two", "Three"}) {
        host.tell(telling(title));
        EXPECT_TRUE(agent.hears(title));
    }
    EXPECT_EQ(asked, host.process());
    host.closeInput();
    EXPECT_EQ(host.end(), 0);
    EXPECT_EQ(host.output(), "");
    EXPECT_TRUE(eventually([&] { return !agent.board.isConnected(firefox); }));
}

TEST(KestrioTabs, loadsNoneOfTheLargeLibraries) {
    const Place place;
    const Agent agent(place.socket);
    Host host(place.home);
    host.tell(telling("One"));
    EXPECT_TRUE(agent.hears("One"));
    const auto maps = fileText(fs::path("/proc") / std::to_string(host.process()) / "maps");
    EXPECT_NE(maps.find("libstdc++"), std::string::npos);
    for (const char* library : {"libicu", "libxcb", "libsdbus", "libsqlite", "libfmt"})
        EXPECT_EQ(maps.find(library), std::string::npos) << library;
}

TEST(KestrioTabs, anAgentThatStartsLaterIsToldTheLastStateAtOnce) {
    const Place place;
    Host host(place.home);
    host.tell(telling("Before"));
    host.tell(telling("Still before"));
    for (int agents = 0; agents < 3; ++agents) {
        const Agent agent(place.socket);
        EXPECT_TRUE(agent.hears("Still before"));
    }
    const Agent agent(place.socket);
    EXPECT_TRUE(agent.hears("Still before"));
    host.tell(telling("After"));
    EXPECT_TRUE(agent.hears("After"));
}

TEST(KestrioTabs, findsAnAgentWhoseFolderWasMadeAnew) {
    const Place place;
    Host host(place.home);
    host.tell(telling("One"));
    {
        const Agent agent(place.socket);
        EXPECT_TRUE(agent.hears("One"));
    }
    fs::remove_all(place.home / "run" / "kestrio");
    EXPECT_TRUE(eventually([&] { return fs::exists(place.home / "run" / "kestrio"); })) << "the host makes it";
    const Agent agent(place.socket);
    EXPECT_TRUE(agent.hears("One"));
}

TEST(KestrioTabs, aMessageInPiecesAndALongOneArriveWhole) {
    const Place place;
    const Agent agent(place.socket);
    Host host(place.home);
    for (const char byte : tabFrame(telling("Slow")))
        host.write({&byte, 1});
    EXPECT_TRUE(agent.hears("Slow"));
    auto longest = telling("Long");
    longest.insert(longest.size() - 1, ",\"more\":\"" + std::string(longestTabFrame - longest.size() - 10, 'x') + "\"");
    ASSERT_EQ(longest.size(), longestTabFrame);
    host.tell(longest);
    EXPECT_TRUE(agent.hears("Long"));
}

TEST(KestrioTabs, endsAtOnceWhenTheBrowserBreaksTheForm) {
    const Place place;
    for (const auto* bytes : {"\xFF\xFF\xFF\x7F", "\x01\x00\x10\x00"}) {
        Host host(place.home);
        host.write({bytes, 4});
        EXPECT_EQ(host.end(), 1);
        EXPECT_EQ(host.output(), "");
    }
}

TEST(KestrioTabs, anAgentThatHungUpIsNotRunAgainst) {
    const Place place;
    const ExpectedLog log;
    const Agent agent(place.socket);
    Host host(place.home);
    host.tell("nonsense");
    EXPECT_TRUE(eventually([&] { return log.lines().size() == 1; }));
    for (int count = 0; count < 20; ++count)
        host.tell("nonsense " + std::to_string(count));
    host.closeInput();
    EXPECT_EQ(host.end(), 0);
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST(KestrioTabs, anAgentThatDoesNotReadHoldsNothingUp) {
    const Place place;
    const auto listener = listenAtTabSocket(place.socket);
    Host host(place.home);
    const std::string large(900'000, 'x');
    for (int count = 0; count < 30; ++count)
        host.tell(large); // far more than any socket holds
    host.closeInput();
    EXPECT_EQ(host.end(), 0);
}

} // namespace
} // namespace kestrio
