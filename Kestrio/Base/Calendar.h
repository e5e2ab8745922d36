// Days, weeks and months as the person's locale and time zone draw them, and dates and numbers in the locale's own
// words.
//
// A calendar is a value-like object with caches inside: used on one queue, copied for another. The Gregorian calendar
// is asked for by name, so that a locale with another traditional calendar still gets the days the program counts.
#pragma once

#include "Kestrio/Base/Date.h"

#include <memory>
#include <string>

namespace kestrio {

class Calendar {
public:
    /// `locale` as in "en_GB" or "en-GB"; `timeZone` an Olson name as in "Europe/Berlin". Unknown names fall back to
    /// the root locale and to GMT.
    Calendar(const std::string& locale, const std::string& timeZone);

    /// The locale that the environment names for times (LC_ALL, LC_TIME, LANG) and the system's time zone.
    static Calendar current();

    Calendar(const Calendar&);
    Calendar& operator=(const Calendar&);
    Calendar(Calendar&&) noexcept;
    Calendar& operator=(Calendar&&) noexcept;
    ~Calendar();

    std::string locale() const;
    std::string timeZone() const;

    /// The full hour on the zone's clocks that contains the date. Where the clocks change within an hour it is cut
    /// there, so that the hours of a day always follow one another without a gap.
    DateInterval hour(Date date) const;

    /// The intervals that contain the date. A day lasts 23 to 25 hours where the clocks change; a week begins on the
    /// locale's first weekday.
    DateInterval day(Date date) const;
    DateInterval weekOfYear(Date date) const;
    DateInterval month(Date date) const;

    Date startOfDay(Date date) const { return day(date).start; }

    /// The same time of day some days, weeks or months away; a time that the clocks skip becomes the next that exists,
    /// and a day that the month lacks becomes its last.
    Date addingDays(Date date, int days) const;
    Date addingWeeks(Date date, int weeks) const;
    Date addingMonths(Date date, int months) const;

    bool isSameDay(Date a, Date b) const { return day(a).contains(b); }

    struct Components {
        int year, month, day, hour, minute, second; // month and day count from 1
        int weekday;                                // 1 is Sunday
        friend bool operator==(const Components&, const Components&) = default;
    };
    Components components(Date date) const;

    /// The moment at which the zone's clocks first show these components; overflowing ones carry over.
    Date date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) const;

    /// By how much the zone's clocks are ahead of UTC at that moment; negative where they are behind.
    int secondsFromUTC(Date date) const;

    /// The date by a Unicode pattern that is taken literally, such as "yyyy-MM-dd HH:mm".
    std::string formatted(Date date, const std::string& pattern) const;

    /// The date with the parts that a Unicode skeleton names, such as "EEEEdMMM" or "jmm", in the order, the words and
    /// the hour cycle of the locale.
    std::string localized(Date date, const std::string& skeleton) const;

    /// The number with so many digits after the decimal separator, halves to the even digit, in the locale's digits.
    std::string decimal(double value, int fractionDigits) const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace kestrio
