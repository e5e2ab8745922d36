#include "Kestrio/Platform/Linux/DetachedProgram.h"
#include "Kestrio/Platform/Linux/X11InputIdle.h"
#include "Kestrio/Platform/Linux/X11WindowTitles.h"
#include "Kestrio/Platform/Linux/X11Workspace.h"
#include "Tests/Platform/Linux/X11TestClient.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/VirtualDisplay.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <signal.h>
#include <string_view>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <xcb/xtest.h>

namespace kestrio {
namespace {

/// Polls until the condition holds, for ten seconds at most.
template <class Condition>
bool comesTrue(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return condition();
}

/// The system's clock, with time that passes at the test's word.
class HurriedClock : public Clock {
public:
    Date now() const override { return system_.now(); }
    Uptime uptime() const override { return system_.uptime() + Seconds(ahead_.load()); }
    void hurry(double seconds) { ahead_ = ahead_ + seconds; }

private:
    SystemClock system_;
    std::atomic<double> ahead_ = 0;
};

/// Everything that reads from one display, on a queue of its own.
class Readers {
public:
    Readers(const std::string& display, const std::filesystem::path& applications)
        : parts_(std::make_unique<Parts>(queue_, clock, display, applications)) {}

    ~Readers() {
        queue_.sync([this] { parts_.reset(); });
    }

    std::optional<RunningApplication> front() {
        return queue_.sync([this] { return parts_->workspace.frontmostApplication(); });
    }
    std::string frontID() {
        const auto application = front();
        return application ? application->bundleIdentifier.value_or("no identifier") : "none";
    }
    std::vector<RunningApplication> running() {
        return queue_.sync([this] { return parts_->workspace.runningApplications(); });
    }
    bool isRunning(std::string_view id) {
        for (const auto& application : running())
            if (application.bundleIdentifier == id)
                return true;
        return false;
    }
    std::optional<std::string> title(pid_t process) {
        return queue_.sync([&] { return parts_->titles.focusedWindowTitle(process); });
    }
    bool isGranted() {
        return queue_.sync([this] { return parts_->titles.isGranted(); });
    }
    /// The windows of this class, front to back.
    std::optional<std::vector<X11PlacedWindow>> placed(const std::string& className) {
        return queue_.sync([&] {
            return parts_->windows.placed([&](const X11Window& window) { return window.className == className; });
        });
    }
    std::optional<Seconds> idle() {
        return queue_.sync([this] { return parts_->idle.sinceLastInput(); });
    }
    bool terminate(const RunningApplication& application) {
        return queue_.sync([&] { return parts_->workspace.terminate(application); });
    }
    /// From now on each notice is counted, and at each `activated` what is in front is kept.
    void listen() {
        queue_.sync([this] {
            parts_->subscription = parts_->workspace.observe([this](WorkspaceNotice notice) {
                ++counts_[static_cast<std::size_t>(notice)];
                if (notice != WorkspaceNotice::activated)
                    return;
                const auto application = parts_->workspace.frontmostApplication();
                fronts_.push_back(application ? application->bundleIdentifier.value_or("?") : "none");
            });
        });
    }
    int count(WorkspaceNotice notice) {
        return queue_.sync([&] { return counts_[static_cast<std::size_t>(notice)]; });
    }
    std::vector<std::string> fronts() {
        return queue_.sync([this] { return fronts_; });
    }

    HurriedClock clock;

private:
    /// Made anywhere, used and dropped on the queue.
    struct Parts {
        Parts(LoopQueue& queue, const Clock& clock, const std::string& display,
              const std::filesystem::path& applications)
            : entries({applications}, "", clock),
              connection(queue, clock, display),
              windows(connection),
              identity(entries, IdentityCatalogue::builtIn()),
              workspace(queue, windows, identity),
              titles(windows),
              idle(connection) {}

        DesktopEntries entries;
        X11Connection connection;
        X11Windows windows;
        ApplicationIdentity identity;
        X11Workspace workspace;
        X11WindowTitles titles;
        X11InputIdle idle;
        Subscription subscription;
    };

    WorkerQueue queue_{"x11"};
    std::array<int, 3> counts_{};
    std::vector<std::string> fronts_;
    std::unique_ptr<Parts> parts_;
};

class X11 : public testing::Test {
protected:
    X11() {
        for (const std::string name : {"alpha", "beta"})
            folder.write("applications/org.example." + name + ".desktop",
                         "[Desktop Entry]\nType=Application\nName=The " + name + "\nStartupWMClass=" + name + "\n");
        EXPECT_TRUE(display.isRunning());
        readers.emplace(display.name(), folder.path() / "applications");
    }

    TestProgram application(const std::string& className, const std::string& manner = "") const {
        return display.start({X11_TEST_WINDOW, className, "window of " + className, manner});
    }
    bool comesToFront(const std::string& id) {
        return comesTrue([&] { return readers->frontID() == id; });
    }

    TemporaryFolder folder;
    VirtualDisplay display;
    std::optional<Readers> readers;
};

TEST_F(X11, theFrontApplicationIsThatOfTheActiveWindow) {
    ASSERT_TRUE(display.startWindowManager());
    readers->listen();
    EXPECT_EQ(readers->frontID(), "none");
    const auto alpha = application("alpha");
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    EXPECT_EQ(readers->front(), (RunningApplication{"org.example.alpha", "The alpha", alpha.process()}));
    EXPECT_EQ(readers->title(alpha.process()), "window of alpha");
    const auto beta = application("beta");
    ASSERT_TRUE(comesToFront("org.example.beta"));
    EXPECT_EQ(readers->title(beta.process()), "window of beta");
    EXPECT_EQ(readers->title(alpha.process()), "window of alpha") << "of an application that is not in front";
    EXPECT_EQ(readers->title(1), std::nullopt);
    EXPECT_TRUE(comesTrue([&] { return readers->count(WorkspaceNotice::launched) == 2; }));
    EXPECT_TRUE(comesTrue([&] {
        return readers->fronts() == std::vector<std::string>{"org.example.alpha", "org.example.beta"};
    }));
}

TEST_F(X11, anApplicationThatEndsIsTold) {
    ASSERT_TRUE(display.startWindowManager());
    auto alpha = application("alpha");
    ASSERT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    readers->listen();
    const auto process = alpha.process();
    alpha.kill();
    EXPECT_TRUE(comesTrue([&] { return readers->count(WorkspaceNotice::terminated) == 1; }));
    EXPECT_TRUE(comesToFront("none"));
    EXPECT_TRUE(comesTrue([&] { return readers->fronts() == std::vector<std::string>{"none"}; }));
    EXPECT_TRUE(readers->running().empty());
    EXPECT_EQ(readers->title(process), std::nullopt);
}

TEST_F(X11, manySwitchesEndAtTheLastWindowAndNeverPassThroughNone) {
    ASSERT_TRUE(display.startWindowManager());
    const auto beta = application("beta");
    ASSERT_TRUE(comesToFront("org.example.beta"));
    const X11TestClient client(display.name());
    const auto one = client.create("alpha");
    const auto two = client.create("gamma");
    client.map(one);
    client.map(two);
    ASSERT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
    readers->listen();
    for (int i = 0; i < 20; ++i) {
        client.activate(one);
        ASSERT_TRUE(comesToFront("org.example.alpha"));
        client.activate(two);
        ASSERT_TRUE(comesToFront("gamma"));
    }
    for (const auto& front : readers->fronts())
        EXPECT_NE(front, "none");
}

TEST_F(X11, aPassingNoneIsNotSeen) {
    const X11TestClient client(display.name());
    client.manage();
    const auto window = client.create("alpha");
    client.setManaged({window});
    client.setActive(window);
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    readers->listen();
    for (int i = 0; i < 50; ++i) {
        client.setActive(XCB_NONE);
        EXPECT_EQ(readers->frontID(), "org.example.alpha");
        client.setActive(window);
        EXPECT_EQ(readers->frontID(), "org.example.alpha");
    }
    EXPECT_TRUE(readers->fronts().empty());
    client.setActive(XCB_NONE);
    EXPECT_TRUE(comesTrue([&] { return readers->fronts() == std::vector<std::string>{"none"}; })) << "one that lasts";
    EXPECT_EQ(readers->frontID(), "none");
}

TEST_F(X11, windowsStandFrontToBackWithTheirPlaceAndWithoutTheirShadow) {
    const X11TestClient client(display.name());
    client.manage();
    const auto back = client.create("alpha");
    const auto front = client.create("alpha");
    const auto other = client.create("beta");
    client.setText(front, "_NET_WM_NAME", "UTF8_STRING", "the front one");
    const std::uint32_t place[] = {30, 40, 200, 150};
    xcb_configure_window(client.xcb(), front,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         place);
    const std::uint32_t shadow[] = {4, 6, 1, 9}; // left, right, top, bottom
    xcb_change_property(client.xcb(), XCB_PROP_MODE_REPLACE, front, client.atom("_GTK_FRAME_EXTENTS"),
                        XCB_ATOM_CARDINAL, 32, 4, shadow);
    client.setManaged({back, other, front});
    client.setActive(front);
    ASSERT_TRUE(comesTrue([&] { return readers->front() && readers->placed("alpha")->size() == 2; }));
    const auto placed = readers->placed("alpha").value();
    EXPECT_EQ(placed[0].window.id, front);
    EXPECT_EQ(placed[0].title, "the front one");
    EXPECT_EQ(placed[0].extents, (Rectangle{30, 40, 200, 150}));
    EXPECT_EQ(placed[0].bounds, (Rectangle{34, 41, 190, 140}));
    EXPECT_TRUE(placed[0].isActive);
    EXPECT_EQ(placed[1].window.id, back);
    EXPECT_EQ(placed[1].title, "");
    EXPECT_EQ(placed[1].bounds, (Rectangle{0, 0, 100, 100}));
    EXPECT_FALSE(placed[1].isActive);
    display.kill();
    EXPECT_TRUE(comesTrue([&] { return !readers->placed("alpha"); })) << "without a server";
}

TEST_F(X11, titlesAreReadInEveryEncoding) {
    const X11TestClient client(display.name());
    client.manage();
    const struct {
        const char* property;
        const char* type;
        std::string bytes;
        std::optional<std::string> title;
    } rows[] = {
        {"_NET_WM_NAME", "UTF8_STRING", "Grüße — 日本", "Grüße — 日本"},
        {"_NET_WM_NAME", "UTF8_STRING", "broken \xff", "broken \xEF\xBF\xBD"},
        {"_NET_WM_NAME", "UTF8_STRING", "", std::nullopt},
        {"WM_NAME", "STRING", "caf\xe9", "café"},
        {"WM_NAME", "UTF8_STRING", "café", "café"},
        {"WM_NAME", "COMPOUND_TEXT", "\x1B-L\xda\xd8\xdd\xde", "кино"},
        {"WM_NAME", "STRING", "", std::nullopt},
        {"WM_CLASS", "STRING", "only a class", std::nullopt},
        {"_NET_WM_NAME", "UTF8_STRING", std::string(100'000, 'x'), std::string(16 * 1024, 'x')},
    };
    for (const auto& row : rows) {
        const auto window = client.create("alpha");
        client.setText(window, row.property, row.type, row.bytes);
        client.setManaged({window});
        client.setActive(window);
        ASSERT_TRUE(comesTrue([&] { return readers->front() && readers->front()->processIdentifier == getpid(); }));
        const auto title = readers->title(getpid());
        EXPECT_EQ(title, row.title) << row.property << " " << row.type << " " << row.bytes.substr(0, 40);
        xcb_destroy_window(client.xcb(), window);
        client.setActive(XCB_NONE);
    }
}

TEST_F(X11, aLongTitleIsNotCutInTheMiddleOfACharacter) {
    const X11TestClient client(display.name());
    client.manage();
    const auto window = client.create("alpha");
    std::string euros;
    for (int i = 0; i < 10'000; ++i)
        euros += "€";
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", euros);
    client.setActive(window);
    const auto title = readers->title(getpid());
    ASSERT_TRUE(title);
    EXPECT_EQ(*title, euros.substr(0, 16 * 1024 / 3 * 3));
}

TEST_F(X11, aChangedTitleIsReadAnew) {
    ASSERT_TRUE(display.startWindowManager());
    const X11TestClient client(display.name());
    const auto window = client.create("alpha");
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "before");
    client.map(window);
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    EXPECT_EQ(readers->title(getpid()), "before");
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "after");
    EXPECT_EQ(readers->title(getpid()), "after");
    client.remove(window, "_NET_WM_NAME");
    client.setText(window, "WM_NAME", "STRING", "old style");
    EXPECT_EQ(readers->title(getpid()), "old style");
}

TEST_F(X11, anUntitledActiveWindowGivesWayToTheFrontOneWithATitle) {
    const X11TestClient client(display.name());
    client.manage();
    const auto back = client.create("alpha");
    const auto middle = client.create("alpha");
    const auto front = client.create("alpha");
    client.setText(back, "_NET_WM_NAME", "UTF8_STRING", "back");
    client.setText(middle, "_NET_WM_NAME", "UTF8_STRING", "middle");
    client.setManaged({back, middle, front});
    client.setActive(front);
    EXPECT_EQ(readers->title(getpid()), "middle");
}

TEST_F(X11, aChangedClassChangesTheApplication) {
    const X11TestClient client(display.name());
    client.manage();
    const auto window = client.create("");
    client.setManaged({window});
    client.setActive(window);
    readers->front();
    readers->listen();
    client.setText(window, "WM_CLASS", "STRING", std::string("beta\0beta\0", 10));
    EXPECT_TRUE(comesTrue([&] { return readers->fronts() == std::vector<std::string>{"org.example.beta"}; }));
    EXPECT_TRUE(readers->isRunning("org.example.beta"));
}

TEST_F(X11, aGlanceAtAPanelOfThisProgramLeavesTheFrontAsItWas) {
    const X11TestClient client(display.name());
    client.manage();
    const auto window = client.create("alpha");
    const auto panel = client.create("kestrio-window");
    client.setManaged({window, panel});
    client.setActive(window);
    EXPECT_EQ(readers->frontID(), "org.example.alpha");
    // As the view framework names the types of such a window.
    client.setTypes(panel,
                    {"_NET_WM_WINDOW_TYPE_UTILITY", "_KDE_NET_WM_WINDOW_TYPE_OVERRIDE", "_NET_WM_WINDOW_TYPE_NORMAL"});
    client.setActive(panel);
    EXPECT_EQ(readers->frontID(), "org.example.alpha");
    client.setTypes(panel, {"_NET_WM_WINDOW_TYPE_NORMAL"});
    EXPECT_TRUE(comesTrue([&] { return readers->frontID() != "org.example.alpha"; })) << "the dashboard counts";
}

TEST_F(X11, onlyRegularWindowsMakeARunningApplication) {
    const X11TestClient client(display.name());
    client.manage();
    const struct {
        std::vector<std::string_view> types;
        const char* state;
        bool isRegular;
    } rows[] = {
        {{}, nullptr, true},
        {{"_NET_WM_WINDOW_TYPE_NORMAL"}, nullptr, true},
        {{"_NET_WM_WINDOW_TYPE_DIALOG"}, nullptr, true},
        {{"_NET_WM_WINDOW_TYPE_DOCK"}, nullptr, false},
        {{"_NET_WM_WINDOW_TYPE_DESKTOP"}, nullptr, false},
        {{"_NET_WM_WINDOW_TYPE_SPLASH"}, nullptr, false},
        {{"_NET_WM_WINDOW_TYPE_UTILITY", "_NET_WM_WINDOW_TYPE_NORMAL"}, nullptr, false},
        {{"_KDE_NET_WM_WINDOW_TYPE_OVERRIDE", "_NET_WM_WINDOW_TYPE_NORMAL"}, nullptr, true},
        {{"_KDE_NET_WM_WINDOW_TYPE_OVERRIDE", "_NET_WM_WINDOW_TYPE_UTILITY"}, nullptr, false},
        {{"_KDE_NET_WM_WINDOW_TYPE_OVERRIDE"}, nullptr, true},
        {{}, "_NET_WM_STATE_SKIP_TASKBAR", false},
        {{"_NET_WM_WINDOW_TYPE_NORMAL"}, "_NET_WM_STATE_HIDDEN", true},
    };
    for (const auto& row : rows) {
        const auto window = client.create("alpha");
        if (!row.types.empty())
            client.setTypes(window, row.types);
        if (row.state)
            client.setWord(window, "_NET_WM_STATE", XCB_ATOM_ATOM, client.atom(row.state));
        client.setManaged({window});
        EXPECT_EQ(readers->isRunning("org.example.alpha"), row.isRegular)
            << testing::PrintToString(row.types) << " " << (row.state ? row.state : "");
    }
}

TEST_F(X11, aProcessIsListedOnce) {
    const X11TestClient client(display.name());
    client.manage();
    client.setManaged({client.create("alpha"), client.create("alpha"), client.create("beta")});
    EXPECT_EQ(readers->running(), (std::vector{RunningApplication{"org.example.alpha", "The alpha", getpid()}}));
}

TEST_F(X11, theServersWordOnAProcessCountsAboveTheClients) {
    const X11TestClient client(display.name());
    client.manage();
    const auto window = client.create("alpha");
    client.setWord(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, 2);
    client.setText(window, "WM_CLIENT_MACHINE", "STRING", "somewhere-else");
    client.setActive(window);
    ASSERT_TRUE(readers->front());
    EXPECT_EQ(readers->front()->processIdentifier, getpid());
}

TEST_F(X11, aWindowThatIsGoneIsNotInFront) {
    const X11TestClient client(display.name());
    client.manage();
    client.setActive(0x00abcdef);
    EXPECT_EQ(readers->frontID(), "none");
    EXPECT_TRUE(readers->running().empty());
    client.setManaged({0x00abcdef, client.create("alpha")});
    EXPECT_TRUE(readers->isRunning("org.example.alpha"));
}

TEST_F(X11, aNewWindowWithTheNumberOfADeadOneComesToTheFront) {
    const X11TestClient client(display.name());
    client.manage(); // a manager that goes on naming the dead window, as some do for a while
    const auto window = client.create("alpha");
    client.setManaged({window});
    client.setActive(window);
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    xcb_destroy_window(client.xcb(), window);
    client.flush();
    client.setActive(window);
    ASSERT_TRUE(comesToFront("none"));
    client.create("beta", window);
    client.setActive(window);
    EXPECT_TRUE(comesToFront("org.example.beta"));
}

TEST_F(X11, aWindowThatWithdrewIsNotInFront) {
    ASSERT_TRUE(display.startWindowManager());
    const X11TestClient client(display.name());
    const auto window = client.create("alpha");
    client.map(window);
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    readers->listen();
    xcb_unmap_window(client.xcb(), window);
    client.flush();
    EXPECT_TRUE(comesToFront("none"));
    EXPECT_TRUE(comesTrue([&] { return readers->fronts() == std::vector<std::string>{"none"}; }));
    client.map(window);
    EXPECT_TRUE(comesToFront("org.example.alpha"));
}

TEST_F(X11, withoutAWindowManagerTheFocusDecides) {
    const X11TestClient client(display.name());
    EXPECT_EQ(readers->frontID(), "none");
    const auto window = client.create("alpha");
    const auto child = xcb_generate_id(client.xcb());
    xcb_create_window(client.xcb(), XCB_COPY_FROM_PARENT, child, window, 0, 0, 10, 10, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "lonely");
    xcb_map_window(client.xcb(), child);
    client.map(window);
    xcb_set_input_focus(client.xcb(), XCB_INPUT_FOCUS_PARENT, child, XCB_CURRENT_TIME);
    client.flush();
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    EXPECT_EQ(readers->title(getpid()), "lonely");
    EXPECT_TRUE(readers->running().empty());
    EXPECT_FALSE(readers->terminate({"nobody", {}, {}}));
    xcb_set_input_focus(client.xcb(), XCB_INPUT_FOCUS_NONE, XCB_INPUT_FOCUS_NONE, XCB_CURRENT_TIME);
    client.flush();
    EXPECT_TRUE(comesToFront("none"));
}

TEST_F(X11, aWindowManagerMayComeAndGo) {
    const X11TestClient client(display.name());
    const auto window = client.create("alpha");
    client.map(window);
    EXPECT_TRUE(readers->running().empty());
    ASSERT_TRUE(display.startWindowManager());
    EXPECT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
    display.killWindowManager();
    EXPECT_TRUE(comesTrue([&] { return readers->running().empty(); }));
    ASSERT_TRUE(display.startWindowManager());
    EXPECT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
}

TEST_F(X11, aStoppedServerIsAnEmptyAnswerUntilItGoesOn) {
    ASSERT_TRUE(display.startWindowManager());
    const X11TestClient client(display.name());
    const auto window = client.create("alpha");
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "before");
    client.map(window);
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    ASSERT_EQ(readers->title(getpid()), "before");
    ASSERT_TRUE(readers->isRunning("org.example.alpha"));
    display.stop();
    EXPECT_EQ(readers->idle(), std::nullopt);
    // Each costing 0.4 s would run this test into its limit.
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(readers->front(), std::nullopt);
        EXPECT_TRUE(readers->running().empty());
        EXPECT_EQ(readers->title(getpid()), std::nullopt);
        EXPECT_EQ(readers->idle(), std::nullopt);
    }
    EXPECT_TRUE(readers->isGranted());
    display.continueOn();
    EXPECT_TRUE(comesToFront("org.example.alpha"));
    EXPECT_TRUE(readers->idle());
    EXPECT_EQ(readers->title(getpid()), "before");
    EXPECT_TRUE(readers->isRunning("org.example.alpha"));
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "after");
    EXPECT_EQ(readers->title(getpid()), "after");
}

TEST_F(X11, silenceIsNotRememberedAsAnAnswer) {
    ASSERT_TRUE(display.startWindowManager());
    const auto alpha = application("alpha");
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    readers->listen();
    display.stop();
    EXPECT_EQ(readers->idle(), std::nullopt); // what needs an answer shows the silence
    EXPECT_TRUE(readers->running().empty());
    EXPECT_EQ(readers->front(), std::nullopt);
    display.continueOn();
    EXPECT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
    EXPECT_EQ(readers->frontID(), "org.example.alpha");
    EXPECT_EQ(readers->count(WorkspaceNotice::terminated), 0);
    EXPECT_TRUE(readers->fronts().empty());
}

TEST_F(X11, aServerThatNeverAnswersDoesNotHoldUpTheFirstQuestion) {
    display.stop();
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(readers->front(), std::nullopt);
    EXPECT_FALSE(readers->isGranted());
    display.continueOn();
    EXPECT_TRUE(comesTrue([&] { return readers->idle().has_value(); }));
}

TEST_F(X11, aServerThatDiedAndCameBackIsReadAgain) {
    ASSERT_TRUE(display.startWindowManager());
    readers->listen();
    auto alpha = application("alpha");
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    ASSERT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
    display.kill();
    EXPECT_TRUE(comesTrue([&] { return readers->front() == std::nullopt; }));
    EXPECT_TRUE(readers->running().empty());
    EXPECT_EQ(readers->title(alpha.process()), std::nullopt);
    EXPECT_EQ(readers->idle(), std::nullopt);
    readers->clock.hurry(6);
    EXPECT_FALSE(readers->isGranted());
    EXPECT_TRUE(comesTrue([&] { return readers->count(WorkspaceNotice::terminated) == 1; }));
    ASSERT_TRUE(display.restart());
    ASSERT_TRUE(display.startWindowManager());
    EXPECT_FALSE(readers->isGranted()) << "tried again too soon";
    readers->clock.hurry(6);
    const auto beta = application("beta");
    EXPECT_TRUE(comesToFront("org.example.beta"));
    EXPECT_TRUE(readers->isGranted());
    EXPECT_TRUE(readers->idle());
    EXPECT_TRUE(
        comesTrue([&] { return !readers->fronts().empty() && readers->fronts().back() == "org.example.beta"; }));
}

TEST_F(X11, withoutADisplayEveryAnswerIsEmpty) {
    for (const std::string name : {"", ":4711", "no such thing", "[::1]:nonsense"}) {
        Readers absent(name, folder.path());
        EXPECT_EQ(absent.front(), std::nullopt);
        EXPECT_TRUE(absent.running().empty());
        EXPECT_EQ(absent.title(getpid()), std::nullopt);
        EXPECT_EQ(absent.idle(), std::nullopt);
        EXPECT_FALSE(absent.isGranted());
        EXPECT_FALSE(absent.terminate({"x", {}, {}}));
    }
}

TEST_F(X11, idleTimeGrowsUntilInputComes) {
    const X11TestClient client(display.name());
    const auto touch = [&] {
        xcb_test_fake_input(client.xcb(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, client.root(), 30, 40, 0);
        xcb_test_fake_input(client.xcb(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, client.root(), 31, 41, 0);
        client.flush();
    };
    touch();
    EXPECT_TRUE(comesTrue([&] { return readers->idle() > Seconds(0.3); }));
    const auto before = readers->idle();
    touch();
    EXPECT_LT(readers->idle(), before);
}

TEST_F(X11, anApplicationIsAskedToCloseItsWindows) {
    ASSERT_TRUE(display.startWindowManager());
    auto alpha = application("alpha");
    ASSERT_TRUE(comesToFront("org.example.alpha"));
    ASSERT_TRUE(comesTrue([&] { return readers->isRunning("org.example.alpha"); }));
    EXPECT_TRUE(readers->terminate(*readers->front()));
    EXPECT_TRUE(comesTrue([&] { return !alpha.isRunning(); }));
}

TEST_F(X11, aProcessThatOutlivesItsWindowsIsEndedAndOneThatRefusesIsNot) {
    ASSERT_TRUE(display.startWindowManager());
    auto staying = application("alpha", "stays");
    auto refusing = application("beta", "refuses");
    ASSERT_TRUE(
        comesTrue([&] { return readers->isRunning("org.example.alpha") && readers->isRunning("org.example.beta"); }));
    EXPECT_TRUE(readers->terminate({"org.example.beta", {}, refusing.process()}));
    EXPECT_TRUE(readers->terminate({"org.example.alpha", {}, staying.process()}));
    EXPECT_TRUE(comesTrue([&] { return !readers->isRunning("org.example.alpha"); }));
    EXPECT_TRUE(comesTrue([&] { return !staying.isRunning(); }));
    EXPECT_TRUE(refusing.isRunning());
    EXPECT_TRUE(readers->isRunning("org.example.beta"));
}

TEST(DetachedProgram, runsOnItsOwnAndLeavesNothingToWaitFor) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "a file";
    ASSERT_TRUE(startDetached({"touch", file}));
    EXPECT_TRUE(comesTrue([&] { return std::filesystem::exists(file); }));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(DetachedProgram, findsItsEnvironmentChanged) {
    const TemporaryFolder folder;
    const auto file = (folder.path() / "environment").string();
    setenv("KESTRIO_TEST_KEPT", "kept", 1);
    setenv("KESTRIO_TEST_GONE", "still here", 1);
    const EnvironmentChanges changes{{"KESTRIO_TEST_GONE", std::nullopt}, {"KESTRIO_TEST_NEW", "a value"}};
    const auto script = R"(echo "$KESTRIO_TEST_KEPT, ${KESTRIO_TEST_GONE-gone}, $KESTRIO_TEST_NEW" > "$1")";
    ASSERT_TRUE(startDetached({"sh", "-c", script, "sh", file}, changes));
    EXPECT_TRUE(comesTrue([&] { return std::filesystem::exists(file) && !fileText(file).empty(); }));
    EXPECT_EQ(fileText(file), "kept, gone, a value\n");
    unsetenv("KESTRIO_TEST_KEPT");
    unsetenv("KESTRIO_TEST_GONE");
}

TEST(DetachedProgram, thatCannotBeStartedIsSaid) {
    const TemporaryFolder folder;
    const auto data = folder.write("data", "no program");
    std::filesystem::permissions(data, std::filesystem::perms::owner_all);
    EXPECT_FALSE(startDetached({"no-such-program-anywhere"}));
    EXPECT_FALSE(startDetached({"/nowhere/program"}));
    EXPECT_FALSE(startDetached({data}));
}

} // namespace
} // namespace kestrio
