#include "Kestrio/Platform/Linux/PowerSupplies.h"

#include "Kestrio/Platform/Linux/KernelText.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <vector>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Beyond this a rate was noise around zero.
constexpr double longestMinutes = 2 * 24 * 60;

/// Far beyond what can be carried, and exact in whole numbers.
constexpr double mostCharge = 1e15;

using Properties = std::map<std::string_view, std::string_view>;

Properties parseProperties(std::string_view text) {
    constexpr std::string_view prefix = "POWER_SUPPLY_";
    Properties properties;
    while (const auto line = nextLine(text)) {
        const auto equals = line->find('=');
        if (line->starts_with(prefix) && equals != std::string_view::npos)
            properties[line->substr(prefix.size(), equals - prefix.size())] = line->substr(equals + 1);
    }
    return properties;
}

std::optional<std::int64_t> number(const Properties& properties, std::string_view key) {
    const auto found = properties.find(key);
    return found == properties.end() ? std::nullopt : parsedNumber<std::int64_t>(found->second);
}

PowerSupply::Kind kindOf(std::string_view type) {
    if (type == "Battery")
        return PowerSupply::Kind::battery;
    if (type == "Mains" || type.starts_with("USB") || type == "BrickID" || type == "Wireless")
        return PowerSupply::Kind::mains;
    return PowerSupply::Kind::other;
}

PowerSupply::Status statusOf(std::string_view word) {
    if (word == "Charging")
        return PowerSupply::Status::charging;
    if (word == "Discharging")
        return PowerSupply::Status::discharging;
    if (word == "Full" || word == "Not charging")
        return PowerSupply::Status::resting;
    return PowerSupply::Status::unknown;
}

std::optional<PowerSupply::Charge> chargeOf(const Properties& properties, std::string_view now, std::string_view full,
                                            std::string_view rate, double unit) {
    const auto nowValue = number(properties, now);
    const auto fullValue = number(properties, full);
    if (!nowValue || !fullValue || *fullValue <= 0)
        return std::nullopt;
    const auto amount = [unit](std::int64_t value) {
        return std::clamp(static_cast<double>(value) * unit, 0.0, mostCharge);
    };
    // Some drivers give what flows out a minus.
    const auto flow = number(properties, rate).value_or(0);
    return PowerSupply::Charge{amount(*nowValue), amount(*fullValue),
                               std::min(std::abs(static_cast<double>(flow)) * unit, mostCharge)};
}

std::optional<PowerSupply::Charge> chargeOf(const Properties& properties) {
    if (const auto energy = chargeOf(properties, "ENERGY_NOW", "ENERGY_FULL", "POWER_NOW", 1))
        return energy;
    const auto microvolts = number(properties, "VOLTAGE_NOW").value_or(0);
    const double volts = microvolts > 0 ? static_cast<double>(microvolts) * 1e-6 : 1;
    return chargeOf(properties, "CHARGE_NOW", "CHARGE_FULL", "CURRENT_NOW", volts);
}

std::optional<std::int64_t> percentOf(const Properties& properties) {
    const auto percent = number(properties, "CAPACITY");
    return percent ? std::optional(std::clamp<std::int64_t>(*percent, 0, 100)) : std::nullopt;
}

std::optional<std::int64_t> wholeMinutes(double minutes) {
    return minutes >= 1 && minutes <= longestMinutes ? std::optional(static_cast<std::int64_t>(minutes)) : std::nullopt;
}

using Batteries = std::vector<PowerSupply>;

bool anyIs(const Batteries& batteries, PowerSupply::Status status) {
    return std::any_of(batteries.begin(), batteries.end(),
                       [status](const auto& battery) { return battery.status == status; });
}

/// Of all batteries; absent when one of them does not tell.
std::optional<PowerSupply::Charge> chargeOfAll(const Batteries& batteries) {
    PowerSupply::Charge all;
    for (const auto& battery : batteries) {
        if (!battery.charge)
            return std::nullopt;
        all.now += battery.charge->now;
        all.full += battery.charge->full;
        all.rate += battery.charge->rate;
    }
    // Less than one of the unit is rounding.
    return all.full >= 1 ? std::optional(all) : std::nullopt;
}

std::optional<std::int64_t> meanPercent(const Batteries& batteries) {
    std::int64_t sum = 0;
    std::int64_t count = 0;
    for (const auto& battery : batteries)
        if (battery.percent) {
            sum += *battery.percent;
            ++count;
        }
    return count > 0 ? std::optional(sum / count) : std::nullopt;
}

/// The battery's own estimate where there is just one, else by the rate.
std::optional<std::int64_t> minutes(const Batteries& batteries, std::optional<std::int64_t> PowerSupply::*ownEstimate,
                                    double amount, double rate) {
    if (const auto seconds = batteries.front().*ownEstimate; batteries.size() == 1 && seconds && *seconds > 0)
        return wholeMinutes(static_cast<double>(*seconds) / 60);
    return rate > 0 ? wholeMinutes(amount / rate * 60) : std::nullopt;
}

bool isPluggedIn(std::span<const PowerSupply> supplies, const Batteries& batteries) {
    bool hasMains = false;
    for (const auto& supply : supplies) {
        if (supply.kind != PowerSupply::Kind::mains || supply.isOfDevice)
            continue;
        if (supply.isOnline)
            return true;
        hasMains = true;
    }
    // Where no supply tells of the mains, a battery that does not lose charge is on them.
    return !hasMains && !anyIs(batteries, PowerSupply::Status::discharging) &&
           (anyIs(batteries, PowerSupply::Status::charging) || anyIs(batteries, PowerSupply::Status::resting));
}

} // namespace

PowerSupply parsePowerSupply(std::string_view type, std::string_view text) {
    auto properties = parseProperties(text);
    PowerSupply supply{.kind = kindOf(type),
                       .isOfDevice = properties["SCOPE"] == "Device",
                       .isPresent = number(properties, "PRESENT").value_or(1) != 0,
                       .isOnline = number(properties, "ONLINE").value_or(0) > 0,
                       .status = statusOf(properties["STATUS"]),
                       .charge = chargeOf(properties),
                       .percent = percentOf(properties),
                       .secondsToEmpty = number(properties, "TIME_TO_EMPTY_NOW"),
                       .secondsToFull = number(properties, "TIME_TO_FULL_NOW")};
    return supply;
}

std::optional<BatteryReading> batteryOf(std::span<const PowerSupply> supplies) {
    Batteries batteries;
    std::copy_if(supplies.begin(), supplies.end(), std::back_inserter(batteries), [](const auto& supply) {
        return supply.kind == PowerSupply::Kind::battery && !supply.isOfDevice && supply.isPresent;
    });
    if (batteries.empty())
        return std::nullopt;
    const auto charge = chargeOfAll(batteries);
    const auto percent = meanPercent(batteries);
    if (!charge && !percent)
        return std::nullopt;
    BatteryReading reading{.current = charge ? std::llround(charge->now) : *percent,
                           .full = charge ? std::llround(charge->full) : 100,
                           .isCharging = anyIs(batteries, PowerSupply::Status::charging),
                           .isPluggedIn = isPluggedIn(supplies, batteries)};
    const auto amounts = charge.value_or(PowerSupply::Charge());
    if (reading.isCharging)
        reading.minutesToFull =
            minutes(batteries, &PowerSupply::secondsToFull, amounts.full - amounts.now, amounts.rate);
    else if (anyIs(batteries, PowerSupply::Status::discharging))
        reading.minutesToEmpty = minutes(batteries, &PowerSupply::secondsToEmpty, amounts.now, amounts.rate);
    return reading;
}

std::optional<BatteryReading> readBattery(const fs::path& sys) {
    std::vector<PowerSupply> supplies;
    std::error_code error;
    for (auto at = fs::directory_iterator(sys / "class/power_supply", error); !error && at != fs::directory_iterator();
         at.increment(error)) {
        const auto type = kernelValue(at->path() / "type");
        const auto properties = kernelValue(at->path() / "uevent");
        if (type && properties)
            supplies.push_back(parsePowerSupply(*type, *properties));
    }
    return batteryOf(supplies);
}

} // namespace kestrio
