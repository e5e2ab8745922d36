#include "Kestrio/Base/Calendar.h"

#include "Kestrio/Base/Mistake.h"

#include <cstdlib>
#include <map>
#include <unicode/calendar.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace kestrio {
namespace {

constexpr double millisecondsPerSecond = 1000.0;

icu::Locale gregorian(const std::string& name) {
    auto locale = icu::Locale::createCanonical(name.c_str());
    UErrorCode error = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", error);
    return locale;
}

void require(UErrorCode error, const char* what) {
    // Only a broken installation of ICU or an invalid pattern in the program leads here.
    if (U_FAILURE(error))
        programmersMistake(std::string("calendar: ") + what + ": " + u_errorName(error));
}

std::string utf8(const icu::UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

/// What the environment says about times; "C" and "POSIX" are nobody's language.
std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value)
            continue;
        std::string locale(value);
        locale = locale.substr(0, locale.find_first_of(".@"));
        return locale == "C" || locale == "POSIX" ? "en_US_POSIX" : locale;
    }
    return "en_US_POSIX";
}

} // namespace

struct Calendar::Parts {
    Parts(icu::Locale aLocale, std::unique_ptr<icu::TimeZone> aZone)
        : locale(std::move(aLocale)), zone(std::move(aZone)) {
        UErrorCode error = U_ZERO_ERROR;
        calendar.reset(icu::Calendar::createInstance(*zone, locale, error));
        require(error, "no calendar");
        calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
        calendar->setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
        if (auto* gregorianCalendar = dynamic_cast<icu::GregorianCalendar*>(calendar.get())) {
            gregorianCalendar->setGregorianChange(-8.64e15, error); // the present rules for all time
            require(error, "no proleptic calendar");
        }
    }

    icu::SimpleDateFormat& format(const icu::UnicodeString& pattern) {
        auto& found = formats[pattern];
        if (!found) {
            UErrorCode error = U_ZERO_ERROR;
            found = std::make_unique<icu::SimpleDateFormat>(pattern, locale, error);
            require(error, "no format");
            found->setTimeZone(*zone);
        }
        return *found;
    }

    void set(Date date) {
        UErrorCode error = U_ZERO_ERROR;
        calendar->setTime(date.seconds() * millisecondsPerSecond, error);
        require(error, "a time out of range");
    }

    Date get() {
        UErrorCode error = U_ZERO_ERROR;
        const double milliseconds = calendar->getTime(error);
        require(error, "a time out of range");
        return Date(milliseconds / millisecondsPerSecond);
    }

    int field(UCalendarDateFields which) {
        UErrorCode error = U_ZERO_ERROR;
        const auto value = calendar->get(which, error);
        require(error, "no such field");
        return value;
    }

    void add(UCalendarDateFields which, int amount) {
        UErrorCode error = U_ZERO_ERROR;
        calendar->add(which, amount, error);
        require(error, "a time out of range");
    }

    void toStartOfDay() {
        calendar->set(UCAL_HOUR_OF_DAY, 0);
        calendar->set(UCAL_MINUTE, 0);
        calendar->set(UCAL_SECOND, 0);
        calendar->set(UCAL_MILLISECOND, 0);
    }

    /// From the start of the day on which `moveToStart` leaves the calendar to the start of the day `amount` units on.
    template <class MoveToStart>
    DateInterval interval(Date date, UCalendarDateFields unit, MoveToStart moveToStart) {
        set(date);
        moveToStart();
        toStartOfDay();
        const auto start = get();
        add(unit, 1);
        toStartOfDay(); // a start that the clocks skipped must not shift the end
        return {start, get()};
    }

    icu::Locale locale;
    std::unique_ptr<icu::TimeZone> zone;
    std::unique_ptr<icu::Calendar> calendar;
    std::unique_ptr<icu::DateTimePatternGenerator> patterns; // 180 µs to make, so made at first need
    std::map<std::string, icu::UnicodeString> bestPatterns;
    std::map<icu::UnicodeString, std::unique_ptr<icu::SimpleDateFormat>> formats; // 12 µs each to make
    std::map<int, icu::number::LocalizedNumberFormatter> decimals;                // by digits after the separator
};

Calendar::Calendar(const std::string& locale, const std::string& timeZone)
    : parts_(std::make_unique<Parts>(gregorian(locale), std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(
                                                            icu::UnicodeString::fromUTF8(timeZone))))) {}

Calendar Calendar::current() {
    const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString id;
    return Calendar(environmentLocale(), utf8(host->getID(id)));
}

Calendar::Calendar(const Calendar& other)
    : parts_(
          std::make_unique<Parts>(other.parts_->locale, std::unique_ptr<icu::TimeZone>(other.parts_->zone->clone()))) {}

Calendar& Calendar::operator=(const Calendar& other) {
    if (this != &other)
        *this = Calendar(other);
    return *this;
}

Calendar::Calendar(Calendar&&) noexcept = default;
Calendar& Calendar::operator=(Calendar&&) noexcept = default;
Calendar::~Calendar() = default;

std::string Calendar::locale() const {
    return parts_->locale.getBaseName();
}

std::string Calendar::timeZone() const {
    icu::UnicodeString id;
    return utf8(parts_->zone->getID(id));
}

DateInterval Calendar::day(Date date) const {
    return parts_->interval(date, UCAL_DAY_OF_MONTH, [] {});
}

DateInterval Calendar::weekOfYear(Date date) const {
    return parts_->interval(date, UCAL_WEEK_OF_YEAR, [this] {
        UErrorCode error = U_ZERO_ERROR;
        const int first = parts_->calendar->getFirstDayOfWeek(error);
        const int past = (parts_->field(UCAL_DAY_OF_WEEK) - first + 7) % 7;
        parts_->add(UCAL_DAY_OF_MONTH, -past);
    });
}

DateInterval Calendar::month(Date date) const {
    return parts_->interval(date, UCAL_MONTH, [this] { parts_->calendar->set(UCAL_DAY_OF_MONTH, 1); });
}

Date Calendar::addingDays(Date date, int days) const {
    parts_->set(date);
    parts_->add(UCAL_DAY_OF_MONTH, days);
    return parts_->get();
}

Date Calendar::addingWeeks(Date date, int weeks) const {
    parts_->set(date);
    parts_->add(UCAL_WEEK_OF_YEAR, weeks);
    return parts_->get();
}

Date Calendar::addingMonths(Date date, int months) const {
    parts_->set(date);
    parts_->add(UCAL_MONTH, months);
    return parts_->get();
}

Calendar::Components Calendar::components(Date date) const {
    parts_->set(date);
    return {parts_->field(UCAL_YEAR),        parts_->field(UCAL_MONTH) + 1, parts_->field(UCAL_DAY_OF_MONTH),
            parts_->field(UCAL_HOUR_OF_DAY), parts_->field(UCAL_MINUTE),    parts_->field(UCAL_SECOND),
            parts_->field(UCAL_DAY_OF_WEEK)};
}

Date Calendar::date(int year, int month, int day, int hour, int minute, int second) const {
    parts_->calendar->clear();
    parts_->calendar->set(year, month - 1, day, hour, minute, second);
    return parts_->get();
}

int Calendar::secondsFromUTC(Date date) const {
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t standard = 0;
    std::int32_t summer = 0;
    parts_->zone->getOffset(date.seconds() * millisecondsPerSecond, false, standard, summer, error);
    require(error, "no offset");
    return (standard + summer) / static_cast<int>(millisecondsPerSecond);
}

std::string Calendar::formatted(Date date, const std::string& pattern) const {
    icu::UnicodeString result;
    parts_->format(icu::UnicodeString::fromUTF8(pattern)).format(date.seconds() * millisecondsPerSecond, result);
    return utf8(result);
}

std::string Calendar::localized(Date date, const std::string& skeleton) const {
    auto found = parts_->bestPatterns.find(skeleton);
    if (found == parts_->bestPatterns.end()) {
        UErrorCode error = U_ZERO_ERROR;
        if (!parts_->patterns)
            parts_->patterns.reset(icu::DateTimePatternGenerator::createInstance(parts_->locale, error));
        require(error, "no patterns");
        auto pattern = parts_->patterns->getBestPattern(icu::UnicodeString::fromUTF8(skeleton), error);
        require(error, "no pattern");
        found = parts_->bestPatterns.emplace(skeleton, std::move(pattern)).first;
    }
    icu::UnicodeString result;
    parts_->format(found->second).format(date.seconds() * millisecondsPerSecond, result);
    return utf8(result);
}

std::string Calendar::decimal(double value, int fractionDigits) const {
    auto found = parts_->decimals.find(fractionDigits);
    if (found == parts_->decimals.end()) {
        auto formatter = icu::number::NumberFormatter::withLocale(parts_->locale)
                             .precision(icu::number::Precision::fixedFraction(fractionDigits));
        found = parts_->decimals.emplace(fractionDigits, std::move(formatter)).first;
    }
    UErrorCode error = U_ZERO_ERROR;
    const auto number = found->second.formatDouble(value, error);
    const auto text = number.toString(error);
    require(error, "no number");
    return utf8(text);
}

} // namespace kestrio
