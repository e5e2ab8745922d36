// The sensors of captured machines that differ, and the bounds of their rules.
#include "Kestrio/Platform/Linux/ChipTemperatures.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"
#include "Kestrio/Platform/Linux/PowerSupplies.h"
#include "Kestrio/Platform/Linux/ThermalZones.h"
#include "Tests/Support/FileTree.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum ThermalState;

class Machine {
public:
    explicit Machine(const std::string& name) {
        unpackTree(std::filesystem::path(KESTRIO_FIXTURES) / (name + ".tree"), folder.path());
    }
    LinuxSensors sensors() const { return LinuxSensors({.sys = folder.path() / "sys"}); }

    const TemporaryFolder folder;
};

// --- Temperatures ----------------------------------------------------------------------------------------------------

TEST(LinuxSensors, tellTheTemperaturesOfTheDieOnEachMachine) {
    const struct {
        const char* machine;
        std::vector<double> temperatures;
    } rows[] = {
        {"laptop-on-battery", {61, 62}},
        {"desktop-ryzen", {70.5, 64}},
        {"arm-board", {71.582}},
        {"laptop-two-batteries", {55, 55}}, // the zones, also the one that is switched off
        {"virtual-machine", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Machine(row.machine).sensors().chipTemperatures(), row.temperatures) << row.machine;
}

TEST(ChipSensors, areKnownByDriverAndLabel) {
    using enum ChipSensorKind;
    const struct {
        const char* driver;
        const char* label;
        std::optional<ChipSensorKind> kind;
    } rows[] = {
        {"coretemp", "Core 0", die},
        {"coretemp", "Core 27", die},
        {"coretemp", "Package id 0", processor},
        {"coretemp", "", processor},
        {"k10temp", "Tdie", die},
        {"k10temp", "Tccd1", die},
        {"k10temp", "Tctl", processor},
        {"k10temp", "", processor},
        {"zenpower", "Tdie", die},
        {"cpu_thermal", "", processor},
        {"cpu0_thermal", "", processor},
        {"soc_thermal", "", processor},
        {"bigcore0_thermal", "", processor},
        {"package_thermal", "", processor},
        {"via_cputemp", "", processor},
        {"acpitz", "", std::nullopt},
        {"nvme", "Composite", std::nullopt},
        {"amdgpu", "edge", std::nullopt},
        {"iwlwifi_1", "", std::nullopt},
        {"gpu_thermal", "", std::nullopt},
        {"nct6798", "CPUTIN", std::nullopt},
        {"", "Core 0", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(chipSensorKind(row.driver, row.label), row.kind) << row.driver << " " << row.label;
}

TEST(ProcessorZones, areKnownByTheirType) {
    for (const auto* type : {"x86_pkg_temp", "TCPU", "cpu-thermal", "soc-thermal", "package-thermal", "cpu0-thermal"})
        EXPECT_TRUE(isProcessorZone(type)) << type;
    for (const auto* type : {"acpitz", "iwlwifi_1", "gpu-thermal", "pch_skylake", "battery", "INT3400 Thermal", ""})
        EXPECT_FALSE(isProcessorZone(type)) << type;
}

TEST(ChipTemperatures, areOfTheFirstSixByNameAtMost) {
    const TemporaryFolder sys;
    sys.write("class/hwmon/hwmon0/name", "coretemp\n");
    for (int core = 9; core >= 0; --core) {
        const auto stem = "class/hwmon/hwmon0/temp" + std::to_string(12 - core);
        sys.write(stem + "_input", std::to_string(40 + core) + "000\n");
        sys.write(stem + "_label", "Core " + std::to_string(core) + "\n");
    }
    EXPECT_EQ(ChipTemperatures(sys.path()).read(), (std::vector<double>{40, 41, 42, 43, 44, 45}));
}

TEST(ChipTemperatures, leaveOutASensorThatCannotBeRead) {
    const TemporaryFolder sys;
    sys.write("class/hwmon/hwmon0/name", "coretemp\n");
    for (const auto* core : {"1", "2", "3"})
        sys.write("class/hwmon/hwmon0/temp" + std::string(core) + "_label", "Core " + std::string(core) + "\n");
    sys.write("class/hwmon/hwmon0/temp1_input", "40000\n");
    sys.write("class/hwmon/hwmon0/temp2_input", "no number\n");
    const auto last = sys.write("class/hwmon/hwmon0/temp3_input", "50000\n");
    ChipTemperatures temperatures(sys.path());
    EXPECT_EQ(temperatures.read(), (std::vector<double>{40, 50}));
    std::filesystem::remove(last);
    EXPECT_EQ(temperatures.read(), std::vector<double>{40});
}

TEST(ChipTemperatures, areInThousandthsOfADegree) {
    EXPECT_EQ(parsedMillidegrees("48500\n"), 48.5);
    EXPECT_EQ(parsedMillidegrees("-273000"), -273);
    for (const auto* text : {"", "\n", "x", "48.5", "48500 C"})
        EXPECT_EQ(parsedMillidegrees(text), std::nullopt) << text;
}

// --- Thermal state ---------------------------------------------------------------------------------------------------

TEST(LinuxSensors, tellTheThermalStateOnEachMachine) {
    const std::pair<const char*, ThermalState> rows[] = {
        {"laptop-on-battery", nominal},    // a point of 0 degrees and the wireless card's zone do not count
        {"desktop-ryzen", nominal},        // no zones
        {"arm-board", fair},               // between its two points; the graphics zone does not count
        {"laptop-two-batteries", nominal}, // the zone is switched off
        {"virtual-machine", nominal},
    };
    for (const auto& [machine, state] : rows)
        EXPECT_EQ(Machine(machine).sensors().thermalState(), state) << machine;
}

TEST(ThermalState, hasItsBoundsExactly) {
    const TripPoints one{80, 80, 100};
    const TripPoints two{70, 85, 105};
    const TripPoints close{82, 85, {}};
    const TripPoints criticalAlone{{}, {}, 100};
    const struct {
        TripPoints points;
        double temperature;
        ThermalState state;
    } rows[] = {
        {one, 74.9, nominal},
        {one, 75, fair},
        {one, 79.9, fair},
        {one, 80, serious},
        {one, 99.9, serious},
        {one, 100, critical},
        {two, 69.9, nominal},
        {two, 70, fair},
        {two, 84.9, fair},
        {two, 85, serious},
        {two, 105, critical},
        {close, 79.9, nominal},
        {close, 80, fair},
        {close, 85, serious},
        {criticalAlone, 99.9, nominal},
        {criticalAlone, 100, critical},
        {{}, 200, nominal},
    };
    for (const auto& row : rows)
        EXPECT_EQ(thermalState(row.temperature, row.points), row.state)
            << row.points.lowestPassive.value_or(0) << " " << row.temperature;
}

TEST(TripPoints, takeInWhatIsASign) {
    TripPoints points;
    points = adding(points, "active", 50);
    points = adding(points, "passive", 0);
    points = adding(points, "passive", 44.9);
    points = adding(points, "critical", 130.1);
    points = adding(points, "unheard-of", 80);
    EXPECT_EQ(points, TripPoints());
    points = adding(points, "passive", 85);
    points = adding(points, "passive", 45);
    points = adding(points, "passive", 60);
    points = adding(points, "critical", 130);
    points = adding(points, "hot", 120);
    EXPECT_EQ(points, (TripPoints{45, 85, 120}));
}

TEST(ThermalZones, followTheTemperature) {
    const Machine machine("arm-board");
    auto sensors = machine.sensors();
    const std::pair<const char*, ThermalState> rows[] = {
        {"69999\n", nominal}, {"70000\n", fair}, {"80000\n", serious}, {"110000\n", critical}, {"garbage\n", nominal}};
    for (const auto& [temperature, state] : rows) {
        machine.folder.write("sys/class/thermal/thermal_zone0/temp", temperature);
        EXPECT_EQ(sensors.thermalState(), state) << temperature;
    }
    std::filesystem::remove(machine.folder.path() / "sys/class/thermal/thermal_zone0/temp");
    EXPECT_EQ(sensors.thermalState(), nominal);
}

TEST(ThermalZones, takeAProcessorThatKeepsSlowingItselfForSerious) {
    const Machine machine("laptop-on-battery");
    auto sensors = machine.sensors();
    const struct {
        const char* count;
        ThermalState state;
    } rows[] = {{"7", nominal},  {"7", nominal},  {"8", fair},     {"8", nominal}, {"9", fair},
                {"12", serious}, {"13", serious}, {"13", nominal}, {"0", nominal}, {"1", fair}};
    for (const auto& row : rows) {
        machine.folder.write("sys/devices/system/cpu/cpu0/thermal_throttle/package_throttle_count",
                             row.count + std::string("\n"));
        EXPECT_EQ(sensors.thermalState(), row.state) << row.count;
    }
}

TEST(ThermalZones, countTheCoresWhereThePackageIsNotCounted) {
    const Machine machine("laptop-two-batteries");
    auto sensors = machine.sensors();
    EXPECT_EQ(sensors.thermalState(), nominal);
    machine.folder.write("sys/devices/system/cpu/cpu0/thermal_throttle/core_throttle_count", "2\n");
    EXPECT_EQ(sensors.thermalState(), fair);
}

// --- Power -----------------------------------------------------------------------------------------------------------

TEST(LinuxSensors, tellTheBatteryOnEachMachine) {
    const struct {
        const char* machine;
        std::optional<BatteryReading> battery;
    } rows[] = {
        {"laptop-on-battery", BatteryReading{.current = 24'000'000, .full = 50'000'000, .minutesToEmpty = 180}},
        // 20 of 20 and 30 of 60 watt-hours, with 24 watts flowing in.
        {"laptop-two-batteries",
         BatteryReading{
             .current = 50'000'000, .full = 80'000'000, .isCharging = true, .isPluggedIn = true, .minutesToFull = 75}},
        {"desktop-ryzen", std::nullopt},
        {"arm-board", std::nullopt},
        {"virtual-machine", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Machine(row.machine).sensors().battery(), row.battery) << row.machine;
}

PowerSupply battery(const std::string& properties) {
    return parsePowerSupply("Battery", properties);
}
PowerSupply mains(bool isOnline) {
    return parsePowerSupply("Mains", isOnline ? "POWER_SUPPLY_ONLINE=1\n" : "POWER_SUPPLY_ONLINE=0\n");
}
std::optional<BatteryReading> readingOf(const std::vector<PowerSupply>& supplies) {
    return batteryOf(supplies);
}

TEST(PowerSupply, isOfAKind) {
    using enum PowerSupply::Kind;
    const std::pair<const char*, PowerSupply::Kind> rows[] = {{"Battery", PowerSupply::Kind::battery},
                                                              {"Mains", PowerSupply::Kind::mains},
                                                              {"USB", PowerSupply::Kind::mains},
                                                              {"USB_PD", PowerSupply::Kind::mains},
                                                              {"USB_C", PowerSupply::Kind::mains},
                                                              {"Wireless", PowerSupply::Kind::mains},
                                                              {"BrickID", PowerSupply::Kind::mains},
                                                              {"UPS", other},
                                                              {"Unknown", other},
                                                              {"", other}};
    for (const auto& [type, kind] : rows)
        EXPECT_EQ(parsePowerSupply(type, "").kind, kind) << type;
}

TEST(PowerSupply, hasAStatusInAWord) {
    using enum PowerSupply::Status;
    const std::pair<const char*, PowerSupply::Status> rows[] = {
        {"Charging", charging}, {"Discharging", discharging}, {"Full", resting}, {"Not charging", resting},
        {"Unknown", unknown},   {"charging", unknown},        {"", unknown}};
    for (const auto& [word, status] : rows)
        EXPECT_EQ(battery("POWER_SUPPLY_STATUS=" + std::string(word) + "\n").status, status) << word;
    EXPECT_EQ(battery("").status, unknown);
}

TEST(PowerSupply, isReadFromMalformedTextToo) {
    EXPECT_EQ(battery("garbage\n=\nPOWER_SUPPLY_\nPOWER_SUPPLY_CAPACITY=x\nSTATUS=Full\nPOWER_SUPPLY_STATUS"),
              PowerSupply{.kind = PowerSupply::Kind::battery});
    EXPECT_EQ(battery("POWER_SUPPLY_ENERGY_NOW=5\nPOWER_SUPPLY_ENERGY_FULL=0\n").charge, std::nullopt);
    EXPECT_EQ(battery("POWER_SUPPLY_ENERGY_NOW=-5\nPOWER_SUPPLY_ENERGY_FULL=10\n").charge,
              (PowerSupply::Charge{0, 10, 0}));
    EXPECT_EQ(battery("POWER_SUPPLY_CHARGE_NOW=5\nPOWER_SUPPLY_CHARGE_FULL=10\nPOWER_SUPPLY_CURRENT_NOW=-2\n").charge,
              (PowerSupply::Charge{5, 10, 2}));
}

TEST(PowerSupply, isBoundedWhateverItClaims) {
    const auto huge = battery("POWER_SUPPLY_ENERGY_NOW=9223372036854775807\nPOWER_SUPPLY_ENERGY_FULL=1\n"
                              "POWER_SUPPLY_POWER_NOW=-9223372036854775808\nPOWER_SUPPLY_CAPACITY=900\n");
    EXPECT_EQ(huge.charge, (PowerSupply::Charge{1e15, 1, 1e15}));
    EXPECT_EQ(huge.percent, 100);
    EXPECT_EQ(battery("POWER_SUPPLY_CAPACITY=-1\n").percent, 0);
    // A charge of nothing at next to no volts is not one that can be told by.
    EXPECT_EQ(
        readingOf({battery("POWER_SUPPLY_CHARGE_NOW=5\nPOWER_SUPPLY_CHARGE_FULL=10\nPOWER_SUPPLY_VOLTAGE_NOW=1\n")}),
        std::nullopt);
}

TEST(Battery, thatIsNotThereOrIsOfAMouseDoesNotCount) {
    EXPECT_EQ(readingOf({}), std::nullopt);
    EXPECT_EQ(readingOf({mains(true)}), std::nullopt);
    EXPECT_EQ(readingOf({battery("POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_SCOPE=Device\n")}), std::nullopt);
    EXPECT_EQ(readingOf({battery("POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_PRESENT=0\n")}), std::nullopt);
    EXPECT_EQ(readingOf({battery("POWER_SUPPLY_STATUS=Discharging\n")}), std::nullopt) << "tells no charge";
    EXPECT_TRUE(readingOf({battery("POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_SCOPE=System\n")}));
}

TEST(Battery, isInPercentWhereItTellsNoMore) {
    const auto reading = readingOf({battery("POWER_SUPPLY_CAPACITY=41\nPOWER_SUPPLY_STATUS=Discharging\n")}).value();
    EXPECT_EQ(reading, (BatteryReading{.current = 41, .full = 100}));
    const auto mixed = readingOf(
        {battery("POWER_SUPPLY_CAPACITY=40\n"), battery("POWER_SUPPLY_CAPACITY=60\nPOWER_SUPPLY_ENERGY_NOW=6\n"
                                                        "POWER_SUPPLY_ENERGY_FULL=10\n")});
    EXPECT_EQ(mixed, (BatteryReading{.current = 50, .full = 100}));
}

TEST(Battery, isPluggedInWhenAnyMainsAre) {
    const auto inUse = [](const char* status) {
        return battery("POWER_SUPPLY_CAPACITY=50\nPOWER_SUPPLY_STATUS=" + std::string(status) + "\n");
    };
    const auto headset = parsePowerSupply("USB", "POWER_SUPPLY_ONLINE=1\nPOWER_SUPPLY_SCOPE=Device\n");
    const struct {
        std::vector<PowerSupply> supplies;
        bool isPluggedIn;
    } rows[] = {
        {{mains(false), inUse("Discharging")}, false},
        {{mains(true), inUse("Discharging")}, true}, // a charger that is too weak
        {{mains(false), mains(true), inUse("Charging")}, true},
        {{mains(false), inUse("Not charging")}, false},
        {{headset, inUse("Discharging")}, false},
        // Nothing tells of the mains.
        {{inUse("Charging")}, true},
        {{inUse("Full")}, true},
        {{inUse("Not charging")}, true},
        {{inUse("Discharging")}, false},
        {{inUse("Unknown")}, false},
        {{inUse("Full"), inUse("Discharging")}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readingOf(row.supplies).value().isPluggedIn, row.isPluggedIn) << &row - rows;
}

TEST(Battery, estimatesItsTimeByTheRate) {
    const auto with = [](const std::string& status, const std::string& rest) {
        return readingOf({battery("POWER_SUPPLY_STATUS=" + status +
                                  "\nPOWER_SUPPLY_ENERGY_NOW=30000000\nPOWER_SUPPLY_ENERGY_FULL=40000000\n" + rest)})
            .value();
    };
    const struct {
        const char* status;
        const char* rest;
        std::optional<std::int64_t> toEmpty;
        std::optional<std::int64_t> toFull;
    } rows[] = {
        {"Discharging", "POWER_SUPPLY_POWER_NOW=10000000\n", 180, {}},
        {"Discharging", "POWER_SUPPLY_POWER_NOW=-10000000\n", 180, {}},
        {"Discharging", "POWER_SUPPLY_POWER_NOW=0\n", {}, {}},
        {"Discharging", "", {}, {}},
        {"Discharging", "POWER_SUPPLY_POWER_NOW=625000\n", 2880, {}}, // two days
        {"Discharging", "POWER_SUPPLY_POWER_NOW=624000\n", {}, {}},
        {"Discharging", "POWER_SUPPLY_POWER_NOW=10000000\nPOWER_SUPPLY_TIME_TO_EMPTY_NOW=5430\n", 90, {}},
        {"Discharging", "POWER_SUPPLY_POWER_NOW=10000000\nPOWER_SUPPLY_TIME_TO_EMPTY_NOW=0\n", 180, {}},
        {"Charging", "POWER_SUPPLY_POWER_NOW=20000000\n", {}, 30},
        {"Charging", "POWER_SUPPLY_POWER_NOW=20000000\nPOWER_SUPPLY_TIME_TO_FULL_NOW=2400\n", {}, 40},
        {"Full", "POWER_SUPPLY_POWER_NOW=20000000\n", {}, {}},
    };
    for (const auto& row : rows) {
        const auto reading = with(row.status, row.rest);
        EXPECT_EQ(reading.minutesToEmpty, row.toEmpty) << row.status << " " << row.rest;
        EXPECT_EQ(reading.minutesToFull, row.toFull) << row.status << " " << row.rest;
    }
}

TEST(LinuxSensors, noticeAChargerThatIsPluggedIn) {
    const Machine machine("laptop-on-battery");
    auto sensors = machine.sensors();
    EXPECT_FALSE(sensors.battery().value().isPluggedIn);
    machine.folder.write("sys/class/power_supply/AC/uevent", "POWER_SUPPLY_ONLINE=1\n");
    EXPECT_TRUE(sensors.battery().value().isPluggedIn);
}

TEST(LinuxSensors, tellTheLowPowerModeByTheFirmwaresProfile) {
    const std::pair<const char*, bool> rows[] = {
        {"laptop-on-battery", true}, {"desktop-ryzen", false}, {"arm-board", false}, {"virtual-machine", false}};
    for (const auto& [machine, isLow] : rows)
        EXPECT_EQ(Machine(machine).sensors().isLowPowerModeEnabled(), isLow) << machine;
}

TEST(LinuxSensors, believeTheDesktopsProfileBeforeTheFirmwares) {
    const Machine machine("laptop-on-battery");
    std::optional<bool> said;
    LinuxSensors sensors({.sys = machine.folder.path() / "sys", .isSavingPower = [&] { return said; }});
    EXPECT_TRUE(sensors.isLowPowerModeEnabled()) << "the desktop says nothing";
    said = false;
    EXPECT_FALSE(sensors.isLowPowerModeEnabled());
    said = true;
    EXPECT_TRUE(sensors.isLowPowerModeEnabled());
}

// --- The drive -------------------------------------------------------------------------------------------------------

TEST(DiskUsage, isOfTheFirstFolderThatCanBeWrittenTo) {
    const TemporaryFolder folder;
    const std::vector<std::filesystem::path> there{"/no/such/folder", folder.path()};
    const auto usage = diskUsage(there);
    ASSERT_TRUE(usage);
    EXPECT_GT(usage->total, 0);
    EXPECT_GE(usage->free, 0);
    EXPECT_LE(usage->free, usage->total);
    // File systems that hold nothing have no room to tell of.
    const std::vector<std::filesystem::path> none{"/proc", "/no/such/folder"};
    EXPECT_EQ(diskUsage(none), std::nullopt);
    EXPECT_EQ(diskUsage({}), std::nullopt);
}

TEST(LinuxSensors, answerOnThisMachineWithWhatCanBeTrue) {
    LinuxSensors sensors({});
    for (const double temperature : sensors.chipTemperatures())
        EXPECT_LT(temperature, 200);
    EXPECT_LE(sensors.chipTemperatures().size(), ChipTemperatures::mostSensors);
    EXPECT_GE(sensors.battery().value_or(BatteryReading()).current, 0);
    sensors.thermalState();
    sensors.isLowPowerModeEnabled();
    sensors.systemDisk();
}

} // namespace
} // namespace kestrio
