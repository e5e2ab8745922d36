#include "Kestrio/Platform/Linux/AccessibilityBrowserReader.h"
#include "Tests/Platform/Linux/MockAccessibility.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"

#include <atomic>
#include <gtest/gtest.h>
#include <optional>
#include <unistd.h>

namespace kestrio {
namespace {

const std::string chromium = "org.chromium.Chromium";
const std::string firefox = "org.mozilla.firefox";
const std::string privateTab = "about:private\x1F\x1Fincognito";

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

MockBrowser::Frame page(int number) {
    MockBrowser::Frame frame;
    frame.title = "Page " + std::to_string(number);
    frame.name = frame.title + " - Chromium";
    frame.address = "http://pages.test/" + std::to_string(number);
    return frame;
}

std::string tabOf(int number) {
    return "http://pages.test/" + std::to_string(number) + "\x1FPage " + std::to_string(number) + "\x1Fnormal";
}

MockBrowser::Frame incognito(int number) {
    auto frame = page(number);
    frame.name += " (Incognito)";
    return frame;
}

/// An accessibility bus with one browser on it, and a reader on a queue of its own.
struct AccessibilityBrowserReaderTest : testing::Test {
    PrivateBus session;
    std::optional<PrivateBus> bus{std::in_place};
    TemporaryFolder runtime;
    MockAccessibilityLauncher launcher{session.address(), bus->address(), true};
    std::optional<MockAccessibilityRegistry> registry{std::in_place, bus->address()};
    std::optional<MockBrowser> browser;
    HurriedClock clock;
    std::string id = chromium;
    std::optional<std::vector<TitledWindow>> windows; // none by default, as where no window system tells
    std::atomic<int> settled = 0;
    WorkerQueue queue{"browsers"};
    std::unique_ptr<AccessibilityBrowserReader> reader;

    AccessibilityBrowserReaderTest() {
        queue.sync([this] {
            reader = std::make_unique<AccessibilityBrowserReader>(
                queue, clock, AccessibilityBrowserReader::Places{session.address(), runtime.path()},
                [this](pid_t process) { return process == getpid() ? std::optional(id) : std::nullopt; },
                [this](const std::string&) { return windows; }, [this] { ++settled; });
        });
    }
    ~AccessibilityBrowserReaderTest() override {
        queue.sync([this] { reader.reset(); });
    }

    void show(std::vector<MockBrowser::Frame> frames) {
        browser.emplace(bus->address(), "dev.test.Browser",
                        MockBrowser::Script{"Chromium", "Chromium", std::move(frames)});
        registry->list({"dev.test.Browser"});
    }
    void showFirefox(std::vector<MockBrowser::Frame> frames) {
        id = firefox;
        for (auto& frame : frames)
            if (const auto end = frame.name.find(" - Chromium"); end != std::string::npos)
                frame.name = frame.name.substr(0, end) + " — Mozilla Firefox";
        show(std::move(frames));
        browser->change([](MockBrowser::Script& script) {
            script.name = "Firefox";
            script.toolkit = "Gecko";
        });
    }
    void edit(std::size_t frame, const std::function<void(MockBrowser::Frame&)>& change) {
        browser->change([&](MockBrowser::Script& script) { change(script.frames.at(frame)); });
    }
    std::string front() {
        return std::get<std::string>(queue.sync([this] { return reader->frontTab(id); }));
    }
    std::string allWindows() {
        return std::get<std::string>(queue.sync([this] { return reader->windows(id); }));
    }
    bool knowsPrivacy() {
        return queue.sync([this] { return reader->knowsPrivacy(id); });
    }
    bool isReadable() {
        return queue.sync([this] { return reader->isReadable(id); });
    }
};

TEST_F(AccessibilityBrowserReaderTest, theFrontTabIsThePageInTheFrame) {
    show({page(1)});
    EXPECT_FALSE(isReadable());
    EXPECT_EQ(front(), tabOf(1));
    EXPECT_TRUE(isReadable());
}

TEST_F(AccessibilityBrowserReaderTest, firefoxCallsTheAddressByAnotherName) {
    showFirefox({page(1)});
    EXPECT_EQ(front(), tabOf(1));
}

TEST_F(AccessibilityBrowserReaderTest, aPageThatFirefoxBroughtBackIsFoundInThePaneOfItsTab) {
    showFirefox({page(1)});
    edit(0, [](auto& frame) { frame.isRestored = true; });
    EXPECT_EQ(front(), tabOf(1));
}

TEST_F(AccessibilityBrowserReaderTest, aBrowserThatOnlyLooksAtTheFirstQuestionIsAskedAgain) {
    show({page(1)});
    edit(0, [](auto& frame) { frame.unprimed = 1; });
    EXPECT_EQ(front(), tabOf(1));
}

TEST_F(AccessibilityBrowserReaderTest, anAddressThatComesLateIsWaitedFor) {
    show({page(1)});
    edit(0, [](auto& frame) { frame.lateAddress = 1; });
    EXPECT_EQ(front(), tabOf(1));
}

TEST_F(AccessibilityBrowserReaderTest, aPageThatNeverComesIsNoPageAndNotWaitedForAgain) {
    show({page(1)});
    edit(0, [](auto& frame) { frame.hasDocument = false; });
    EXPECT_EQ(front(), "");
    EXPECT_FALSE(isReadable());
    const auto asked = browser->documentQuestions();
    EXPECT_EQ(front(), "");
    EXPECT_EQ(browser->documentQuestions() - asked, 2) << "one to prime and one to read";
}

TEST_F(AccessibilityBrowserReaderTest, aPageThatDidNotChangeIsReadOnce) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    const auto asked = browser->documentQuestions();
    EXPECT_EQ(front(), tabOf(1));
    EXPECT_EQ(browser->documentQuestions() - asked, 1);
}

TEST_F(AccessibilityBrowserReaderTest, titleAndAddressOfTwoPagesAreNeverAnsweredTogether) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    for (const bool titleFirst : {true, false}) {
        const int next = titleFirst ? 2 : 1;
        const auto to = page(next);
        const auto early = [&](auto& frame) {
            (titleFirst ? frame.title : frame.address) = titleFirst ? to.title : to.address;
        };
        edit(0, early);
        const auto changed = clock.uptime();
        while (clock.uptime() - changed < Seconds(0.15)) // as long as browsers were seen to do it, and a little less
            EXPECT_EQ(front(), tabOf(3 - next));
        edit(0, [&](auto& frame) { frame = to; });
        EXPECT_TRUE(eventually([&] {
            const auto answer = front();
            EXPECT_TRUE(answer == tabOf(1) || answer == tabOf(2)) << answer;
            return answer == tabOf(next);
        }));
    }
}

TEST_F(AccessibilityBrowserReaderTest, aWatchedPageThatChangedIsTheOldOneUntilItIsToldThatTheNewOneIsCertain) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    edit(0, [](auto& frame) { frame = page(2); });
    EXPECT_EQ(front(), tabOf(1));
    EXPECT_TRUE(eventually([&] { return settled == 1; }));
    EXPECT_EQ(front(), tabOf(2));
}

TEST_F(AccessibilityBrowserReaderTest, aPageThatChangedWhileNobodyWatchedIsWaitedFor) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    edit(0, [](auto& frame) { frame = page(2); });
    clock.hurry(60);
    EXPECT_EQ(front(), tabOf(2));
    EXPECT_EQ(settled, 0);
}

TEST_F(AccessibilityBrowserReaderTest, theFrontFrameIsThatOfTheFrontWindow) {
    show({page(1), page(2)});
    edit(0, [](auto& frame) { frame.isActive = true; }); // belated, as the window system says
    windows = {{{2, getpid(), "Page 2 - Chromium", {}, {}, true}, {1, getpid(), "Page 1 - Chromium", {}, {}, false}}};
    EXPECT_EQ(front(), tabOf(2));
    std::swap(windows->front(), windows->back());
    EXPECT_EQ(front(), tabOf(1));
    windows.reset();
    edit(0, [](auto& frame) { frame.isActive = false; });
    edit(1, [](auto& frame) { frame.isActive = true; });
    EXPECT_EQ(front(), tabOf(2)) << "without a window system the active one";
    edit(1, [](auto& frame) { frame.isActive = false; });
    EXPECT_EQ(front(), "") << "no guess among two";
}

TEST_F(AccessibilityBrowserReaderTest, ofFramesOfOneNameTheActiveOneOrTheOneInItsPlaceIsTheWindow) {
    show({page(1), page(1)});
    edit(1, [](auto& frame) {
        frame.address = "http://pages.test/other";
        frame.extents = {100, 50, 640, 480};
    });
    const std::string other = "http://pages.test/other\x1FPage 1\x1Fnormal";
    windows = {{{1, getpid(), "Page 1 - Chromium", {100, 50, 640, 480}, {}, true},
                {2, getpid(), "Page 1 - Chromium", {0, 0, 800, 600}, {}, false}}};
    EXPECT_EQ(front(), other) << "in its place";
    windows->front().bounds = {1, 2, 3, 4};
    windows->front().extents = {100, 50, 640, 480};
    EXPECT_EQ(front(), other) << "in its place with its shadow";
    windows->front().extents = {};
    edit(0, [](auto& frame) { frame.isActive = true; });
    EXPECT_EQ(front(), tabOf(1)) << "active";
    edit(0, [](auto& frame) { frame.isActive = false; });
    EXPECT_EQ(front(), "") << "no guess";
}

TEST_F(AccessibilityBrowserReaderTest, ofAPrivateWindowNothingButTheModeIsAnswered) {
    show({incognito(1)});
    EXPECT_EQ(front(), privateTab);
    windows = {{{1, getpid(), "Page 1 - Chromium", {10, 20, 30, 40}, {}, true}}};
    EXPECT_EQ(front(), privateTab);
    EXPECT_EQ(allWindows(), "10\x1F"
                            "20\x1F"
                            "40\x1F"
                            "60\x1Fincognito\x1F"
                            "about:private\x1F\x1F"
                            "about:private\x1F");
}

TEST_F(AccessibilityBrowserReaderTest, aPrivateWindowOfFirefoxIsKnownByItsNameOrByItsButton) {
    showFirefox({page(1), page(2), page(3)});
    edit(0, [](auto& frame) { frame.name = "Page 1 — Mozilla Firefox Privater Modus"; });
    edit(1, [](auto& frame) { frame.hasPrivateButton = true; });
    for (std::size_t active = 0; active < 3; ++active) {
        for (std::size_t each = 0; each < 3; ++each)
            edit(each, [&](auto& frame) { frame.isActive = each == active; });
        EXPECT_EQ(front(), active == 2 ? tabOf(3) : privateTab) << active;
    }
}

TEST_F(AccessibilityBrowserReaderTest, whereAPrivateWindowMayBeMeantTheAnswerIsPrivate) {
    show({page(1), incognito(1)});
    windows = {{{1, getpid(), "Page 1 - Chromium", {}, {}, true}, {2, getpid(), "Page 1 - Chromium", {}, {}, false}}};
    EXPECT_EQ(front(), privateTab) << "two windows of one name";
    windows = {{{1, getpid(), "Something else", {}, {}, true}, {2, getpid(), "Page 1 - Chromium", {}, {}, false}}};
    EXPECT_EQ(front(), privateTab) << "a name that no frame has";
    windows.reset();
    EXPECT_EQ(front(), privateTab) << "no window system, and no active frame";
}

TEST_F(AccessibilityBrowserReaderTest, aWindowThatWasOnceCertainStaysTheSameFrame) {
    show({page(1), incognito(2)});
    windows = {{{1, getpid(), "Page 1 - Chromium", {}, {}, true}, {2, getpid(), "Page 2 - Chromium", {}, {}, false}}};
    ASSERT_EQ(front(), tabOf(1));
    std::swap(windows->front(), windows->back());
    ASSERT_EQ(front(), privateTab);
    edit(1, [](auto& frame) { frame = incognito(1); });
    windows->front().title = "Page 1 - Chromium";
    EXPECT_EQ(front(), privateTab);
    std::swap(windows->front(), windows->back());
    EXPECT_EQ(front(), tabOf(1));
}

TEST_F(AccessibilityBrowserReaderTest, allWindowsAreAnsweredFrontToBackWithTheirTabs) {
    show({page(1), page(2)});
    edit(0, [](auto& frame) { frame.tabs = {{"Page 1", true}, {"Page 3 - Audio playing", false}}; });
    edit(1, [](auto& frame) { frame.tabs = {{"Page 2", true}}; });
    windows = {{{2, getpid(), "Page 2 - Chromium", {0, 0, 640, 480}, {}, true},
                {1, getpid(), "Page 1 - Chromium", {10.5, 20, 30, 40}, {}, false}}};
    const auto text = [](const std::string& thirdAddress, const std::string& thirdTitle) {
        return "0\x1F"
               "0\x1F"
               "640\x1F"
               "480\x1Fnormal\x1Fhttp://pages.test/2\x1FPage 2\x1Fhttp://pages.test/2\x1FPage 2"
               "\x1E"
               "10.5\x1F"
               "20\x1F"
               "40.5\x1F"
               "60\x1Fnormal\x1Fhttp://pages.test/1\x1FPage 1\x1Fhttp://pages.test/1\x1D" +
               thirdAddress + "\x1FPage 1\x1D" + thirdTitle;
    };
    EXPECT_EQ(allWindows(), text("", "Page 3 - Audio playing")) << "a tab that was never in front has no address";
    clock.hurry(60);
    edit(0, [](auto& frame) { frame = page(3); });
    windows->back().title = "Page 3 - Chromium";
    allWindows();
    clock.hurry(60);
    edit(0, [](auto& frame) {
        frame = page(1);
        frame.tabs = {{"Page 1", true}, {"Page 3 - Audio playing", false}};
    });
    EXPECT_EQ(allWindows(), text("http://pages.test/3", "Page 3")) << "one that was seen has";
}

TEST_F(AccessibilityBrowserReaderTest, aCoveredWindowIsToldByItsTabsAndAnUnreadableOneIsLeftOut) {
    show({page(1), page(2)});
    edit(0, [](auto& frame) {
        frame.hasDocument = false;
        frame.tabs = {{"Page 1", true}};
    });
    edit(1, [](auto& frame) { frame.hasDocument = false; });
    windows = {{{1, getpid(), "Page 1 - Chromium", {}, {}, true}, {2, getpid(), "Page 2 - Chromium", {}, {}, false}}};
    EXPECT_EQ(allWindows(), "0\x1F"
                            "0\x1F"
                            "0\x1F"
                            "0\x1Fnormal\x1F\x1FPage 1\x1F\x1FPage 1");
}

TEST_F(AccessibilityBrowserReaderTest, windowsThatChangedAreReadAgainBeforeTheyAreBelieved) {
    show({page(1)});
    const auto first = allWindows();
    EXPECT_NE(first.find("http://pages.test/1\x1FPage 1"), std::string::npos) << first;
}

TEST_F(AccessibilityBrowserReaderTest, aStoppedBrowserIsLeftAloneUntilItAnswersAgain) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    browser->pause(true);
    EXPECT_EQ(front(), "");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(front(), "");
    EXPECT_EQ(allWindows(), "");
    const auto asked = browser->documentQuestions();
    browser->pause(false);
    EXPECT_TRUE(eventually([&] { return front() == tabOf(1); }));
    EXPECT_LE(browser->documentQuestions() - asked, 3) << "nothing was left lying but one question";
}

TEST_F(AccessibilityBrowserReaderTest, aPrivateWindowOfAStoppedBrowserIsPrivateStill) {
    show({incognito(1)});
    windows = {{{1, getpid(), "Page 1 - Chromium", {}, {}, true}}};
    ASSERT_EQ(front(), privateTab);
    browser->pause(true);
    EXPECT_EQ(front(), privateTab);
    EXPECT_EQ(front(), privateTab);
    browser->pause(false);
}

TEST_F(AccessibilityBrowserReaderTest, anEmptyAnswerSaysWhetherTheWindowIsKnownToBeOrdinary) {
    EXPECT_FALSE(knowsPrivacy());
    show({page(1)});
    windows = {{{1, getpid(), "Page 1 - Chromium", {}, {}, true}}};
    edit(0, [](auto& frame) { frame.hasDocument = false; });
    EXPECT_EQ(front(), "");
    EXPECT_TRUE(knowsPrivacy()) << "by the frame's name, though it has no page";
    browser->pause(true);
    EXPECT_EQ(front(), "");
    EXPECT_TRUE(knowsPrivacy()) << "as before it was stopped";
    windows->front().id = 2;
    EXPECT_EQ(front(), "");
    EXPECT_FALSE(knowsPrivacy()) << "another window, and nobody to ask";
    browser->pause(false);
    registry->list({});
    EXPECT_EQ(front(), "");
    EXPECT_FALSE(knowsPrivacy()) << "it is gone";
}

TEST_F(AccessibilityBrowserReaderTest, aNewWindowWithTheNumberOfAPrivateOneIsLookedAtAnew) {
    show({incognito(1)});
    windows = {{{1, getpid(), "Page 1 - Chromium", {}, {}, true}}};
    ASSERT_EQ(front(), privateTab);
    edit(0, [](auto& frame) { frame = page(2); });
    windows->front().title = "Page 2 - Chromium";
    EXPECT_EQ(front(), tabOf(2));
}

TEST_F(AccessibilityBrowserReaderTest, aStoppedRegistryHoldsNobodyTwice) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    bus->freeze();
    EXPECT_EQ(front(), "");
    EXPECT_EQ(front(), "");
    bus->thaw();
    EXPECT_TRUE(eventually([&] { return front() == tabOf(1); }));
}

TEST_F(AccessibilityBrowserReaderTest, aFrameThatIsGoneAndABrowserThatEndedAreNoAnswer) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    clock.hurry(60);
    edit(0, [](auto& frame) { frame.isGone = true; });
    EXPECT_EQ(front(), "");
    browser.reset();
    EXPECT_EQ(front(), "") << "still listed";
    registry->list({});
    EXPECT_EQ(front(), "");
    EXPECT_FALSE(isReadable());
}

TEST_F(AccessibilityBrowserReaderTest, aBrowserOfAnotherApplicationIsNotAnswered) {
    show({page(1)});
    EXPECT_EQ(queue.sync([this] { return reader->frontTab("com.google.Chrome"); }), BrowserAnswer(""));
}

TEST_F(AccessibilityBrowserReaderTest, repliesOfAnotherShapeAreNoAnswer) {
    registry->list({"dev.test.Browser"});
    const struct {
        const char* what;
        Malformed malformed;
        std::string answer;
    } rows[] = {
        {"no list of frames", Malformed::children, ""},       {"no relations", Malformed::relations, ""},
        {"no attributes", Malformed::document, ""},           {"no states", Malformed::states, tabOf(1)},
        {"frames without end", Malformed::endless, tabOf(1)}, {"nothing wrong", Malformed::no, tabOf(1)},
    };
    for (const auto& row : rows) {
        clock.hurry(60);
        browser.reset();
        browser.emplace(bus->address(), "dev.test.Browser",
                        MockBrowser::Script{"Chromium", "Chromium", {page(1)}, row.malformed});
        EXPECT_EQ(front(), row.answer) << row.what;
        allWindows(); // whatever it makes of it
    }
}

TEST_F(AccessibilityBrowserReaderTest, whatSeparatesFieldsIsTakenOutOfTitlesAndAddresses) {
    show({page(1)});
    edit(0, [](auto& frame) {
        frame.title = "a\x1C\x1D\x1E\x1F z";
        frame.name = frame.title + " - Chromium";
        frame.address = "http://a\x1F.test/\x1E";
    });
    EXPECT_EQ(front(), "http://a.test/\x1F"
                       "a z\x1Fnormal");
}

TEST_F(AccessibilityBrowserReaderTest, anEndlessTitleIsCutBetweenTwoCharacters) {
    show({page(1)});
    std::string title;
    for (int i = 0; i < 20'000; ++i)
        title += "ü";
    edit(0, [&](auto& frame) { frame.title = "." + title; });
    EXPECT_TRUE(front() == "http://pages.test/1\x1F." + title.substr(0, 16 * 1024 - 2) + "\x1Fnormal");
}

TEST_F(AccessibilityBrowserReaderTest, aBusThatDiedIsFoundAgainAtALaterQuestion) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    const auto address = bus->address();
    bus->kill();
    EXPECT_TRUE(eventually([&] { return front().empty(); }));
    EXPECT_FALSE(isReadable());
    const auto starts = launcher.starts();
    EXPECT_EQ(front(), "");
    EXPECT_EQ(launcher.starts(), starts) << "not at once";
    clock.hurry(6);
    EXPECT_EQ(front(), "");
    EXPECT_EQ(launcher.starts(), starts + 1);
}

TEST_F(AccessibilityBrowserReaderTest, aRegistryThatStartedAnewIsReadOn) {
    show({page(1)});
    ASSERT_EQ(front(), tabOf(1));
    registry.reset();
    EXPECT_EQ(front(), "");
    registry.emplace(bus->address());
    registry->list({"dev.test.Browser"});
    EXPECT_EQ(front(), tabOf(1));
}

TEST(AccessibilityBrowserReader, neverStartsABusOnADesktopThatHasAccessibilityOff) {
    const PrivateBus session;
    const PrivateBus bus;
    const TemporaryFolder runtime;
    const SystemClock clock;
    const struct {
        const char* what;
        bool isEnabled;
        bool hasSocket;
        int starts;
    } rows[] = {
        {"off", false, false, 0},
        {"on", true, false, 1},
        {"off, but the bus runs", false, true, 1},
    };
    for (const auto& row : rows) {
        if (row.hasSocket)
            runtime.write("at-spi/bus_0", "");
        MockAccessibilityLauncher launcher(session.address(), bus.address(), row.isEnabled);
        WorkerQueue queue("browsers");
        auto opened =
            queue.sync([&] { return AccessibilityBus::open(queue, clock, session.address(), runtime.path()); });
        EXPECT_EQ(opened != nullptr, row.starts > 0) << row.what;
        EXPECT_EQ(launcher.starts(), row.starts) << row.what;
        queue.sync([&] { opened.reset(); });
    }
    WorkerQueue queue("browsers");
    EXPECT_FALSE(queue.sync([&] {
        return AccessibilityBus::open(queue, clock, session.address(), runtime.path()) != nullptr;
    })) << "with no launcher at all";
    EXPECT_FALSE(queue.sync([&] {
        return AccessibilityBus::open(queue, clock, "unix:path=/there/is/no/bus", runtime.path()) != nullptr;
    })) << "with no session bus";
}

} // namespace
} // namespace kestrio
