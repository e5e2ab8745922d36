#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/BusNames.h"
#include "Kestrio/Link/WindowClient.h"
#include "Kestrio/Link/WindowService.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

using Asked = std::pair<WindowRequest, std::string>; // with the token

/// The windows' process: its main queue, and what it was asked for.
class Windows {
public:
    explicit Windows(const std::string& address) {
        main_.sync([&] {
            service_ = WindowService::offer(
                address, main_, [this](const auto& request, const auto& token) { asked_.emplace_back(request, token); },
                [this] { ++quits_; });
        });
    }
    ~Windows() { end(); }

    bool isOffered() {
        return main_.sync([&] { return service_ != nullptr; });
    }
    std::vector<Asked> asked() {
        return main_.sync([&] { return asked_; });
    }
    int quits() {
        return main_.sync([&] { return quits_; });
    }
    void end() {
        main_.sync([&] { service_.reset(); });
    }
    WorkerQueue& main() { return main_; }

private:
    WorkerQueue main_{"windows"};
    std::vector<Asked> asked_; // all on the queue
    int quits_ = 0;
    std::unique_ptr<WindowService> service_;
};

TEST(WindowsOnTheBus, everyRequestArrivesInOrderAndWhole) {
    const PrivateBus bus;
    Windows windows(bus.address());
    ASSERT_TRUE(windows.isOffered());
    auto client = WindowClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_TRUE(client->isRunning());
    const std::vector<Asked> requests{
        {DashboardRequest{}, ""},
        {DashboardRequest{"timeline"}, "token-1"},
        {PanelRequest{PanelKind::today}, ""},
        {PanelRequest{PanelKind::today, ScreenPoint{0, 0}}, ""},
        {PanelRequest{PanelKind::system, ScreenPoint{-1280, 1023}}, "token-2"},
        {SettingsRequest{}, ""},
        {SettingsRequest{"data"}, ""},
    };
    for (const auto& [request, token] : requests)
        EXPECT_TRUE(client->show(request, token));
    EXPECT_TRUE(eventually([&] { return windows.asked().size() == requests.size(); }));
    EXPECT_EQ(windows.asked(), requests);
}

TEST(WindowsOnTheBus, areClosedWhenTheProgramIsLeft) {
    const PrivateBus bus;
    Windows windows(bus.address());
    auto client = WindowClient::connect(bus.address());
    client->quit();
    EXPECT_TRUE(eventually([&] { return windows.quits() == 1; }));
    windows.end();
    client->quit();
    EXPECT_EQ(windows.quits(), 1);
}

TEST(WindowsOnTheBus, aSecondProcessGetsNoServiceButReachesTheFirst) {
    const PrivateBus bus;
    Windows first(bus.address());
    Windows second(bus.address());
    EXPECT_TRUE(first.isOffered());
    EXPECT_FALSE(second.isOffered());
    EXPECT_TRUE(WindowClient::connect(bus.address())->show(DashboardRequest{"apps"}));
    EXPECT_TRUE(eventually([&] { return first.asked() == std::vector<Asked>{{DashboardRequest{"apps"}, ""}}; }));
    first.end();
    Windows third(bus.address());
    EXPECT_TRUE(third.isOffered()) << "the name is free again";
}

TEST(WindowsOnTheBus, busyWindowsHoldNobodyUp) {
    const PrivateBus bus;
    Windows windows(bus.address());
    auto client = WindowClient::connect(bus.address());
    bool isTaken = false;
    // While the queue is in the middle of something, the caller has its answer already.
    windows.main().sync([&] { isTaken = client->show(DashboardRequest{}); });
    EXPECT_TRUE(isTaken);
    EXPECT_TRUE(eventually([&] { return windows.asked().size() == 1; }));
}

TEST(WindowsOnTheBus, aPanelThatThereIsNotIsRefused) {
    const PrivateBus bus;
    Windows windows(bus.address());
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.address());
    const auto proxy = sdbus::createProxy(*connection, busNames::windowService, busNames::windowObject);
    try {
        proxy->callMethod("ShowPanel")
            .onInterface(busNames::windowInterface)
            .withArguments(std::string("yesterday"), false, std::int32_t{0}, std::int32_t{0});
        FAIL() << "it was taken";
    } catch (const sdbus::Error& error) {
        EXPECT_EQ(error.getName(), busNames::errorInvalid);
        EXPECT_EQ(error.getMessage(), "the panels are today and system");
    }
    EXPECT_TRUE(windows.asked().empty());
}

TEST(WindowsOnTheBus, requestsThatArriveAsTheServiceGoesAreDropped) {
    const PrivateBus bus;
    Windows windows(bus.address());
    auto client = WindowClient::connect(bus.address());
    windows.main().sync([&] { EXPECT_TRUE(client->show(DashboardRequest{})); });
    windows.end();
    EXPECT_FALSE(client->isRunning());
    EXPECT_FALSE(client->show(DashboardRequest{}));
    EXPECT_LE(windows.asked().size(), 1U);
}

TEST(WindowsOnTheBus, aBusThatDiesIsSurvived) {
    PrivateBus bus;
    Windows windows(bus.address());
    auto client = WindowClient::connect(bus.address());
    bus.kill();
    EXPECT_FALSE(client->isRunning());
    EXPECT_FALSE(client->show(DashboardRequest{}));
}

TEST(WindowService, isAbsentWithoutABus) {
    Windows windows("unix:path=/nonexistent/bus");
    EXPECT_FALSE(windows.isOffered());
}

TEST(WindowClient, isAbsentWithoutABusAndReachesNobodyWithoutWindows) {
    EXPECT_FALSE(WindowClient::connect("unix:path=/nonexistent/bus"));
    const PrivateBus bus;
    auto client = WindowClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_FALSE(client->isRunning());
    EXPECT_FALSE(client->show(DashboardRequest{}));
}

} // namespace
} // namespace kestrio
