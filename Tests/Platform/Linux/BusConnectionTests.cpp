#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <atomic>
#include <ctime>
#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrio {
namespace {

/// A queue and a connection that lives on it.
struct BusConnectionTest : testing::Test {
    PrivateBus bus;
    WorkerQueue queue{"bus"};
    std::unique_ptr<BusConnection> connection =
        queue.sync([this] { return BusConnection::open(queue, bus.address()); });

    ~BusConnectionTest() override {
        queue.sync([this] { connection.reset(); });
    }

    bool ping() {
        return connection->perform([](sdbus::IConnection& raw) {
            const auto proxy = sdbus::createProxy(raw, "org.freedesktop.DBus", "/org/freedesktop/DBus");
            proxy->callMethod("Ping").onInterface("org.freedesktop.DBus.Peer");
        });
    }

    double threadSeconds() {
        return queue.sync([] {
            timespec time{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
        });
    }

    /// Lets the queue live on for a while.
    void letPass(Seconds span) {
        std::atomic<bool> over = false;
        const auto timer = queue.after(span, [&] { over = true; });
        EXPECT_TRUE(eventually([&] { return over.load(); }));
    }
};

/// A service with one method, which emits a signal before it answers, and one that never answers.
class Service {
public:
    explicit Service(const std::string& address) : bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), "/service");
        object_->registerSignal("Said").onInterface("dev.test").withParameters<std::int32_t>();
        object_->registerMethod("Say").onInterface("dev.test").implementedAs([this](const std::int32_t& number) {
            object_->emitSignal("Said").onInterface("dev.test").withArguments(number);
            return number;
        });
        object_->registerMethod("Never")
            .onInterface("dev.test")
            .implementedAs([this](sdbus::Result<std::int32_t>&& result) { unanswered_.push_back(std::move(result)); });
        object_->finishRegistration();
        bus_.serve("dev.test.Service");
    }
    ~Service() {
        bus_.stop();
        unanswered_.clear();
        object_.reset();
    }
    void say(std::int32_t number) { object_->emitSignal("Said").onInterface("dev.test").withArguments(number); }

private:
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
    std::vector<sdbus::Result<std::int32_t>> unanswered_;
};

constexpr const char* saidRule = "type='signal',interface='dev.test',member='Said'";

TEST(BusConnection, isAbsentWhereThereIsNoBus) {
    WorkerQueue queue("bus");
    const TemporaryFolder folder;
    const auto nowhere = "unix:path=" + (folder.path() / "none").string();
    for (const auto& address : {std::string(), std::string("nonsense"), nowhere, "tcp:host=127.0.0.1,port=1;" + nowhere,
                                std::string("unix:path="), std::string("unix:abstract=kestrio-none")})
        EXPECT_FALSE(queue.sync([&] { return BusConnection::open(queue, address) != nullptr; })) << address;
}

TEST(BusConnection, isAbsentWhereSomethingElseListens) {
    WorkerQueue queue("bus");
    const TemporaryFolder folder;
    const auto path = (folder.path() / "mute").string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 4), 0);
    EXPECT_FALSE(queue.sync([&] { return BusConnection::open(queue, "unix:path=" + path) != nullptr; }));
    close(listener);
}

TEST(BusConnection, triesEachOfSeveralAddresses) {
    WorkerQueue queue("bus");
    const PrivateBus bus;
    EXPECT_TRUE(queue.sync(
        [&] { return BusConnection::open(queue, "unix:path=/nonexistent/bus;" + bus.address()) != nullptr; }));
}

TEST(BusConnection, readsEscapesInAnAddress) {
    WorkerQueue queue("bus");
    const PrivateBus bus;
    std::string escaped = "unix:path=";
    for (const char c : bus.address().substr(std::string("unix:path=").size()))
        escaped += c == '-' ? std::string("%2D") : std::string(1, c);
    EXPECT_TRUE(queue.sync([&] { return BusConnection::open(queue, escaped) != nullptr; })) << escaped;
}

TEST_F(BusConnectionTest, callsAnswer) {
    ASSERT_TRUE(connection);
    EXPECT_TRUE(queue.sync([&] { return ping(); }));
}

TEST_F(BusConnectionTest, anErrorOfTheOtherSideIsAFailureAndNothingMore) {
    EXPECT_FALSE(queue.sync([&] {
        return connection->perform([](sdbus::IConnection& raw) {
            const auto proxy = sdbus::createProxy(raw, "dev.test.Nobody", "/");
            proxy->callMethod("Nothing").onInterface("dev.test");
        });
    }));
    EXPECT_TRUE(queue.sync([&] { return ping(); }));
}

TEST_F(BusConnectionTest, matchesHearUntilTheirTokenIsDropped) {
    Service service(bus.address());
    std::atomic<int> one = 0;
    std::atomic<int> other = 0;
    std::optional<Subscription> first;
    std::optional<Subscription> second;
    queue.sync([&] {
        first = connection->match(saidRule, [&](sdbus::Message&) { ++one; });
        second = connection->match(saidRule, [&](sdbus::Message& message) {
            std::int32_t number = 0;
            message >> number;
            other = number;
        });
    });
    ASSERT_TRUE(first && second);
    service.say(1);
    EXPECT_TRUE(eventually([&] { return other == 1; }));
    EXPECT_EQ(one, 1);
    queue.sync([&] { first->cancel(); });
    service.say(2);
    EXPECT_TRUE(eventually([&] { return other == 2; }));
    EXPECT_EQ(one, 1);
    queue.sync([&] { second.reset(); });
}

TEST_F(BusConnectionTest, aReceiverMayDropItsOwnTokenAndATokenMayOutliveTheConnection) {
    Service service(bus.address());
    std::atomic<int> count = 0;
    std::optional<Subscription> token;
    std::optional<Subscription> late;
    queue.sync([&] {
        token = connection->match(saidRule, [&](sdbus::Message&) {
            ++count;
            token.reset();
        });
        late = connection->match(saidRule, [&](sdbus::Message&) { count += 10; });
    });
    service.say(1);
    service.say(2);
    EXPECT_TRUE(eventually([&] { return count == 21; }));
    queue.sync([&] { connection.reset(); });
    queue.sync([&] { late.reset(); });
}

TEST_F(BusConnectionTest, aMessageOfAnotherShapeIsPassedOver) {
    Service service(bus.address());
    std::atomic<int> count = 0;
    std::optional<Subscription> wrong;
    std::optional<Subscription> right;
    queue.sync([&] {
        wrong = connection->match(saidRule, [&](sdbus::Message& message) {
            std::string text;
            message >> text;
            count += 100;
        });
        right = connection->match(saidRule, [&](sdbus::Message&) { ++count; });
    });
    service.say(1);
    service.say(2);
    EXPECT_TRUE(eventually([&] { return count == 2; }));
    queue.sync([&] {
        wrong.reset();
        right.reset();
    });
}

TEST_F(BusConnectionTest, whatArrivesWhileACallWaitsIsHandledRightAfter) {
    Service service(bus.address());
    std::atomic<int> heard = 0;
    std::atomic<bool> inside = false;
    std::optional<Subscription> token;
    queue.sync([&] {
        token = connection->match(saidRule, [&](sdbus::Message&) {
            EXPECT_FALSE(inside);
            ++heard;
        });
    });
    for (std::int32_t number = 1; number <= 20; ++number) {
        queue.sync([&] {
            inside = true;
            EXPECT_TRUE(connection->perform([&](sdbus::IConnection& raw) {
                std::int32_t answer = 0;
                const auto proxy = sdbus::createProxy(raw, "dev.test.Service", "/service");
                proxy->callMethod("Say").onInterface("dev.test").withArguments(number).storeResultsTo(answer);
                EXPECT_EQ(answer, number);
            }));
            inside = false;
        });
        EXPECT_TRUE(eventually([&] { return heard == number; }));
    }
    queue.sync([&] { token.reset(); });
}

TEST_F(BusConnectionTest, aCallThatIsNeverAnsweredEndsAtItsDeadline) {
    Service service(bus.address());
    std::unique_ptr<sdbus::IProxy> proxy;
    std::atomic<bool> failed = false;
    queue.sync([&] {
        proxy = sdbus::createProxy(connection->connection(), "dev.test.Service", "/service");
        EXPECT_FALSE(
            connection->perform([&](sdbus::IConnection&) { proxy->callMethod("Never").onInterface("dev.test"); }));
        EXPECT_TRUE(connection->perform([&](sdbus::IConnection&) {
            proxy->callMethodAsync("Never")
                .onInterface("dev.test")
                .uponReplyInvoke([&](const sdbus::Error* error, std::int32_t) { failed = error != nullptr; });
        }));
    });
    // Nothing arrives: the deadline alone wakes the queue.
    EXPECT_TRUE(eventually([&] { return failed.load(); }));
    queue.sync([&] { proxy.reset(); });
}

TEST_F(BusConnectionTest, aBusThatDiesIsToldOnceAndCostsNothingAfterwards) {
    std::atomic<int> deaths = 0;
    queue.sync([&] { connection->onDeath([&] { ++deaths; }); });
    bus.kill();
    EXPECT_TRUE(eventually([&] { return deaths == 1; }));
    EXPECT_FALSE(queue.sync([&] { return connection->isAlive() || ping(); }));
    const auto before = threadSeconds();
    letPass(Seconds(0.5));
    EXPECT_LT(threadSeconds() - before, 0.1) << "the queue spins";
    EXPECT_EQ(deaths, 1);
}

TEST_F(BusConnectionTest, aBusThatDiesUnderACallIsToldToo) {
    std::atomic<int> deaths = 0;
    queue.sync([&] {
        connection->onDeath([&] {
            ++deaths;
            connection.reset(); // the owner's right
        });
        bus.kill();
        EXPECT_FALSE(ping());
    });
    EXPECT_TRUE(eventually([&] { return deaths == 1; }));
}

TEST_F(BusConnectionTest, pendingCallsEndWithTheBus) {
    Service service(bus.address());
    std::unique_ptr<sdbus::IProxy> proxy;
    std::atomic<bool> failed = false;
    queue.sync([&] {
        proxy = sdbus::createProxy(connection->connection(), "dev.test.Service", "/service");
        connection->perform([&](sdbus::IConnection&) {
            proxy->callMethodAsync("Never")
                .onInterface("dev.test")
                .withTimeout(std::chrono::hours(1))
                .uponReplyInvoke([&](const sdbus::Error* error, std::int32_t) { failed = error != nullptr; });
        });
    });
    bus.kill();
    EXPECT_TRUE(eventually([&] { return failed.load(); }));
    queue.sync([&] { proxy.reset(); });
}

TEST_F(BusConnectionTest, aStoppedBusHoldsACallUpToItsDeadlineAndServesAgainAfterwards) {
    bus.freeze();
    EXPECT_FALSE(queue.sync([&] { return ping(); }));
    EXPECT_FALSE(queue.sync([&] { return BusConnection::open(queue, bus.address()) != nullptr; }));
    EXPECT_TRUE(queue.sync([&] { return connection->isAlive(); }));
    const auto before = threadSeconds();
    letPass(Seconds(0.3));
    EXPECT_LT(threadSeconds() - before, 0.1) << "the queue spins";
    bus.thaw();
    EXPECT_TRUE(eventually([&] { return queue.sync([&] { return ping(); }); }));
}

TEST_F(BusConnectionTest, whatAStoppedBusCannotTakeIsSentWhenItGoesOn) {
    Service service(bus.address());
    std::atomic<int> answers = 0;
    std::unique_ptr<sdbus::IProxy> proxy;
    bus.freeze();
    constexpr int calls = 40;
    queue.sync([&] {
        // More than a socket's buffer holds.
        proxy = sdbus::createProxy(connection->connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus");
        for (int i = 0; i < calls; ++i)
            connection->perform([&](sdbus::IConnection&) {
                proxy->callMethodAsync("NameHasOwner")
                    .onInterface("org.freedesktop.DBus")
                    .withTimeout(std::chrono::seconds(60))
                    .withArguments(std::string(20'000, 'a'))
                    .uponReplyInvoke([&](const sdbus::Error*, bool) { ++answers; });
            });
    });
    bus.thaw();
    EXPECT_TRUE(eventually([&] { return answers == calls; }));
    queue.sync([&] { proxy.reset(); });
}

} // namespace
} // namespace kestrio
