#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/ISODates.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <unicode/smpdtfmt.h>

namespace kestrio {
namespace {

constexpr Date noon{1'700'049'600}; // 2023-11-15 12:00 UTC

TEST(ISODates, areReadInEveryFormAndNoOther) {
    struct Row {
        const char* text;
        std::optional<double> sinceNoon;
    };
    const Row table[] = {
        {"2023-11-15T12:00:00Z", 0.0},
        {"2023-11-15T12:00:00z", 0.0},
        {"2023-11-15T12:00:00.250Z", 0.25},
        {"2023-11-15T12:00:00.5Z", 0.5},
        {"2023-11-15T12:00:00.0009Z", 0.0},
        {"2023-11-15T12:00:00.1239999999999999999999Z", 0.123},
        {"2023-11-15T13:00:00+01:00", 0.0},
        {"2023-11-15T04:30:00.250-07:30", 0.25},
        {"2023-11-15T12:00:00-00:00", 0.0},
        {"2023-11-15T13:00:00+0100", 0.0},
        {"2023-11-15T13:00:00+01", 0.0},
        {"2023-11-15T12:00:30+00:00:30", 0.0},
        {"2023-11-15T12:00:30+000030", 0.0},
        {"2023-11-16T11:59:00+23:59", 0.0},
        {"", std::nullopt},
        {"2023", std::nullopt},
        {"2023-11-15", std::nullopt},
        {"2023-11-15T12:00:00", std::nullopt},
        {"2023-11-15T12:00Z", std::nullopt},
        {"2023-11-15 12:00:00Z", std::nullopt},
        {"2023-11-15t12:00:00Z", std::nullopt},
        {"2023-11-15T12:00:00.Z", std::nullopt},
        {"2023-11-15T12:00:00,250Z", std::nullopt},
        {"2023-11-15T12:00:00 Z", std::nullopt},
        {" 2023-11-15T12:00:00Z", std::nullopt},
        {"2023-11-15T12:00:00Z ", std::nullopt},
        {"2023-11-15T12:00:00Zx", std::nullopt},
        {"2023-1-5T1:2:3Z", std::nullopt},
        {"2023-11-15T9:00:00Z", std::nullopt},
        {"23-11-15T12:00:00Z", std::nullopt},
        {"12023-11-15T12:00:00Z", std::nullopt},
        {"-2023-11-15T12:00:00Z", std::nullopt},
        {"2023-02-29T12:00:00Z", std::nullopt},
        {"2023-00-15T12:00:00Z", std::nullopt},
        {"2023-13-15T12:00:00Z", std::nullopt},
        {"2023-11-00T12:00:00Z", std::nullopt},
        {"2023-11-31T12:00:00Z", std::nullopt},
        {"2023-11-15T24:00:00Z", std::nullopt},
        {"2023-11-15T12:60:00Z", std::nullopt},
        {"2023-11-15T12:00:60Z", std::nullopt},
        {"0000-11-15T12:00:00Z", std::nullopt},
        {"2023-11-15T12:00:00+1:00", std::nullopt},
        {"2023-11-15T12:00:00+01:0", std::nullopt},
        {"2023-11-15T12:00:00+01:", std::nullopt},
        {"2023-11-15T12:00:00+24:00", std::nullopt},
        {"2023-11-15T12:00:00+01:60", std::nullopt},
        {"2023-11-15T12:00:00+-1:00", std::nullopt},
        {"2023-11-15T12:00:00\xE2\x88\x92"
         "01:00",
         std::nullopt},
        {"2023-11-15T12:-5:00Z", std::nullopt},
        {"20231115T120000Z", std::nullopt},
    };
    for (const auto& row : table) {
        const auto found = parseISODateTime(row.text);
        EXPECT_EQ(found.has_value(), row.sinceNoon.has_value()) << row.text;
        if (found && row.sinceNoon) {
            EXPECT_EQ(found->seconds(), noon.seconds() + *row.sinceNoon) << row.text;
        }
    }
}

TEST(ISODates, areWrittenWithThreeDecimalsAndTheOffset) {
    struct Row {
        double seconds;
        int offset;
        const char* text;
    };
    const Row table[] = {
        {1'700'049'600, 0, "2023-11-15T12:00:00.000Z"},
        {1'700'049'600.25, 3600, "2023-11-15T13:00:00.250+01:00"},
        {1'700'049'600.1234, -27'000, "2023-11-15T04:30:00.123-07:30"},
        {1'700'049'600.9996, 0, "2023-11-15T12:00:01.000Z"},
        {-0.001, 0, "1969-12-31T23:59:59.999Z"},
        {0, 20'700, "1970-01-01T05:45:00.000+05:45"},
        {-3'000'000'000, -28'378, "1874-12-07T10:47:02.000-07:52:58"},
        {951'782'400, 0, "2000-02-29T00:00:00.000Z"},
        {-1e300, 0, "0001-01-01T00:00:00.000Z"},
        {1e300, 0, "9999-12-31T23:59:59.999Z"},
    };
    for (const auto& row : table)
        EXPECT_EQ(isoDateTime(Date(row.seconds), row.offset), row.text);
}

/// The library's reading of the same two forms, which need the whole text.
class LibraryReading {
public:
    std::optional<Date> read(const std::string& text) {
        const auto first = read(*withFraction_, text);
        return first ? first : read(*withoutFraction_, text);
    }

private:
    using Format = std::unique_ptr<icu::SimpleDateFormat>;

    static Format make(const char* pattern) {
        UErrorCode error = U_ZERO_ERROR;
        auto format = std::make_unique<icu::SimpleDateFormat>(pattern, icu::Locale("en_US_POSIX"), error);
        format->setLenient(false);
        format->adoptTimeZone(icu::TimeZone::createTimeZone("GMT"));
        return format;
    }
    static std::optional<Date> read(const icu::SimpleDateFormat& format, const std::string& text) {
        const auto unicode = icu::UnicodeString::fromUTF8(text);
        icu::ParsePosition position(0);
        const auto date = format.parse(unicode, position);
        if (position.getErrorIndex() >= 0 || position.getIndex() != unicode.length())
            return std::nullopt;
        return Date(date / 1000);
    }

    Format withFraction_ = make("yyyy-MM-dd'T'HH:mm:ss.SSSXXXXX");
    Format withoutFraction_ = make("yyyy-MM-dd'T'HH:mm:ssXXXXX");
};

TEST(ISODates, areReadAsTheLibraryReadsThem) {
    LibraryReading library;
    std::size_t good = 0;
    for (const char* day :
         {"1600-02-29", "1900-02-28", "1900-02-29", "1969-12-31", "1970-01-01", "2000-02-29", "2023-02-29",
          "2024-02-29", "2026-04-31", "2026-13-01", "2026-00-10", "2026-11-21", "2038-01-19", "9999-12-31"})
        for (const char* time : {"00:00:00", "23:59:59", "24:00:00", "12:60:00", "12:00:60", "02:30:00"})
            for (const char* fraction : {"", ".", ".0", ".001", ".999", ".9999", ".12", ".123456789"})
                for (const char* offset : {"Z", "z", "", "+00:00", "-00:00", "+05:45", "-11:30", "+14:00", "+23:59",
                                           "+24:00", "+0530", "+05", "-03:30:30", "+5:30", "x"}) {
                    const auto text = std::string(day) + "T" + time + fraction + offset;
                    const auto found = parseISODateTime(text);
                    EXPECT_EQ(found, library.read(text)) << text;
                    good += found ? 1 : 0;
                }
    EXPECT_GT(good, 2000u);
}

TEST(ISODates, comeBackToTheMillisecondInEveryZone) {
    rc::check([] {
        const auto milliseconds = *rc::gen::inRange<std::int64_t>(-60'000'000'000'000, 250'000'000'000'000);
        const auto offset = *rc::gen::inRange(-64'800, 64'801);
        const Date date(static_cast<double>(milliseconds) / 1000);
        RC_ASSERT(parseISODateTime(isoDateTime(date, offset)) == date);
    });
}

TEST(Calendar, knowsHowFarItsZoneIsAhead) {
    const Calendar berlin("en_GB", "Europe/Berlin");
    EXPECT_EQ(berlin.secondsFromUTC(noon), 3600);
    EXPECT_EQ(berlin.secondsFromUTC(noon - Seconds(120 * 86'400)), 7200);
    EXPECT_EQ(Calendar("en_GB", "America/St_Johns").secondsFromUTC(noon), -12'600);
}

} // namespace
} // namespace kestrio
