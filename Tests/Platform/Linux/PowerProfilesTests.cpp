#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/PowerProfiles.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <mutex>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

struct Name {
    const char* service;
    const char* path;
};
constexpr Name older{"net.hadess.PowerProfiles", "/net/hadess/PowerProfiles"};
constexpr Name newer{"org.freedesktop.UPower.PowerProfiles", "/org/freedesktop/UPower/PowerProfiles"};

/// A power-profiles-daemon under one of its names.
class Daemon {
public:
    Daemon(const std::string& address, Name name, std::string profile)
        : name_(name), profile_(std::move(profile)), bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), name.path);
        object_->registerProperty("ActiveProfile").onInterface(name.service).withGetter([this] {
            const std::lock_guard guard(mutex_);
            return profile_;
        });
        object_->finishRegistration();
        bus_.serve(name.service);
    }
    ~Daemon() {
        bus_.stop();
        object_.reset();
    }
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    void choose(const std::string& profile) {
        {
            const std::lock_guard guard(mutex_);
            profile_ = profile;
        }
        object_->emitPropertiesChangedSignal(name_.service, {"ActiveProfile"});
    }

private:
    const Name name_;
    std::mutex mutex_;
    std::string profile_;
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
};

struct PowerProfilesTest : testing::Test {
    PrivateBus bus;
    WorkerQueue queue{"bus"};
    std::unique_ptr<BusConnection> connection =
        queue.sync([this] { return BusConnection::open(queue, bus.address()); });
    std::unique_ptr<PowerProfiles> profiles;

    ~PowerProfilesTest() override {
        queue.sync([this] {
            profiles.reset();
            connection.reset();
        });
    }
    void watch() {
        queue.sync([this] { profiles = std::make_unique<PowerProfiles>(*connection); });
    }
    bool becomes(std::optional<bool> isSaving) {
        return eventually([&] { return profiles->isSavingPower() == isSaving; });
    }
};

TEST_F(PowerProfilesTest, sayNothingWithoutAService) {
    watch();
    queue.sync([] {});
    EXPECT_EQ(profiles->isSavingPower(), std::nullopt);
}

TEST_F(PowerProfilesTest, areReadUnderEitherName) {
    for (const auto name : {older, newer}) {
        const Daemon daemon(bus.address(), name, "power-saver");
        watch();
        EXPECT_TRUE(becomes(true)) << name.service;
    }
}

TEST_F(PowerProfilesTest, believeTheNewerNameFirst) {
    const Daemon old(bus.address(), older, "power-saver");
    watch();
    EXPECT_TRUE(becomes(true));
    const Daemon recent(bus.address(), newer, "balanced");
    EXPECT_TRUE(becomes(false));
}

TEST_F(PowerProfilesTest, followWhatIsChosen) {
    Daemon daemon(bus.address(), older, "balanced");
    watch();
    EXPECT_TRUE(becomes(false));
    daemon.choose("power-saver");
    EXPECT_TRUE(becomes(true));
    daemon.choose("performance");
    EXPECT_TRUE(becomes(false));
}

TEST_F(PowerProfilesTest, followAServiceThatComesAndGoes) {
    watch();
    {
        const Daemon daemon(bus.address(), older, "power-saver");
        EXPECT_TRUE(becomes(true));
    }
    EXPECT_TRUE(becomes(std::nullopt));
    const Daemon daemon(bus.address(), older, "balanced");
    EXPECT_TRUE(becomes(false));
}

TEST_F(PowerProfilesTest, surviveABusThatDies) {
    const Daemon daemon(bus.address(), older, "power-saver");
    watch();
    EXPECT_TRUE(becomes(true));
    bus.kill();
    EXPECT_TRUE(eventually([&] { return queue.sync([&] { return !connection->isAlive(); }); }));
    EXPECT_EQ(profiles->isSavingPower(), true) << "as last told";
}

} // namespace
} // namespace kestrio
