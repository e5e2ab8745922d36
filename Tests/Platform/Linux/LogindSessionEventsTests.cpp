#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/LogindSessionEvents.h"
#include "Tests/Platform/Linux/MockLogind.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

using Events = std::vector<SessionEvent>;
using enum SessionEvent;

/// The logind of python3-dbusmock, made by other people: it knows no process's session.
class StandardMock {
public:
    explicit StandardMock(const std::string& address) : bus_(sdbus::createSessionBusConnectionWithAddress(address)) {
        const pid_t parent = getpid();
        process_ = fork();
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (getppid() != parent)
                _exit(1);
            const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); // it tells of every call
            dup2(nowhere, STDOUT_FILENO);
            dup2(nowhere, STDERR_FILENO);
            setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
            execl("/usr/bin/python3", "python3", "-m", "dbusmock", "--template", "logind", nullptr);
            _exit(127);
        }
    }
    ~StandardMock() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    StandardMock(const StandardMock&) = delete;
    StandardMock& operator=(const StandardMock&) = delete;

    static bool isInstalled() { return std::system("/usr/bin/python3 -c 'import dbusmock' >/dev/null 2>&1") == 0; }

    template <class... Arguments>
    bool call(const std::string& path, const std::string& interface, const std::string& method,
              const Arguments&... arguments) {
        try {
            const auto proxy = sdbus::createProxy(*bus_, "org.freedesktop.login1", path);
            auto message = proxy->createMethodCall(interface, method);
            (static_cast<void>(message << arguments), ...);
            proxy->callMethod(message);
            return true;
        } catch (const sdbus::Error&) {
            return false;
        }
    }

private:
    std::unique_ptr<sdbus::IConnection> bus_;
    pid_t process_ = 0;
};

/// A screen saver of a desktop, as it speaks on the session bus.
class MockScreenSaver {
public:
    MockScreenSaver(const std::string& address, const std::string& name, const std::string& path, bool active)
        : name_(name), active_(active), bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), path);
        object_->registerMethod("GetActive").onInterface(name).implementedAs([this] { return active_.load(); });
        object_->registerSignal("ActiveChanged").onInterface(name).withParameters<bool>();
        object_->finishRegistration();
        bus_.serve(name);
    }
    ~MockScreenSaver() {
        bus_.stop();
        object_.reset();
    }
    void setActive(bool active) {
        active_ = active;
        object_->emitSignal("ActiveChanged").onInterface(name_).withArguments(active);
    }

private:
    const std::string name_;
    std::atomic<bool> active_;
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
};

struct LogindSessionEventsTest : testing::Test {
    PrivateBus systemBus;
    PrivateBus sessionBus;
    WorkerQueue queue{"events"};
    std::unique_ptr<MockLogind> logind;
    std::unique_ptr<LogindSessionEvents> events;
    Subscription token;
    std::mutex mutex; // guards both below
    Events heard;
    std::shared_ptr<void> kept;
    std::atomic<bool> keepHolds = false;

    ~LogindSessionEventsTest() override {
        queue.sync([this] {
            token.cancel();
            events.reset();
        });
    }

    void start(std::optional<Seconds> lockConfirmation = {}) {
        LogindSessionEvents::Setup setup;
        setup.systemBus = systemBus.address();
        setup.sessionBus = sessionBus.address();
        setup.sessionIdentifier = "c7";
        setup.lockConfirmation = lockConfirmation.value_or(Seconds(3600));
        queue.sync([&] { events = std::make_unique<LogindSessionEvents>(queue, setup); });
    }

    void subscribe() {
        queue.sync([this] {
            token = events->observe([this](const SessionNotice& notice) {
                EXPECT_TRUE(queue.isCurrent());
                const std::lock_guard guard(mutex);
                heard.push_back(notice.event);
                if (keepHolds)
                    kept = notice.hold;
            });
        });
    }

    /// A logind, the events and a receiver, past their first exchange.
    void startAll(const MockLogind::Script& script = {}, std::optional<Seconds> lockConfirmation = {}) {
        logind = std::make_unique<MockLogind>(systemBus.address(), script);
        start(lockConfirmation);
        subscribe();
        EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; }));
        if (script.knowsProcess || script.knowsIdentifier || script.hasDisplaySession) {
            EXPECT_TRUE(eventually([this] { return sessionStart().has_value(); }));
        }
    }

    std::optional<Date> sessionStart() {
        return queue.sync([this] { return events->sessionStart(); });
    }

    bool hears(const Events& wanted) {
        const bool right = eventually([&] {
            const std::lock_guard guard(mutex);
            return heard == wanted;
        });
        if (!right)
            for (const auto event : heard)
                ADD_FAILURE() << "heard " << static_cast<int>(event);
        const std::lock_guard guard(mutex);
        heard.clear();
        return right;
    }
};

TEST_F(LogindSessionEventsTest, theMachineWaitsWithSleepingUntilTheHoldIsDropped) {
    startAll();
    EXPECT_EQ(logind->inhibitions(), std::vector<std::string>{"sleep|Kestrio|delay"});
    keepHolds = true;
    logind->prepareForSleep(true);
    EXPECT_TRUE(hears({willSleep}));
    EXPECT_EQ(logind->delayLocksHeld(), 1);
    {
        const std::lock_guard guard(mutex);
        ASSERT_TRUE(kept);
        kept.reset();
    }
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 0; }));
    keepHolds = false;
    logind->prepareForSleep(false);
    EXPECT_TRUE(hears({didWake}));
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; })) << "not taken again after waking";
    logind->prepareForSleep(true);
    EXPECT_TRUE(hears({willSleep}));
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 0; })) << "nobody kept the hold";
}

TEST_F(LogindSessionEventsTest, understandsALogindThatOtherPeopleMade) {
    if (!StandardMock::isInstalled())
        GTEST_SKIP() << "python3-dbusmock is not installed";
    constexpr const char* session = "/org/freedesktop/login1/session/c7";
    constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
    StandardMock mock(systemBus.address());
    ASSERT_TRUE(eventually([&] {
        return mock.call("/org/freedesktop/login1", "org.freedesktop.DBus.Mock", "AddSession", "c7", "seat0",
                         std::uint32_t{1000}, "somebody", true);
    }));
    start();
    subscribe();
    EXPECT_TRUE(eventually([this] { return sessionStart() == Date(42e-6); }));
    ASSERT_TRUE(mock.call(session, sessionInterface, "SetLockedHint", true));
    EXPECT_TRUE(hears({screenIsLocked}));
    ASSERT_TRUE(mock.call(session, sessionInterface, "Unlock"));
    EXPECT_TRUE(hears({screenIsUnlocked}));
    ASSERT_TRUE(mock.call(session, sessionInterface, "Lock"));
    EXPECT_TRUE(hears({screenIsLocked}));
    ASSERT_TRUE(mock.call("/org/freedesktop/login1", "org.freedesktop.DBus.Mock", "EmitSignal",
                          "org.freedesktop.login1.Manager", "PrepareForSleep", "b",
                          std::vector<sdbus::Variant>{sdbus::Variant(true)}));
    EXPECT_TRUE(hears({willSleep}));
}

TEST_F(LogindSessionEventsTest, theHoldIsTakenOnlyWhileSomebodyListens) {
    logind = std::make_unique<MockLogind>(systemBus.address(), MockLogind::Script());
    start();
    EXPECT_TRUE(eventually([this] { return sessionStart().has_value(); }));
    EXPECT_EQ(logind->inhibitions().size(), 0U);
    subscribe();
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; }));
    queue.sync([this] { token.cancel(); });
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 0; }));
}

TEST_F(LogindSessionEventsTest, requestsToLockAndUnlockAreToldAsSuch) {
    startAll();
    logind->requestLock();
    EXPECT_TRUE(hears({screenIsLocked}));
    logind->setLockedHint(true);
    logind->requestLock();
    logind->requestUnlock();
    EXPECT_TRUE(hears({screenIsUnlocked}));
}

TEST_F(LogindSessionEventsTest, aRequestThatNothingConfirmsDoesNotCountForEver) {
    startAll({}, Seconds(0.05));
    logind->requestLock();
    EXPECT_TRUE(hears({screenIsLocked, screenIsUnlocked}));
}

TEST_F(LogindSessionEventsTest, aConfirmedRequestStays) {
    startAll({}, Seconds(0.2));
    logind->requestLock();
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
    std::atomic<bool> over = false;
    const auto timer = queue.after(Seconds(0.4), [&] { over = true; });
    EXPECT_TRUE(eventually([&] { return over.load(); }));
    logind->setLockedHint(false);
    EXPECT_TRUE(hears({screenIsUnlocked}));
}

TEST_F(LogindSessionEventsTest, changesOfTheHintAreTold) {
    startAll();
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
    logind->setLockedHint(false);
    EXPECT_TRUE(hears({screenIsUnlocked}));
}

TEST_F(LogindSessionEventsTest, aLockedScreenAndAnInactiveSessionAreAnnouncedAtTheStart) {
    MockLogind::Script script;
    script.locked = true;
    script.active = false;
    logind = std::make_unique<MockLogind>(systemBus.address(), script);
    start();
    subscribe();
    EXPECT_TRUE(eventually([this] {
        const std::lock_guard guard(mutex);
        return std::find(heard.begin(), heard.end(), screenIsLocked) != heard.end() &&
               std::find(heard.begin(), heard.end(), sessionDidResignActive) != heard.end();
    }));
}

TEST_F(LogindSessionEventsTest, whoSubscribesLaterHearsOfWhatIsInForceAndOthersDont) {
    startAll();
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
    std::atomic<int> announced = 0;
    Subscription later;
    queue.sync([&] {
        later = events->observe([&](const SessionNotice& notice) { announced += notice.event == screenIsLocked; });
        EXPECT_EQ(announced, 0) << "called from within observe";
    });
    EXPECT_TRUE(eventually([&] { return announced == 1; }));
    logind->setLockedHint(false);
    EXPECT_TRUE(hears({screenIsUnlocked}));
    queue.sync([&] { later.cancel(); });
}

TEST_F(LogindSessionEventsTest, anotherPersonsSessionTakesTheScreenAndGivesItBack) {
    startAll();
    logind->setActive(false);
    EXPECT_TRUE(hears({sessionDidResignActive}));
    logind->setActive(true);
    EXPECT_TRUE(hears({sessionDidBecomeActive}));
}

TEST_F(LogindSessionEventsTest, theSessionIsFoundByProcessElseIdentifierElseDisplay) {
    struct Row {
        bool process, identifier, display, found;
    };
    const Row rows[] = {{true, false, false, true},
                        {false, true, false, true},
                        {false, false, true, true},
                        {false, false, false, false}};
    for (const auto& row : rows) {
        MockLogind::Script script;
        script.knowsProcess = row.process;
        script.knowsIdentifier = row.identifier;
        script.hasDisplaySession = row.display;
        logind = std::make_unique<MockLogind>(systemBus.address(), script);
        start();
        // At once, before any answer came by itself.
        EXPECT_EQ(sessionStart(), row.found ? std::optional(Date(1'700'000'000.25)) : std::nullopt)
            << row.process << row.identifier << row.display;
        subscribe();
        if (row.found) {
            EXPECT_TRUE(eventually([this] { return sessionStart().has_value(); }));
            logind->setLockedHint(true);
            EXPECT_TRUE(hears({screenIsLocked})) << row.process << row.identifier << row.display;
        } else {
            // Sleep concerns everybody.
            EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; }));
            logind->prepareForSleep(true);
            EXPECT_TRUE(hears({willSleep}));
        }
        queue.sync([this] {
            token.cancel();
            events.reset();
        });
        logind.reset();
    }
}

TEST_F(LogindSessionEventsTest, aSessionThatEndsTakesItsStatesWithIt) {
    MockLogind::Script script;
    startAll(script);
    logind->setLockedHint(true);
    logind->setActive(false);
    EXPECT_TRUE(hears({screenIsLocked, sessionDidResignActive}));
    logind->removeSession();
    // It is looked for again, and found with the same states.
    EXPECT_TRUE(hears({screenIsUnlocked, sessionDidBecomeActive, screenIsLocked, sessionDidResignActive}));
}

TEST_F(LogindSessionEventsTest, aLogindThatStartsLaterIsPickedUp) {
    start();
    subscribe();
    EXPECT_EQ(sessionStart(), std::nullopt);
    logind = std::make_unique<MockLogind>(systemBus.address(), MockLogind::Script());
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; }));
    EXPECT_TRUE(eventually([this] { return sessionStart() == Date(1'700'000'000.25); }));
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
    logind->prepareForSleep(true);
    EXPECT_TRUE(hears({willSleep}));
}

TEST_F(LogindSessionEventsTest, aLogindThatRestartsIsPickedUpAgain) {
    startAll();
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
    logind.reset();
    EXPECT_TRUE(hears({screenIsUnlocked}));
    logind = std::make_unique<MockLogind>(systemBus.address(), MockLogind::Script());
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; }));
    EXPECT_TRUE(eventually([this] { return sessionStart().has_value(); }));
    logind->setActive(false);
    EXPECT_TRUE(hears({sessionDidResignActive}));
}

TEST_F(LogindSessionEventsTest, aLogindThatHangsHoldsNothingUp) {
    MockLogind::Script script;
    script.silent = true;
    logind = std::make_unique<MockLogind>(systemBus.address(), script);
    start();
    subscribe();
    EXPECT_EQ(sessionStart(), std::nullopt);
    EXPECT_EQ(sessionStart(), std::nullopt);
    EXPECT_TRUE(eventually([this] { return logind->delayLocksHeld() == 1; }));
    logind->prepareForSleep(true);
    EXPECT_TRUE(hears({willSleep}));
}

TEST_F(LogindSessionEventsTest, withoutAnyBusEverythingIsQuiet) {
    systemBus.kill();
    sessionBus.kill();
    start();
    subscribe();
    EXPECT_EQ(sessionStart(), std::nullopt);
    queue.sync([] {});
    EXPECT_TRUE(heard.empty());
}

TEST_F(LogindSessionEventsTest, aSystemBusThatDiesTakesItsStatesWithItAndCostsNothing) {
    startAll();
    logind->setLockedHint(true);
    logind->setActive(false);
    EXPECT_TRUE(hears({screenIsLocked, sessionDidResignActive}));
    systemBus.kill();
    EXPECT_TRUE(hears({screenIsUnlocked, sessionDidBecomeActive}));
    const auto threadSeconds = [this] {
        return queue.sync([] {
            timespec time{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
        });
    };
    const auto before = threadSeconds();
    std::atomic<bool> over = false;
    const auto timer = queue.after(Seconds(0.3), [&] { over = true; });
    EXPECT_TRUE(eventually([&] { return over.load(); }));
    EXPECT_LT(threadSeconds() - before, 0.1) << "the queue spins";
    EXPECT_EQ(sessionStart(), std::nullopt);
}

TEST_F(LogindSessionEventsTest, aStoppedSystemBusIsOvercome) {
    startAll();
    systemBus.freeze();
    EXPECT_TRUE(queue.sync([this] { return events->sessionStart().has_value(); }));
    systemBus.thaw();
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
}

TEST_F(LogindSessionEventsTest, aBusThatIsStoppedFromTheStartCountsAsNone) {
    systemBus.freeze();
    start();
    subscribe();
    EXPECT_EQ(sessionStart(), std::nullopt);
    MockScreenSaver saver(sessionBus.address(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", false);
    saver.setActive(true);
    EXPECT_TRUE(hears({screenIsLocked}));
}

TEST_F(LogindSessionEventsTest, aDesktopsScreenSaverCountsAsALock) {
    struct Row {
        const char* name;
        const char* path;
    };
    const Row rows[] = {{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
                        {"org.freedesktop.ScreenSaver", "/ScreenSaver"},
                        {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
                        {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
                        {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
                        {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"}};
    startAll();
    for (const auto& row : rows) {
        MockScreenSaver saver(sessionBus.address(), row.name, row.path, false);
        saver.setActive(true);
        EXPECT_TRUE(hears({screenIsLocked})) << row.path;
        saver.setActive(false);
        EXPECT_TRUE(hears({screenIsUnlocked})) << row.path;
    }
}

TEST_F(LogindSessionEventsTest, aScreenSaverThatIsActiveAtTheStartIsAnnouncedAndOneThatCrashesCoversNothing) {
    auto saver = std::make_unique<MockScreenSaver>(sessionBus.address(), "org.gnome.ScreenSaver",
                                                   "/org/gnome/ScreenSaver", true);
    start();
    subscribe();
    EXPECT_TRUE(eventually([this] {
        const std::lock_guard guard(mutex);
        return !heard.empty();
    }));
    {
        const std::lock_guard guard(mutex);
        EXPECT_EQ(heard.front(), screenIsLocked);
        heard.clear();
    }
    saver.reset();
    EXPECT_TRUE(eventually([this] {
        const std::lock_guard guard(mutex);
        return !heard.empty() && heard.back() == screenIsUnlocked;
    }));
}

TEST_F(LogindSessionEventsTest, theScreenIsLockedWhileAnybodySaysSo) {
    startAll();
    MockScreenSaver saver(sessionBus.address(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", false);
    saver.setActive(true);
    EXPECT_TRUE(hears({screenIsLocked}));
    logind->setLockedHint(true);
    logind->setActive(false); // told after the hint, so that the hint has been heard
    EXPECT_TRUE(hears({sessionDidResignActive}));
    saver.setActive(false);
    logind->setActive(true);
    EXPECT_TRUE(hears({sessionDidBecomeActive}));
    logind->setLockedHint(false);
    EXPECT_TRUE(hears({screenIsUnlocked}));
}

TEST_F(LogindSessionEventsTest, aSessionBusThatDiesTakesItsScreenSaversWithIt) {
    startAll();
    {
        MockScreenSaver saver(sessionBus.address(), "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", false);
        saver.setActive(true);
        EXPECT_TRUE(hears({screenIsLocked}));
        sessionBus.kill();
        EXPECT_TRUE(hears({screenIsUnlocked}));
    }
    logind->setLockedHint(true);
    EXPECT_TRUE(hears({screenIsLocked}));
}

} // namespace
} // namespace kestrio
