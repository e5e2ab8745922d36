#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace kestrio::Fmt {
namespace {

/// As an integer, within what a double counts exactly; what is not a number is nothing.
std::int64_t whole(double value) {
    constexpr double most = 9'007'199'254'740'992; // 2 to the 53rd
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, -most, most));
}

std::string percentOf(double share) {
    return fmt::format("{}%", whole(std::round(share * 100)));
}

std::string shortTime(Date date, const Calendar& calendar) {
    return calendar.localized(date, "jmm");
}

/// Rounded to so many decimals, of which those at the end that are zeros are left out.
std::string shortDecimal(double value, int mostDecimals, const Calendar& calendar) {
    int decimals = mostDecimals;
    for (double scaled = std::round(value * std::pow(10, decimals)); decimals > 0 && std::fmod(scaled, 10) == 0;
         scaled /= 10)
        --decimals;
    return calendar.decimal(value, decimals);
}

struct Unit {
    const char* name;
    int decimals;
};
constexpr Unit units[] = {{"bytes", 0}, {"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}, {"EB", 2}};

std::string byteCount(double bytes, double base, const Calendar& calendar) {
    const auto* unit = std::begin(units);
    double value = bytes;
    // A value that rounds up to the base is one of the next unit: never "1,024 MB".
    const auto shown = [&] { return std::round(value * std::pow(10, unit->decimals)) / std::pow(10, unit->decimals); };
    while (shown() >= base && std::next(unit) != std::end(units)) {
        value /= base;
        ++unit;
    }
    return shortDecimal(value, unit->decimals, calendar) + " " + unit->name;
}

} // namespace

std::string duration(Seconds length) {
    const auto seconds = whole(std::round(length.count()));
    if (seconds < 60)
        return fmt::format("{}s", seconds);
    const auto minutes = seconds / 60;
    if (minutes < 60)
        return fmt::format("{}m", minutes);
    if (minutes % 60 == 0)
        return fmt::format("{}h", minutes / 60);
    return fmt::format("{}h {}m", minutes / 60, minutes % 60);
}

std::string menuBar(Seconds length) {
    const auto minutes = whole(length.count() / 60);
    if (minutes < 60)
        return fmt::format("{}m", minutes);
    return fmt::format("{}h {}m", minutes / 60, minutes % 60);
}

std::string percent(double part, double total) {
    return total > 0 ? percentOf(part / total) : "0%";
}

std::optional<std::string> split(Seconds focused, Seconds alongside) {
    if (alongside < Seconds(1))
        return std::nullopt;
    const auto beside = duration(alongside) + " alongside";
    return focused < Seconds(1) ? beside : duration(focused) + " focused · " + beside;
}

std::string timeRange(Date a, Date b, const Calendar& calendar) {
    return shortTime(a, calendar) + " – " + shortTime(b, calendar);
}

std::string relativeDay(Date date, Date now, const Calendar& calendar) {
    const auto today = calendar.day(now);
    if (today.contains(date))
        return "Today";
    if (calendar.day(today.start - Seconds(1)).contains(date))
        return "Yesterday";
    return calendar.localized(date, "EEEEdMMM");
}

std::string lastSeen(Date date, Date now, const Calendar& calendar) {
    return calendar.isSameDay(now, date) ? shortTime(date, calendar) : calendar.localized(date, "dMMMjmm");
}

std::string cores(double value, const Calendar& calendar) {
    return value < 1 ? percentOf(value) + " of a core" : calendar.decimal(value, 1) + " cores";
}

std::string seconds(std::int64_t milliseconds, const Calendar& calendar) {
    constexpr std::int64_t longestWithDecimal = 9'999;
    if (milliseconds <= longestWithDecimal)
        return calendar.decimal(static_cast<double>(milliseconds) / 1000, 1) + " s";
    return fmt::format("{} s", milliseconds / 1000);
}

std::string memory(std::uint64_t bytes, const Calendar& calendar) {
    return byteCount(static_cast<double>(bytes), 1024, calendar);
}

std::string fileSize(std::uint64_t bytes, const Calendar& calendar) {
    return byteCount(static_cast<double>(bytes), 1000, calendar);
}

std::string speed(double bytesPerSecond, const Calendar& calendar) {
    const bool isNumber = std::isfinite(bytesPerSecond) && bytesPerSecond > 0;
    return byteCount(isNumber ? bytesPerSecond : 0, 1000, calendar) + "/s";
}

} // namespace kestrio::Fmt
