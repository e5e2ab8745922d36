#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/DesktopNotifications.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <mutex>

namespace kestrio {
namespace {

/// A service that shows notifications to nobody and remembers them.
class NotificationService {
public:
    struct Shown {
        std::uint32_t replaces = 0;
        std::string title;
        std::string body;
        std::vector<std::string> actions;
        std::uint32_t number = 0;
    };

    NotificationService(const std::string& address, std::vector<std::string> capabilities) : bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), "/org/freedesktop/Notifications");
        object_->registerMethod("GetCapabilities").onInterface(name).implementedAs([capabilities] {
            return capabilities;
        });
        object_->registerMethod("Notify").onInterface(name).implementedAs(
            [this](const std::string&, std::uint32_t replaces, const std::string&, const std::string& title,
                   const std::string& body, const std::vector<std::string>& actions,
                   const std::map<std::string, sdbus::Variant>&, std::int32_t) {
                const std::scoped_lock lock(mutex_);
                const auto number = replaces != 0 ? replaces : ++numbers_;
                shown_.push_back({replaces, title, body, actions, number});
                return number;
            });
        object_->registerSignal("ActionInvoked").onInterface(name).withParameters<std::uint32_t, std::string>();
        object_->registerSignal("NotificationClosed").onInterface(name).withParameters<std::uint32_t, std::uint32_t>();
        object_->finishRegistration();
        bus_.serve(name);
    }
    ~NotificationService() {
        bus_.stop();
        object_.reset();
    }

    std::vector<Shown> shown() const {
        const std::scoped_lock lock(mutex_);
        return shown_;
    }
    void invoke(std::uint32_t number, const std::string& action) {
        object_->emitSignal("ActionInvoked").onInterface(name).withArguments(number, action);
    }
    void close(std::uint32_t number) {
        object_->emitSignal("NotificationClosed").onInterface(name).withArguments(number, std::uint32_t{2});
    }

private:
    static constexpr const char* name = "org.freedesktop.Notifications";

    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
    mutable std::mutex mutex_; // guards both below
    std::vector<Shown> shown_;
    std::uint32_t numbers_ = 40;
};

struct DesktopNotificationsTest : testing::Test {
    PrivateBus bus;
    WorkerQueue queue{"notifications"};
    std::unique_ptr<NotificationService> service;
    std::unique_ptr<DesktopNotifications> notifications;
    std::vector<std::string> clicks; // on the queue
    Subscription token;

    void SetUp() override {
        queue.sync([this] {
            notifications = std::make_unique<DesktopNotifications>(queue, bus.address());
            token = notifications->observeClicks([this](const std::string& id) { clicks.push_back(id); });
        });
    }
    ~DesktopNotificationsTest() override {
        queue.sync([this] {
            token.cancel();
            notifications.reset();
        });
    }

    void serve(std::vector<std::string> capabilities = {"body", "body-markup", "actions"}) {
        service = std::make_unique<NotificationService>(bus.address(), std::move(capabilities));
    }
    void post(const std::string& id, const std::string& body) {
        queue.sync([&] { notifications->post({id, "Title of " + id, body}); });
    }
    bool showsUpTo(std::size_t count) {
        return eventually([this, count] { return service->shown().size() == count; });
    }
    /// Clicks until it is told: by then all that the service sent before has arrived.
    void settle(std::uint32_t number) {
        const auto before = clicked().size();
        EXPECT_TRUE(eventually([&] {
            service->invoke(number, "default");
            return clicked().size() > before;
        }));
    }
    std::vector<std::string> clicked() {
        return queue.sync([this] { return clicks; });
    }
};

TEST_F(DesktopNotificationsTest, aNotificationIsShownWithItsTextsAndCanBeClicked) {
    serve();
    post("memory", "body");
    ASSERT_TRUE(showsUpTo(1));
    const auto shown = service->shown().front();
    EXPECT_EQ(shown.title, "Title of memory");
    EXPECT_EQ(shown.body, "body");
    EXPECT_EQ(shown.actions, (std::vector<std::string>{"default", "Open"}));
    EXPECT_EQ(shown.replaces, 0U);
    settle(shown.number);
    EXPECT_EQ(clicked().front(), "memory");
}

TEST_F(DesktopNotificationsTest, whatLooksLikeMarkupIsEscapedOnlyForAServiceThatReadsIt) {
    for (const auto& [capabilities, body] :
         {std::pair(std::vector<std::string>{"body", "body-markup"}, "a &lt;b&gt; &amp; c"),
          std::pair(std::vector<std::string>{"body"}, "a <b> & c")}) {
        PrivateBus other;
        NotificationService plain(other.address(), capabilities);
        auto shower = queue.sync([&] { return std::make_unique<DesktopNotifications>(queue, other.address()); });
        queue.sync([&] { shower->post({"id", "<t>", "a <b> & c"}); });
        ASSERT_TRUE(eventually([&] { return plain.shown().size() == 1; }));
        EXPECT_EQ(plain.shown()[0].body, body);
        EXPECT_EQ(plain.shown()[0].title, "<t>");
        queue.sync([&] { shower.reset(); });
    }
}

TEST_F(DesktopNotificationsTest, aLaterOneWithTheSameIdentifierReplacesTheEarlierWhileItIsShown) {
    serve();
    post("memory", "first");
    ASSERT_TRUE(showsUpTo(1));
    const auto number = service->shown()[0].number;
    settle(number);
    post("memory", "again");
    post("other", "other");
    ASSERT_TRUE(showsUpTo(3));
    EXPECT_EQ(service->shown()[1].replaces, number);
    EXPECT_EQ(service->shown()[2].replaces, 0U);
    const auto other = service->shown()[2].number;
    settle(other);
    service->close(number);
    settle(other);
    post("memory", "anew");
    ASSERT_TRUE(showsUpTo(4));
    EXPECT_EQ(service->shown()[3].replaces, 0U);
}

TEST_F(DesktopNotificationsTest, notificationsOfOthersAndOtherActionsAreNoClicks) {
    serve();
    post("memory", "body");
    ASSERT_TRUE(showsUpTo(1));
    const auto number = service->shown()[0].number;
    settle(number);
    service->invoke(number + 1, "default");
    service->invoke(number, "inline-reply");
    settle(number);
    for (const auto& id : clicked())
        EXPECT_EQ(id, "memory");
}

TEST_F(DesktopNotificationsTest, whereNobodyShowsNotificationsTheNextOneTriesAgain) {
    post("memory", "lost");
    serve();
    ASSERT_TRUE(eventually([&] {
        post("memory", "shown");
        return !service->shown().empty();
    }));
    EXPECT_EQ(service->shown().back().body, "shown");
}

TEST_F(DesktopNotificationsTest, aBusThatDiesIsNobodysTrouble) {
    serve();
    post("memory", "body");
    ASSERT_TRUE(showsUpTo(1));
    bus.kill();
    post("memory", "lost");
    post("memory", "lost too");
}

TEST(DesktopNotifications, withoutABusNothingIsShown) {
    WorkerQueue queue("notifications");
    queue.sync([&] {
        DesktopNotifications notifications(queue, "unix:path=/nonexistent/bus");
        notifications.requestPermission();
        notifications.post({"memory", "Title", "body"});
    });
}

} // namespace
} // namespace kestrio
