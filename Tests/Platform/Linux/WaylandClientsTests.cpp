// With a real socket that bears the name of a compositor's, and processes that connect to it.
#include "Kestrio/Base/Descriptor.h"
#include "Kestrio/Platform/Linux/WaylandClients.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

TEST(CompositorSocket, isKnownByItsName) {
    for (const auto* path : {"/run/user/1000/wayland-0", "/run/user/1000/wayland-12", "/tmp/x/wayland-1-flatpak"})
        EXPECT_TRUE(isCompositorSocket(path)) << path;
    for (const auto* path : {"", "wayland-0", "@/run/user/1000/wayland-0", "/run/user/1000/bus", "/run/wayland-",
                             "/run/wayland-0.lock", "/run/wayland-0/bus", "/run/wayland-x"})
        EXPECT_FALSE(isCompositorSocket(path)) << path;
}

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), std::min(path.size() + 1, sizeof address.sun_path));
    return address;
}

/// Takes connections, as a compositor does.
class Compositor {
public:
    explicit Compositor(std::string path) : path_(std::move(path)), socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
        const auto address = addressOf(path_);
        EXPECT_EQ(bind(socket_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(socket_.number(), 5), 0);
    }
    const std::string& path() const { return path_; }
    Descriptor accept() const { return Descriptor(::accept(socket_.number(), nullptr, nullptr)); }

private:
    const std::string path_;
    const Descriptor socket_;
};

/// A process with a connection to the socket, or without one. It ends with this.
class Client {
public:
    explicit Client(const std::string& path) : process_(fork()) {
        if (process_ != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const auto address = addressOf(path);
        const int connection = socket(AF_UNIX, SOCK_STREAM, 0);
        if (!path.empty() && connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            _exit(1);
        for (;;)
            pause();
    }
    ~Client() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    pid_t process() const { return process_; }

private:
    pid_t process_;
};

TEST(WaylandClients, areThoseWithAConnection) {
    const TemporaryFolder folder;
    const Compositor compositor((folder.path() / "wayland-0").string());
    const Compositor messageBus((folder.path() / "bus").string());
    const Client window(compositor.path());
    const Client service(messageBus.path());
    const Client alone("");
    const auto connection = compositor.accept();
    const auto other = messageBus.accept();
    EXPECT_EQ(waylandClients({alone.process(), window.process(), service.process()}), std::vector{window.process()});
}

TEST(WaylandClients, areThoseOfARealCompositor) {
    if (!std::filesystem::exists("/usr/bin/weston-simple-shm"))
        GTEST_SKIP() << "no Weston";
    const TemporaryFolder runtime;
    const auto folder = "XDG_RUNTIME_DIR=" + runtime.path().string();
    const TestProgram compositor({"weston", "--backend=headless-backend.so", "--socket=wayland-7"}, {folder});
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(runtime.path() / "wayland-7"); }));
    const TestProgram window({"weston-simple-shm"}, {folder, "WAYLAND_DISPLAY=wayland-7"});
    EXPECT_TRUE(eventually([&] {
        return waylandClients({compositor.process(), window.process()}) == std::vector{window.process()};
    }));
}

TEST(WaylandClients, areNoneOfThoseThatAreGone) {
    const TemporaryFolder folder;
    const Compositor compositor((folder.path() / "wayland-0").string());
    const Client window(compositor.path());
    const auto connection = compositor.accept();
    EXPECT_TRUE(waylandClients({}).empty());
    EXPECT_TRUE(waylandClients({0, 1 << 30}).empty());
}

} // namespace
} // namespace kestrio
