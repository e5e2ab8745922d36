#include "Programs/CommandLine/Moments.h"

#include "Kestrio/Base/Text.h"

#include <charconv>
#include <cmath>
#include <regex>

namespace kestrio {
namespace {

/// A group of digits that matched; 0 where the group did not take part.
int number(const std::csub_match& group) {
    int value = 0;
    std::from_chars(group.first, group.second, value);
    return value;
}

std::optional<double> secondsSince1970(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value >= distantPast.seconds() && value <= distantFuture.seconds() ? std::optional(value) : std::nullopt;
}

bool isTimeOfDay(int hour, int minute, int second) {
    return hour < 24 && minute < 60 && second < 60;
}

std::optional<Date> calendarMoment(const std::cmatch& parts, const Calendar& calendar) {
    const int year = number(parts[1]);
    const int month = number(parts[2]);
    const int day = number(parts[3]);
    const int hour = number(parts[4]);
    const int minute = number(parts[5]);
    const int second = number(parts[6]);
    if (!isTimeOfDay(hour, minute, second))
        return std::nullopt;
    const auto date = calendar.date(year, month, day, hour, minute, second);
    const auto found = calendar.components(date);
    if (date < distantPast || date > distantFuture)
        return std::nullopt;
    // Overflow would carry the 31st of April into May.
    return found.year == year && found.month == month && found.day == day ? std::optional(date) : std::nullopt;
}

} // namespace

std::optional<Seconds> parseLength(std::string_view text) {
    static const std::regex pattern("(?:(\\d{1,5})d)?(?:(\\d{1,5})h)?(?:(\\d{1,6})m(?:in)?)?(?:(\\d{1,7})s)?");
    std::cmatch parts;
    if (text.empty() || !std::regex_match(text.data(), text.data() + text.size(), parts, pattern))
        return std::nullopt;
    const double length =
        86'400.0 * number(parts[1]) + 3600.0 * number(parts[2]) + 60.0 * number(parts[3]) + number(parts[4]);
    return length > 0 ? std::optional(Seconds(length)) : std::nullopt;
}

std::optional<Date> parseMoment(std::string_view untrimmed, Date now, const Calendar& calendar) {
    const auto text = text::trimmed(untrimmed);
    if (text == "now")
        return now;
    if (text == "today")
        return calendar.startOfDay(now);
    if (text == "yesterday")
        return calendar.startOfDay(calendar.addingDays(now, -1));
    if (text == "tomorrow")
        return calendar.day(now).end;
    if (text.size() > 1 && text.front() == '@') {
        const auto seconds = secondsSince1970(text.substr(1));
        return seconds ? std::optional(Date(*seconds)) : std::nullopt;
    }
    if (text.size() > 1 && text.front() == '-')
        if (const auto length = parseLength(text.substr(1)))
            return now - *length;
    if (constexpr std::string_view ago = " ago"; text.size() > ago.size() && text.ends_with(ago))
        if (const auto length = parseLength(text::trimmed(text.substr(0, text.size() - ago.size()))))
            return now - *length;

    std::cmatch parts;
    static const std::regex timeOfDay("(\\d{1,2}):(\\d{2})(?::(\\d{2}))?");
    if (std::regex_match(text.data(), text.data() + text.size(), parts, timeOfDay)) {
        const auto today = calendar.components(now);
        const int hour = number(parts[1]);
        const int minute = number(parts[2]);
        const int second = number(parts[3]);
        if (!isTimeOfDay(hour, minute, second))
            return std::nullopt;
        return calendar.date(today.year, today.month, today.day, hour, minute, second);
    }
    static const std::regex dateAndTime("(\\d{4})-(\\d{2})-(\\d{2})(?:[ T](\\d{1,2}):(\\d{2})(?::(\\d{2}))?)?");
    if (std::regex_match(text.data(), text.data() + text.size(), parts, dateAndTime))
        return calendarMoment(parts, calendar);
    return std::nullopt;
}

} // namespace kestrio
