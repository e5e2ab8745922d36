#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusMonitor.h"
#include "Kestrio/Platform/Linux/LinuxSleepInhibitors.h"
#include "Kestrio/Platform/Linux/X11Connection.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Platform/Linux/X11TestClient.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/VirtualDisplay.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <ostream>
#include <signal.h>
#include <unistd.h>
#include <xcb/screensaver.h>

namespace kestrio {

void PrintTo(const SleepInhibitor& inhibitor, std::ostream* out) {
    *out << inhibitor.holder.process.value_or(0) << " \"" << inhibitor.holder.name << "\" " << inhibitor.type;
}

namespace {

using Held = std::vector<SleepInhibitor>;

constexpr auto display = assertion::preventUserIdleDisplaySleep;
constexpr auto machine = assertion::preventSystemSleep;

/// A service on a bus that does what python3-dbusmock is told: methods are added to it as snippets of Python.
class MockService {
public:
    MockService(std::string address, std::string name, std::string path, const std::string& interface)
        : name_(std::move(name)), path_(std::move(path)), bus_(sdbus::createSessionBusConnectionWithAddress(address)) {
        process_ = TestProgram({"/usr/bin/python3", "-m", "dbusmock", name_, path_, interface},
                               {"DBUS_SESSION_BUS_ADDRESS=" + address});
        EXPECT_TRUE(eventually([this] { return call(path_, "org.freedesktop.DBus.Peer", "Ping"); })) << name_;
    }

    static bool isInstalled() {
        return std::system("/usr/bin/python3 -c 'import dbusmock' >/dev/null 2>&1") == 0; // NOLINT(cert-env33-c)
    }

    template <class... Arguments>
    bool call(const std::string& path, const std::string& interface, const std::string& method,
              const Arguments&... arguments) {
        try {
            const auto proxy = sdbus::createProxy(*bus_, name_, path);
            auto message = proxy->createMethodCall(interface, method);
            (static_cast<void>(message << arguments), ...);
            proxy->callMethod(message);
            return true;
        } catch (const sdbus::Error&) {
            return false;
        }
    }

    /// The method answers what the Python expression gives.
    void answer(const std::string& path, const std::string& interface, const std::string& method,
                const std::string& takes, const std::string& gives, const std::string& expression) {
        EXPECT_TRUE(call(path, mock, "AddMethod", interface, method, takes, gives, "ret = " + expression));
    }
    void addObject(const std::string& path, const std::string& interface) {
        using Methods = std::vector<sdbus::Struct<std::string, std::string, std::string, std::string>>;
        EXPECT_TRUE(
            call(path_, mock, "AddObject", path, interface, std::map<std::string, sdbus::Variant>(), Methods()));
    }
    void emit(const std::string& interface, const std::string& signal, const std::string& types,
              const std::vector<sdbus::Variant>& arguments) {
        EXPECT_TRUE(call(path_, mock, "EmitSignal", interface, signal, types, arguments));
    }
    void kill() { process_.kill(); }
    void signal(int number) const { process_.signal(number); }

private:
    static constexpr const char* mock = "org.freedesktop.DBus.Mock";

    const std::string name_;
    const std::string path_;
    std::unique_ptr<sdbus::IConnection> bus_;
    TestProgram process_;
};

/// A program that asks a screen saver service to stay away.
class Player {
public:
    explicit Player(const std::string& address) : bus_(sdbus::createSessionBusConnectionWithAddress(address)) {}

    void call(const char* service, const char* interface, const char* method, bool isInhibit) const {
        try {
            const auto proxy = sdbus::createProxy(*bus_, service, "/object");
            auto message = proxy->createMethodCall(interface, method);
            if (isInhibit)
                message << std::string("player") << std::string("video");
            else
                message << std::uint32_t{7};
            proxy->callMethod(message, 2'000'000);
        } catch (const sdbus::Error&) {
            // Where nobody serves, the call is seen all the same.
        }
    }
    void inhibit() const { call("org.freedesktop.ScreenSaver", "org.freedesktop.ScreenSaver", "Inhibit", true); }
    void release() const { call("org.freedesktop.ScreenSaver", "org.freedesktop.ScreenSaver", "UnInhibit", false); }

private:
    std::unique_ptr<sdbus::IConnection> bus_;
};

/// A screen saver service, or a power manager, that agrees to everything.
class InhibitService {
public:
    InhibitService(const std::string& address, const std::string& name, const std::string& interface) : bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), "/object");
        object_->registerMethod("Inhibit").onInterface(interface).implementedAs(
            [](const std::string&, const std::string&) { return std::uint32_t{7}; });
        object_->registerMethod("UnInhibit").onInterface(interface).implementedAs([](std::uint32_t) {});
        object_->finishRegistration();
        bus_.serve(name);
    }
    ~InhibitService() {
        bus_.stop();
        object_.reset();
    }

private:
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
};

struct SleepInhibitorsTest : testing::Test {
    PrivateBus sessionBus;
    PrivateBus systemBus;
    const SystemClock clock{};
    WorkerQueue queue{"inhibitors"};
    std::unique_ptr<LinuxSleepInhibitors> inhibitors;

    ~SleepInhibitorsTest() override { drop(); }

    void start() {
        LinuxSleepInhibitors::Setup setup;
        setup.sessionBus = sessionBus.address();
        setup.systemBus = systemBus.address();
        setup.user = 1000;
        queue.sync([&] { inhibitors = std::make_unique<LinuxSleepInhibitors>(queue, clock, setup); });
    }
    void drop() {
        queue.sync([this] { inhibitors.reset(); });
    }
    Held held() {
        auto all = queue.sync([this] { return inhibitors->held(); });
        std::sort(all.begin(), all.end());
        return all;
    }
    bool comeToBe(Held wanted) {
        std::sort(wanted.begin(), wanted.end());
        const bool right = eventually([&] { return held() == wanted; });
        EXPECT_EQ(held(), wanted);
        return right;
    }
};

TEST_F(SleepInhibitorsTest, withNobodyOnTheBusesNothingIsHeld) {
    start();
    EXPECT_TRUE(held().empty());
}

TEST(SleepInhibitors, withoutBusesNothingIsHeld) {
    const SystemClock clock{};
    WorkerQueue queue("inhibitors");
    LinuxSleepInhibitors::Setup setup;
    auto none = queue.sync([&] { return std::make_unique<LinuxSleepInhibitors>(queue, clock, setup); });
    EXPECT_TRUE(queue.sync([&] { return none->held(); }).empty());
    setup.sessionBus = setup.systemBus = "unix:path=/nonexistent";
    auto dead = queue.sync([&] { return std::make_unique<LinuxSleepInhibitors>(queue, clock, setup); });
    EXPECT_TRUE(queue.sync([&] { return dead->held(); }).empty());
    queue.sync([&] {
        none.reset();
        dead.reset();
    });
}

/// The one of python3-dbusmock, which lists nothing until it is told to.
struct LogindInhibitorsTest : SleepInhibitorsTest {
    static constexpr auto path = "/org/freedesktop/login1";
    static constexpr auto interface = "org.freedesktop.login1.Manager";

    void SetUp() override {
        if (!MockService::isInstalled())
            GTEST_SKIP() << "python3-dbusmock is not installed";
    }
    std::unique_ptr<MockService> serve() const {
        return std::make_unique<MockService>(systemBus.address(), "org.freedesktop.login1", path, interface);
    }
    static void list(MockService& logind, const std::string& rows) {
        logind.answer(path, interface, "ListInhibitors", "", "a(ssssuu)",
                      "dbus.Array([" + rows + "], signature='(ssssuu)')");
    }
    static void announce(MockService& logind) {
        logind.emit("org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                    {sdbus::Variant(std::string(interface)), sdbus::Variant(std::map<std::string, sdbus::Variant>()),
                     sdbus::Variant(std::vector<std::string>())});
    }
};

TEST_F(LogindInhibitorsTest, idleKeepsTheDisplayAndSleepTheMachine) {
    const auto logind = serve();
    list(*logind, "('idle', 'player', 'video', 'block', 1000, 41), ('sleep', 'backup', 'busy', 'block', 1000, 42), "
                  "('shutdown:sleep:idle', 'writer', 'disc', 'block', 1000, 43), "
                  "('idle', 'newer', 'weak', 'block-weak', 1000, 44)");
    start();
    EXPECT_TRUE(comeToBe({{{41, "player"}, display},
                          {{42, "backup"}, machine},
                          {{43, "writer"}, display},
                          {{43, "writer"}, machine},
                          {{44, "newer"}, display}}));
}

TEST_F(LogindInhibitorsTest, delaysKeysAndOtherPeopleKeepNothing) {
    const auto logind = serve();
    list(*logind, "('sleep', 'network', 'closing', 'delay', 1000, 41), ('idle', 'other', 'video', 'block', 1001, 42), "
                  "('handle-lid-switch:handle-power-key', 'desktop', 'keys', 'block', 1000, 43), "
                  "('shutdown', 'updates', 'busy', 'block', 1000, 44), ('idle', 'player', 'video', 'block', 1000, 45), "
                  "('idles:sleepy', 'other words', 'no', 'block', 1000, 46), ('', 'none', 'no', 'block', 1000, 47)");
    start();
    EXPECT_TRUE(comeToBe({{{45, "player"}, display}}));
}

TEST_F(LogindInhibitorsTest, changesAreHeardOf) {
    start();
    EXPECT_TRUE(held().empty());
    const auto logind = serve();
    list(*logind, "('idle', 'player', 'video', 'block', 1000, 41)");
    announce(*logind);
    EXPECT_TRUE(comeToBe({{{41, "player"}, display}}));
    list(*logind, "");
    announce(*logind);
    EXPECT_TRUE(comeToBe({}));
}

TEST_F(LogindInhibitorsTest, aLogindThatEndsHoldsNothingAndItsSuccessorIsFound) {
    auto logind = serve();
    list(*logind, "('idle', 'player', 'video', 'block', 1000, 41)");
    start();
    ASSERT_TRUE(comeToBe({{{41, "player"}, display}}));
    logind->kill();
    EXPECT_TRUE(comeToBe({}));
    logind = serve();
    list(*logind, "('idle', 'player', 'video', 'block', 1000, 51)");
    announce(*logind);
    EXPECT_TRUE(comeToBe({{{51, "player"}, display}}));
}

TEST_F(LogindInhibitorsTest, oneThatDoesNotAnswerHoldsNobodyUp) {
    const auto logind = serve();
    list(*logind, "('idle', 'player', 'video', 'block', 1000, 41)");
    logind->signal(SIGSTOP);
    start();
    EXPECT_TRUE(held().empty());
    logind->signal(SIGCONT);
    announce(*logind);
    EXPECT_TRUE(comeToBe({{{41, "player"}, display}}));
}

TEST_F(LogindInhibitorsTest, anErrorOrAnotherShapeReadsAsNothing) {
    const auto logind = serve();
    start();
    EXPECT_TRUE(held().empty()) << "no such method";
    logind->answer(path, interface, "ListInhibitors", "", "s", "'nothing'");
    announce(*logind);
    logind->answer(path, interface, "ListInhibitors", "", "a(ssssuu)",
                   "dbus.Array([('idle', 'player', 'video', 'block', 1000, 41)], signature='(ssssuu)')");
    announce(*logind);
    EXPECT_TRUE(comeToBe({{{41, "player"}, display}}));
}

struct GnomeInhibitorsTest : SleepInhibitorsTest {
    static constexpr auto path = "/org/gnome/SessionManager";
    static constexpr auto interface = "org.gnome.SessionManager";

    void SetUp() override {
        if (!MockService::isInstalled())
            GTEST_SKIP() << "python3-dbusmock is not installed";
    }
    std::unique_ptr<MockService> serve() const {
        return std::make_unique<MockService>(sessionBus.address(), interface, path, interface);
    }
    static std::string inhibitorPath(int number) { return std::string(path) + "/Inhibitor" + std::to_string(number); }

    static void add(MockService& manager, int number, int flags, const std::string& name,
                    const std::string& client = "/") {
        constexpr auto inhibitor = "org.gnome.SessionManager.Inhibitor";
        const auto own = inhibitorPath(number);
        manager.addObject(own, inhibitor);
        manager.answer(own, inhibitor, "GetFlags", "", "u", std::to_string(flags));
        manager.answer(own, inhibitor, "GetAppId", "", "s", "'" + name + "'");
        manager.answer(own, inhibitor, "GetClientId", "", "o", "'" + client + "'");
    }
    static void list(MockService& manager, const std::vector<int>& numbers) {
        std::string paths;
        for (const int number : numbers)
            paths += "'" + inhibitorPath(number) + "', ";
        manager.answer(path, interface, "GetInhibitors", "", "ao", "dbus.Array([" + paths + "], signature='o')");
    }
};

TEST_F(GnomeInhibitorsTest, idleKeepsTheDisplayAndSuspendTheMachine) {
    const auto manager = serve();
    manager->addObject("/client", "org.gnome.SessionManager.Client");
    manager->answer("/client", "org.gnome.SessionManager.Client", "GetUnixProcessId", "", "u", "77");
    add(*manager, 1, 8, "org.example.Player", "/client");
    add(*manager, 2, 4, "backup");
    add(*manager, 3, 1 | 2 | 16, "editor");
    add(*manager, 4, 4 | 8, "call");
    list(*manager, {1, 2, 3, 4});
    start();
    EXPECT_TRUE(comeToBe({{{77, "org.example.Player"}, display},
                          {{std::nullopt, "backup"}, machine},
                          {{std::nullopt, "call"}, display},
                          {{std::nullopt, "call"}, machine}}));
}

TEST_F(GnomeInhibitorsTest, changesAreHeardOf) {
    const auto manager = serve();
    start();
    add(*manager, 1, 8, "player");
    list(*manager, {1});
    manager->emit(interface, "InhibitorAdded", "o", {sdbus::Variant(sdbus::ObjectPath(inhibitorPath(1)))});
    EXPECT_TRUE(comeToBe({{{std::nullopt, "player"}, display}}));
    add(*manager, 2, 8, "other");
    list(*manager, {2});
    manager->emit(interface, "InhibitorRemoved", "o", {sdbus::Variant(sdbus::ObjectPath(inhibitorPath(1)))});
    EXPECT_TRUE(comeToBe({{{std::nullopt, "other"}, display}}));
}

TEST_F(GnomeInhibitorsTest, anInhibitorThatIsGoneBeforeItIsAskedHoldsNothing) {
    const auto manager = serve();
    add(*manager, 2, 8, "player");
    list(*manager, {1, 2});
    start();
    EXPECT_TRUE(comeToBe({{{std::nullopt, "player"}, display}}));
}

TEST_F(GnomeInhibitorsTest, aManagerThatEndsHoldsNothing) {
    const auto manager = serve();
    add(*manager, 1, 8, "player");
    list(*manager, {1});
    start();
    ASSERT_TRUE(comeToBe({{{std::nullopt, "player"}, display}}));
    manager->kill();
    EXPECT_TRUE(comeToBe({}));
}

struct KdeInhibitorsTest : SleepInhibitorsTest {
    static constexpr auto path = "/org/kde/Solid/PowerManagement/PolicyAgent";
    static constexpr auto interface = "org.kde.Solid.PowerManagement.PolicyAgent";

    void SetUp() override {
        if (!MockService::isInstalled())
            GTEST_SKIP() << "python3-dbusmock is not installed";
    }
    std::unique_ptr<MockService> serve() const {
        return std::make_unique<MockService>(sessionBus.address(), interface, path, interface);
    }
    static void list(MockService& agent, const std::string& rows, bool isDisplayKept) {
        agent.answer(path, interface, "ListInhibitions", "", "a(ss)", "dbus.Array([" + rows + "], signature='(ss)')");
        agent.answer(path, interface, "HasInhibition", "u", "b", isDisplayKept ? "args[0] == 4" : "args[0] == 1");
    }
    static void announce(MockService& agent) {
        using Rows = std::vector<sdbus::Struct<std::string, std::string>>;
        agent.emit(interface, "InhibitionsChanged", "a(ss)as",
                   {sdbus::Variant(Rows()), sdbus::Variant(std::vector<std::string>())});
    }
};

TEST_F(KdeInhibitorsTest, theListedKeepWhatIsKeptForAllOfThem) {
    const auto agent = serve();
    list(*agent, "('org.example.Player', 'video'), ('Other', 'call')", true);
    start();
    EXPECT_TRUE(comeToBe({{{std::nullopt, "Other"}, display}, {{std::nullopt, "org.example.Player"}, display}}));
    list(*agent, "('Other', 'copying')", false);
    announce(*agent);
    EXPECT_TRUE(comeToBe({{{std::nullopt, "Other"}, machine}}));
    list(*agent, "", false);
    announce(*agent);
    EXPECT_TRUE(comeToBe({}));
}

TEST_F(KdeInhibitorsTest, anAgentThatEndsHoldsNothing) {
    const auto agent = serve();
    list(*agent, "('Player', 'video')", true);
    start();
    ASSERT_TRUE(comeToBe({{{std::nullopt, "Player"}, display}}));
    agent->kill();
    EXPECT_TRUE(comeToBe({}));
}

struct ScreenSaverHoldersTest : SleepInhibitorsTest {
    std::unique_ptr<InhibitService> saver;

    void serve() {
        saver = std::make_unique<InhibitService>(sessionBus.address(), "org.freedesktop.ScreenSaver",
                                                 "org.freedesktop.ScreenSaver");
    }
};

TEST_F(ScreenSaverHoldersTest, aCallHoldsUntilItIsTakenBack) {
    serve();
    start();
    const Player player(sessionBus.address());
    player.inhibit();
    EXPECT_TRUE(comeToBe({{{getpid()}, display}}));
    player.inhibit();
    player.release();
    const Player other(sessionBus.address());
    other.inhibit();
    EXPECT_TRUE(comeToBe({{{getpid()}, display}, {{getpid()}, display}})) << "one of two calls was taken back";
    player.release();
    other.release();
    EXPECT_TRUE(comeToBe({}));
    other.release();
    other.inhibit();
    EXPECT_TRUE(comeToBe({{{getpid()}, display}})) << "one call too many counts as none";
}

TEST_F(ScreenSaverHoldersTest, aHolderThatDiesHoldsNoLonger) {
    serve();
    start();
    {
        const Player player(sessionBus.address());
        player.inhibit();
        ASSERT_TRUE(comeToBe({{{getpid()}, display}}));
    }
    EXPECT_TRUE(comeToBe({}));
}

TEST_F(ScreenSaverHoldersTest, aServiceThatEndsForgetsItsHolders) {
    serve();
    start();
    const Player player(sessionBus.address());
    player.inhibit();
    ASSERT_TRUE(comeToBe({{{getpid()}, display}}));
    saver.reset();
    EXPECT_TRUE(comeToBe({}));
    serve();
    player.inhibit();
    EXPECT_TRUE(comeToBe({{{getpid()}, display}}));
}

TEST_F(ScreenSaverHoldersTest, aCallThatNobodyServesHoldsNothing) {
    start();
    const Player player(sessionBus.address());
    player.inhibit();
    const InhibitService power(sessionBus.address(), "org.freedesktop.PowerManagement",
                               "org.freedesktop.PowerManagement.Inhibit");
    player.call("org.freedesktop.PowerManagement", "org.freedesktop.PowerManagement.Inhibit", "Inhibit", true);
    EXPECT_TRUE(comeToBe({{{getpid()}, assertion::preventUserIdleSystemSleep}}));
}

TEST_F(ScreenSaverHoldersTest, otherCallsAreNotEvenSeen) {
    serve();
    std::mutex mutex;
    std::vector<std::string> members;
    std::atomic<bool> hasEnded = false;
    auto monitor = queue.sync([&] {
        return BusMonitor::open(
            queue, sessionBus.address(), {"type='method_call',interface='org.freedesktop.ScreenSaver'"},
            [&](const BusMonitor::Call& call) {
                const std::lock_guard guard(mutex);
                members.push_back(call.interface + "." + call.member);
            },
            [&] { hasEnded = true; });
    });
    ASSERT_TRUE(monitor);
    const Player player(sessionBus.address());
    player.call("org.freedesktop.DBus", "org.freedesktop.DBus", "ListNames", true);
    player.inhibit();
    player.release();
    EXPECT_TRUE(eventually([&] {
        const std::lock_guard guard(mutex);
        return members ==
               std::vector<std::string>{"org.freedesktop.ScreenSaver.Inhibit", "org.freedesktop.ScreenSaver.UnInhibit"};
    }));
    sessionBus.kill();
    EXPECT_TRUE(eventually([&] { return hasEnded.load(); }));
    queue.sync([&] { monitor.reset(); });
}

TEST_F(ScreenSaverHoldersTest, aBusThatDiesHoldsNothing) {
    serve();
    start();
    const Player player(sessionBus.address());
    player.inhibit();
    ASSERT_TRUE(comeToBe({{{getpid()}, display}}));
    sessionBus.kill();
    EXPECT_TRUE(comeToBe({}));
}

TEST_F(ScreenSaverHoldersTest, aBusThatDoesNotAnswerIsLeftAlone) {
    sessionBus.freeze();
    start();
    EXPECT_TRUE(held().empty());
    sessionBus.thaw();
}

/// The system's clock, with time that passes at the test's word.
class HurriedClock final : public Clock {
public:
    Date now() const override { return system_.now(); }
    Uptime uptime() const override { return system_.uptime() + Seconds(ahead_.load()); }
    void hurry(Seconds span) { ahead_ = ahead_ + span.count(); }

private:
    SystemClock system_;
    std::atomic<double> ahead_ = 0;
};

TEST(SleepInhibitors, theXServerIsAskedRarelyWhileNothingPlays) {
    HurriedClock clock;
    WorkerQueue queue("inhibitors");
    VirtualDisplay screen;
    const X11TestClient client(screen.name());
    std::atomic<bool> isPlaying = false;
    X11Connection connection(queue, clock, screen.name());
    LinuxSleepInhibitors::Setup setup;
    setup.x11 = &connection;
    setup.isAnythingPlaying = [&] { return isPlaying.load(); };
    auto inhibitors = queue.sync([&] { return std::make_unique<LinuxSleepInhibitors>(queue, clock, setup); });
    const auto held = [&] { return queue.sync([&] { return inhibitors->held(); }); };
    const auto suspend = [&](std::uint32_t isSuspended) {
        xcb_screensaver_suspend(client.xcb(), isSuspended);
        client.flush();
    };
    EXPECT_TRUE(held().empty());
    suspend(1);
    clock.hurry(LinuxSleepInhibitors::quietPace - Seconds(10));
    EXPECT_TRUE(held().empty()) << "asked while nothing plays";
    clock.hurry(Seconds(10));
    EXPECT_EQ(held(), (Held{{{getpid()}, display}}));
    suspend(0);
    EXPECT_EQ(held().size(), 1U) << "asked at once again";
    clock.hurry(LinuxSleepInhibitors::busyPace);
    EXPECT_TRUE(held().empty()) << "whoever is known to hold is looked after";
    suspend(1);
    isPlaying = true;
    clock.hurry(LinuxSleepInhibitors::busyPace);
    EXPECT_EQ(held().size(), 1U);
    queue.sync([&] { inhibitors.reset(); });
}

} // namespace
} // namespace kestrio
