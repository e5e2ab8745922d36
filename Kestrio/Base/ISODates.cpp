#include "Kestrio/Base/ISODates.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>

namespace kestrio {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Moment = std::chrono::sys_time<milliseconds>;

constexpr std::int64_t millisecondsPerSecond = 1000;
constexpr Date firstMoment{-62'135'596'800};    // 0001-01-01
constexpr Date lastMoment{253'402'300'799.999}; // the last millisecond of 9999
constexpr int largestOffset = 24 * 3600 - 1;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes a text apart from its front. What isn't there makes it fail, and then it stays failed.
class Taker {
public:
    explicit Taker(std::string_view text) : rest_(text) {}

    bool isDone() const { return !failed_ && rest_.empty(); }
    bool isAtDigit() const { return !rest_.empty() && isDigit(rest_.front()); }

    /// A number of exactly so many digits.
    int number(std::size_t digits) {
        int value = 0;
        for (; digits > 0; --digits) {
            if (!isAtDigit()) {
                failed_ = true;
                return 0;
            }
            value = value * 10 + (rest_.front() - '0');
            rest_.remove_prefix(1);
        }
        return value;
    }

    bool skip(char c) {
        if (rest_.empty() || rest_.front() != c)
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    void require(char c) {
        if (!skip(c))
            failed_ = true;
    }

    /// The digits of a fraction, at least one, to thousandths.
    int thousandths() {
        int value = number(1) * 100;
        for (int weight = 10; isAtDigit(); weight /= 10)
            value += number(1) * weight;
        return value;
    }

private:
    std::string_view rest_;
    bool failed_ = false;
};

std::optional<seconds> takeOffset(Taker& text) {
    if (text.skip('Z') || text.skip('z'))
        return seconds(0);
    const int sign = text.skip('-') ? -1 : 1;
    if (sign > 0)
        text.require('+');
    const int hours = text.number(2);
    const bool hasColons = text.skip(':');
    const int minutes = hasColons || text.isAtDigit() ? text.number(2) : 0;
    const int rest = (hasColons && text.skip(':')) || (!hasColons && text.isAtDigit()) ? text.number(2) : 0;
    if (hours > 23 || minutes > 59 || rest > 59)
        return std::nullopt;
    return seconds(sign * (hours * 3600 + minutes * 60 + rest));
}

std::string offsetText(int secondsFromUTC) {
    if (secondsFromUTC == 0)
        return "Z";
    const int size = std::abs(secondsFromUTC);
    auto text = fmt::format("{}{:02}:{:02}", secondsFromUTC < 0 ? '-' : '+', size / 3600, size / 60 % 60);
    return size % 60 == 0 ? text : fmt::format("{}:{:02}", text, size % 60);
}

} // namespace

std::string isoDateTime(Date date, int secondsFromUTC) {
    const int offset = std::clamp(secondsFromUTC, -largestOffset, largestOffset);
    const Date local = std::clamp(date + Seconds(offset), firstMoment, lastMoment);
    const Moment moment(milliseconds(std::llround(local.seconds() * millisecondsPerSecond)));
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date_(day);
    const std::chrono::hh_mm_ss time(moment - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}{}", static_cast<int>(date_.year()),
                       static_cast<unsigned>(date_.month()), static_cast<unsigned>(date_.day()), time.hours().count(),
                       time.minutes().count(), time.seconds().count(), time.subseconds().count(), offsetText(offset));
}

std::optional<Date> parseISODateTime(std::string_view text) {
    Taker taker(text);
    const int year = taker.number(4);
    taker.require('-');
    const auto month = static_cast<unsigned>(taker.number(2));
    taker.require('-');
    const auto day = static_cast<unsigned>(taker.number(2));
    taker.require('T');
    const int hour = taker.number(2);
    taker.require(':');
    const int minute = taker.number(2);
    taker.require(':');
    const int second = taker.number(2);
    const int thousandths = taker.skip('.') ? taker.thousandths() : 0;
    const auto offset = takeOffset(taker);

    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month), std::chrono::day(day)};
    if (!taker.isDone() || !offset || year == 0 || !date.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const auto local = std::chrono::sys_days(date).time_since_epoch() + std::chrono::hours(hour) +
                       std::chrono::minutes(minute) + seconds(second);
    const auto whole = seconds(local - *offset).count() * millisecondsPerSecond + thousandths;
    return Date(static_cast<double>(whole) / static_cast<double>(millisecondsPerSecond));
}

} // namespace kestrio
