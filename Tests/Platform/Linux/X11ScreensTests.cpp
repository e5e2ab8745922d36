#include "Kestrio/Activity/ScreenInspector.h"
#include "Kestrio/Platform/Linux/X11SaverSuspensions.h"
#include "Kestrio/Platform/Linux/X11Screens.h"
#include "Tests/Platform/Linux/X11TestClient.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/VirtualDisplay.h"

#include <gtest/gtest.h>
#include <ostream>
#include <unistd.h>
#include <xcb/screensaver.h>

namespace kestrio {

void PrintTo(const Rectangle& rectangle, std::ostream* out) {
    *out << rectangle.width << 'x' << rectangle.height << '+' << rectangle.x << '+' << rectangle.y;
}

void PrintTo(const StackedWindow& window, std::ostream* out) {
    PrintTo(window.bounds, out);
    *out << " of " << window.process.value_or(0) << " alpha " << window.alpha << " layer " << window.layer;
}

namespace {

using Bounds = std::vector<Rectangle>;

struct X11ScreensTest : testing::Test {
    /// Made anywhere, used and dropped on the queue.
    struct Readers {
        Readers(LoopQueue& queue, const Clock& clock, const std::string& display)
            : connection(queue, clock, display), windows(connection), screens(connection, windows) {}

        X11Connection connection;
        X11Windows windows;
        X11Screens screens;
    };

    const SystemClock clock{};
    VirtualDisplay display;
    WorkerQueue queue{"x11"};
    std::unique_ptr<Readers> readers = std::make_unique<Readers>(queue, clock, display.name());
    X11TestClient client{display.name()};

    ~X11ScreensTest() override {
        queue.sync([this] { readers.reset(); });
    }

    ScreenLayout layout() {
        return queue.sync([this] { return readers->screens.layout(); });
    }
    Bounds bounds() {
        Bounds result;
        for (const auto& window : layout().windows)
            result.push_back(window.bounds);
        return result;
    }
    std::vector<pid_t> suspending() {
        return queue.sync([this] { return saverSuspendingProcesses(readers->connection); });
    }

    /// A window without a frame, so that it is where it is put.
    xcb_window_t show(
        const Rectangle& place, const std::function<void(xcb_window_t)>& prepare = [](xcb_window_t) {}) {
        const auto window = client.create("alpha");
        const std::uint32_t plain[] = {2, 0, 0, 0, 0};
        xcb_change_property(client.xcb(), XCB_PROP_MODE_REPLACE, window, client.atom("_MOTIF_WM_HINTS"),
                            client.atom("_MOTIF_WM_HINTS"), 32, 5, plain);
        // Flags of WM_NORMAL_HINTS: the person chose position and size.
        const std::uint32_t chosen[18] = {1 | 2};
        xcb_change_property(client.xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                            XCB_ATOM_WM_SIZE_HINTS, 32, 18, chosen);
        const std::uint32_t values[] = {static_cast<std::uint32_t>(static_cast<std::int32_t>(place.x)),
                                        static_cast<std::uint32_t>(static_cast<std::int32_t>(place.y)),
                                        static_cast<std::uint32_t>(place.width),
                                        static_cast<std::uint32_t>(place.height)};
        xcb_configure_window(
            client.xcb(), window,
            XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
        prepare(window);
        client.map(window);
        return window;
    }
    void setWords(xcb_window_t window, const char* name, xcb_atom_t type,
                  const std::vector<std::uint32_t>& words) const {
        xcb_change_property(client.xcb(), XCB_PROP_MODE_REPLACE, window, client.atom(name), type, 32,
                            static_cast<std::uint32_t>(words.size()), words.data());
        client.flush();
    }
    void tell(xcb_window_t window, const char* name, std::uint32_t first, std::uint32_t second = 0) const {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = client.atom(name);
        message.data.data32[0] = first;
        message.data.data32[1] = second;
        xcb_send_event(client.xcb(), 0, client.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        client.flush();
    }
    bool comeToBe(const Bounds& wanted) {
        const bool right = eventually([&] { return bounds() == wanted; });
        EXPECT_EQ(bounds(), wanted);
        return right;
    }
    /// One after the other, since the monitors are listed in the order of their making.
    bool splitInTwo() {
        const auto one = display.start({"xrandr", "--setmonitor", "left", "640/200x800/200+0+0", "screen"});
        const bool isHalf = eventually([&] { return layout().displays == Bounds{{0, 0, 640, 800}}; });
        const auto two = display.start({"xrandr", "--setmonitor", "right", "640/200x800/200+640+0", "none"});
        return isHalf && eventually([&] { return layout().displays.size() == 2; });
    }
};

TEST_F(X11ScreensTest, oneMonitorIsOneDisplay) {
    EXPECT_EQ(layout().displays, (Bounds{{0, 0, 1280, 800}}));
}

TEST_F(X11ScreensTest, twoMonitorsAreTwoDisplays) {
    ASSERT_TRUE(splitInTwo());
    EXPECT_EQ(layout().displays, (Bounds{{0, 0, 640, 800}, {640, 0, 640, 800}}));
}

TEST_F(X11ScreensTest, withoutAWindowManagerThereAreNoWindows) {
    show({10, 10, 400, 300});
    EXPECT_TRUE(layout().windows.empty());
    EXPECT_EQ(layout().displays.size(), 1U);
}

TEST_F(X11ScreensTest, windowsAreListedFrontToBackWithTheirProcess) {
    ASSERT_TRUE(display.startWindowManager());
    const auto one = show({10, 10, 400, 300});
    ASSERT_TRUE(comeToBe({{10, 10, 400, 300}}));
    show({600, 50, 300, 200});
    ASSERT_TRUE(comeToBe({{600, 50, 300, 200}, {10, 10, 400, 300}}));
    client.activate(one);
    ASSERT_TRUE(comeToBe({{10, 10, 400, 300}, {600, 50, 300, 200}}));
    const auto windows = layout().windows;
    EXPECT_EQ(windows[0], (StackedWindow{getpid(), {10, 10, 400, 300}, 1, 0}));
}

TEST_F(X11ScreensTest, whatIsNotToBeSeenIsLeftOut) {
    ASSERT_TRUE(display.startWindowManager());
    const Rectangle other{600, 50, 300, 200};
    show(other);
    const auto window = show({10, 10, 400, 300});
    ASSERT_TRUE(comeToBe({{10, 10, 400, 300}, other}));
    tell(window, "WM_CHANGE_STATE", 3); // minimised
    EXPECT_TRUE(comeToBe({other}));
    client.activate(window);
    EXPECT_TRUE(comeToBe({{10, 10, 400, 300}, other}));
    tell(window, "_NET_WM_DESKTOP", 1);
    EXPECT_TRUE(comeToBe({other})) << "on another desktop";
    tell(window, "_NET_WM_DESKTOP", 0xFFFFFFFF);
    EXPECT_TRUE(comeToBe({{10, 10, 400, 300}, other})) << "on all desktops";
    tell(client.root(), "_NET_CURRENT_DESKTOP", 1);
    EXPECT_TRUE(comeToBe({{10, 10, 400, 300}}));
}

TEST_F(X11ScreensTest, panelsAndTheDesktopItselfAreLeftOut) {
    ASSERT_TRUE(display.startWindowManager());
    const auto withType = [this](const char* type) {
        return [this, type](xcb_window_t window) {
            client.setWord(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, client.atom(type));
        };
    };
    show({0, 0, 1280, 300}, withType("_NET_WM_WINDOW_TYPE_DOCK"));
    show({0, 0, 1280, 800}, withType("_NET_WM_WINDOW_TYPE_DESKTOP"));
    show({10, 310, 400, 300}, withType("_NET_WM_WINDOW_TYPE_DIALOG"));
    ASSERT_TRUE(comeToBe({{10, 310, 400, 300}}));
    EXPECT_EQ(layout().windows[0].layer, 0);
}

TEST_F(X11ScreensTest, onlyNormalWindowsAndDialogsAreInTheNormalLayer) {
    const struct {
        const char* type;
        int layer;
    } rows[] = {
        {"_NET_WM_WINDOW_TYPE_NORMAL", 0}, {"_NET_WM_WINDOW_TYPE_DIALOG", 0}, {"_NET_WM_WINDOW_TYPE_UTILITY", 1},
        {"_NET_WM_WINDOW_TYPE_SPLASH", 1}, {"_NET_WM_WINDOW_TYPE_MENU", 1},   {"_NET_WM_WINDOW_TYPE_NOTIFICATION", 1},
    };
    client.manage();
    const auto window = show({10, 10, 400, 300});
    client.setManaged({window});
    ASSERT_TRUE(comeToBe({{10, 10, 400, 300}}));
    EXPECT_EQ(layout().windows[0].layer, 0) << "without a type";
    for (const auto& row : rows) {
        client.setTypes(window, {row.type, "_NET_WM_WINDOW_TYPE_NORMAL"});
        EXPECT_EQ(layout().windows[0].layer, row.layer) << row.type;
    }
}

TEST_F(X11ScreensTest, shadowsAreNoPartOfAWindow) {
    client.manage();
    const auto window = show({100, 100, 400, 300});
    client.setManaged({window});
    setWords(window, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {26, 24, 23, 29});
    EXPECT_EQ(bounds(), (Bounds{{126, 123, 350, 248}}));
    setWords(window, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {26, 24});
    EXPECT_EQ(bounds(), (Bounds{{100, 100, 400, 300}})) << "a broken property";
}

TEST_F(X11ScreensTest, opacityIsTheShareOfItsLargestNumber) {
    client.manage();
    const auto window = show({100, 100, 400, 300});
    client.setManaged({window});
    const struct {
        std::uint32_t opacity;
        double alpha;
    } rows[] = {{0, 0}, {0xFFFFFFFF, 1}, {0x7FFFFFFF, 0.5}};
    for (const auto& row : rows) {
        client.setWord(window, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, row.opacity);
        EXPECT_NEAR(layout().windows[0].alpha, row.alpha, 1e-6);
    }
}

TEST_F(X11ScreensTest, windowsThatAreGoneAreLeftOut) {
    client.manage();
    const auto window = show({100, 100, 400, 300});
    const auto gone = client.create("alpha");
    client.setManaged({gone, window});
    xcb_destroy_window(client.xcb(), gone);
    client.flush();
    EXPECT_EQ(bounds(), (Bounds{{100, 100, 400, 300}}));
}

TEST_F(X11ScreensTest, withTwoDisplaysEachHasItsFrontWindow) {
    ASSERT_TRUE(display.startWindowManager());
    ASSERT_TRUE(splitInTwo());
    show({20, 20, 400, 300});
    ASSERT_TRUE(comeToBe({{20, 20, 400, 300}}));
    show({40, 40, 400, 300});
    ASSERT_TRUE(eventually([&] { return bounds().size() == 2; }));
    show({700, 20, 400, 300});
    ASSERT_TRUE(comeToBe({{700, 20, 400, 300}, {40, 40, 400, 300}, {20, 20, 400, 300}}));
    EXPECT_EQ(ScreenInspector::visibleWindows(layout()),
              (std::vector<ScreenWindow>{{getpid(), {700, 20, 400, 300}, true},
                                         {getpid(), {40, 40, 400, 300}, true},
                                         {getpid(), {20, 20, 400, 300}, false}}));
}

TEST_F(X11ScreensTest, aServerThatIsGoneOrDoesNotAnswerShowsNothing) {
    ASSERT_TRUE(display.startWindowManager());
    show({20, 20, 400, 300});
    ASSERT_TRUE(comeToBe({{20, 20, 400, 300}}));
    display.stop();
    EXPECT_EQ(layout(), ScreenLayout());
    EXPECT_TRUE(suspending().empty());
    display.continueOn();
    EXPECT_TRUE(eventually([&] { return bounds().size() == 1; }));
    display.kill();
    EXPECT_TRUE(eventually([&] { return layout() == ScreenLayout(); }));
    EXPECT_TRUE(suspending().empty());
}

TEST(X11Screens, withoutADisplayThereIsNothing) {
    const SystemClock clock{};
    WorkerQueue queue("x11");
    auto connection = std::make_unique<X11Connection>(queue, clock, "");
    X11Windows windows(*connection);
    X11Screens screens(*connection, windows);
    EXPECT_EQ(queue.sync([&] { return screens.layout(); }), ScreenLayout());
    EXPECT_TRUE(queue.sync([&] { return saverSuspendingProcesses(*connection); }).empty());
}

TEST_F(X11ScreensTest, whoeverSuspendsTheScreenSaverIsFoundUntilItStopsOrEnds) {
    EXPECT_TRUE(suspending().empty());
    xcb_screensaver_suspend(client.xcb(), 1);
    client.flush();
    EXPECT_EQ(suspending(), std::vector<pid_t>{getpid()});
    xcb_screensaver_suspend(client.xcb(), 0);
    client.flush();
    EXPECT_TRUE(suspending().empty());
    {
        const X11TestClient other(display.name());
        xcb_screensaver_suspend(other.xcb(), 1);
        other.flush();
        EXPECT_EQ(suspending().size(), 1U);
    }
    EXPECT_TRUE(eventually([&] { return suspending().empty(); }));
}

} // namespace
} // namespace kestrio
