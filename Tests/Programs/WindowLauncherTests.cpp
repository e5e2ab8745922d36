#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/WindowService.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Programs/Agent/WindowLauncher.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Stands for `kestrio-window`: notes each start, and takes the name of the windows only when the test does.
struct WindowLauncherTest : testing::Test {
    PrivateBus bus;
    TemporaryFolder folder;
    fs::path program = folder.path() / "kestrio-window";
    fs::path starts = folder.path() / "starts";
    bool hasScreen = true;
    WorkerQueue queue{"main"};
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<WindowLauncher> launcher;
    WorkerQueue windowQueue{"windows"};
    std::unique_ptr<WindowService> windows;
    std::vector<std::string> shown; // the command lines that the windows' process was asked for, on its queue

    void SetUp() override {
        writeFile(program, fmt::format("#!/bin/sh\necho \"$@ token=$XDG_ACTIVATION_TOKEN $DESKTOP_STARTUP_ID\" >> {}\n",
                                       starts.string()));
        fs::permissions(program, fs::perms::owner_all);
        queue.sync([this] {
            connection = BusConnection::open(queue, bus.address());
            launcher = make(connection.get());
        });
    }
    ~WindowLauncherTest() override {
        windowQueue.sync([this] { windows.reset(); });
        queue.sync([this] {
            launcher.reset();
            connection.reset();
        });
    }

    std::unique_ptr<WindowLauncher> make(BusConnection* onBus) {
        return std::make_unique<WindowLauncher>(WindowLauncher::Parts{
            queue, onBus, program, [this](const std::string& name) {
                return hasScreen && name == "DISPLAY" ? std::optional<std::string>(":7") : std::nullopt;
            }});
    }
    Background::Failure show(const WindowRequest& request, const std::string& token = {}) {
        return queue.sync([&] { return launcher->show(request, token); });
    }
    std::vector<std::string> started() const {
        std::vector<std::string> lines;
        std::ifstream file(starts);
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }
    void appear() {
        windowQueue.sync([this] {
            windows = WindowService::offer(
                bus.address(), windowQueue,
                [this](const auto& request, const auto& token) {
                    shown.push_back(windowArguments(request).front() + (token.empty() ? "" : " token=" + token));
                },
                [this] { shown.emplace_back("quit"); });
        });
    }
    std::vector<std::string> seen() {
        return windowQueue.sync([this] { return shown; });
    }
};

TEST_F(WindowLauncherTest, startsTheWindowsWithTheRequestWhereNoneRun) {
    EXPECT_EQ(show(PanelRequest{PanelKind::today, ScreenPoint{1200, 10}}, "from-the-panel"), std::nullopt);
    EXPECT_TRUE(eventually([this] { return started().size() == 1; }));
    EXPECT_EQ(started().front(), "today --at=1200,10 token=from-the-panel from-the-panel");
}

TEST_F(WindowLauncherTest, asksTheWindowsThatRun) {
    appear();
    EXPECT_EQ(show(DashboardRequest{"apps"}, "t"), std::nullopt);
    EXPECT_EQ(show(SettingsRequest{"data"}), std::nullopt);
    EXPECT_TRUE(eventually([this] { return seen() == std::vector<std::string>{"dashboard token=t", "settings"}; }));
    EXPECT_TRUE(started().empty());
}

TEST_F(WindowLauncherTest, whatIsAskedForWhileTheWindowsStartWaitsForThem) {
    EXPECT_EQ(show(DashboardRequest{}), std::nullopt);
    EXPECT_EQ(show(PanelRequest{PanelKind::system}), std::nullopt);
    EXPECT_EQ(show(SettingsRequest{}, "t"), std::nullopt);
    appear();
    EXPECT_TRUE(eventually([this] { return seen() == std::vector<std::string>{"system", "settings token=t"}; }));
    EXPECT_EQ(started().size(), 1U);
    EXPECT_EQ(show(DashboardRequest{}), std::nullopt);
    EXPECT_TRUE(eventually([this] { return seen().size() == 3; }));
    EXPECT_EQ(started().size(), 1U);
}

TEST_F(WindowLauncherTest, startsTheWindowsAnewAfterTheyClosed) {
    EXPECT_EQ(show(DashboardRequest{}), std::nullopt);
    appear();
    EXPECT_EQ(show(DashboardRequest{}), std::nullopt);
    EXPECT_TRUE(eventually([this] { return !seen().empty(); }));
    windowQueue.sync([this] { windows.reset(); });
    EXPECT_TRUE(eventually([this] {
        show(SettingsRequest{});
        return started().size() == 2;
    }));
    EXPECT_EQ(started().back(), "settings token= ");
}

TEST_F(WindowLauncherTest, closesTheWindowsThatRunAndStartsNoneForThat) {
    queue.sync([this] { launcher->quit(); });
    EXPECT_TRUE(started().empty());
    appear();
    queue.sync([this] { launcher->quit(); });
    EXPECT_TRUE(eventually([this] { return seen() == std::vector<std::string>{"quit"}; }));
}

TEST_F(WindowLauncherTest, saysWhatIsMissing) {
    hasScreen = false;
    EXPECT_EQ(show(DashboardRequest{}), "Kestrio runs without a screen that it could show a window on");
    hasScreen = true;
    fs::permissions(program, fs::perms::owner_read);
    writeFile(program, "no program");
    EXPECT_EQ(show(DashboardRequest{}), program.string() + " could not be started");
    fs::remove(program);
    EXPECT_EQ(show(DashboardRequest{}), "the windows of Kestrio are not installed: there is no " + program.string());
}

TEST_F(WindowLauncherTest, pagesAndTabsThatThereAreNotAreRefused) {
    appear();
    EXPECT_EQ(show(DashboardRequest{"Apps"}),
              "there is no page \"Apps\"; there are overview, timeline, apps, websites, youtube, projects, "
              "performance, resourceLog");
    EXPECT_EQ(show(SettingsRequest{"colours"}),
              "there is no tab \"colours\" in the settings; there are general, categories, projects, optimization, "
              "permissions, data, about");
    EXPECT_TRUE(seen().empty());
    EXPECT_TRUE(started().empty());
}

TEST_F(WindowLauncherTest, withoutABusEachRequestStartsAProcess) {
    queue.sync([this] { launcher = make(nullptr); });
    EXPECT_EQ(show(DashboardRequest{}), std::nullopt);
    EXPECT_EQ(show(SettingsRequest{}), std::nullopt);
    EXPECT_TRUE(eventually([this] { return started().size() == 2; }));
}

} // namespace
} // namespace kestrio
