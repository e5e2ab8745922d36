#include "Programs/Agent/SavingPower.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr auto service = "net.hadess.PowerProfiles";

TEST(SavingPower, isWhatThePowerProfilesOfTheSystemSay) {
    const PrivateBus bus;
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str(), 1);
    WorkerQueue queue("bus");
    const SavingPower saving(queue);
    EXPECT_EQ(saving(), std::nullopt) << "nobody tells";
    ServedBus daemon(bus.address());
    const auto object = sdbus::createObject(daemon.connection(), "/net/hadess/PowerProfiles");
    object->registerProperty("ActiveProfile").onInterface(service).withGetter([] {
        return std::string("power-saver");
    });
    object->finishRegistration();
    daemon.serve(service);
    EXPECT_TRUE(eventually([&] { return saving() == true; }));
    daemon.stop();
}

TEST(SavingPower, isUnknownWithoutABus) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    WorkerQueue queue("bus");
    const SavingPower saving(queue);
    EXPECT_EQ(saving(), std::nullopt);
}

} // namespace
} // namespace kestrio
