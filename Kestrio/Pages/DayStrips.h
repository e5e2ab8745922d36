// When the person was active: a strip per day through the hours, a thin line below it for what played alongside, and
// what is said of the moment under the pointer. Plain values; they look into the report that they were made of, which
// must outlive them.
#pragma once

#include "Kestrio/Pages/Rows.h"

#include <variant>

namespace kestrio {

/// The hours that all strips share, from 0 to 24.
struct HourRange {
    int lowest = 0;
    int highest = 24;
    Seconds span() const { return Seconds((highest - lowest) * 3600); }
    friend bool operator==(const HourRange&, const HourRange&) = default;
};

/// How strips and media lines stand, in points.
struct StripLayout {
    double strip = 0;
    double mediaLine = 0;
    bool isDense = false;  // short labels
    bool manyDays = false; // readouts name the day
    friend bool operator==(const StripLayout&, const StripLayout&) = default;
};

StripLayout stripLayout(std::size_t days);

struct StripRectangle {
    double x = 0;
    double width = 0;
    double opacity = 1;
    friend bool operator==(const StripRectangle&, const StripRectangle&) = default;
};

/// What one strip or media line draws. Equal ones need not be drawn again.
struct StripCanvas {
    static constexpr double hourLineWidth = 1;
    static constexpr double hourLineOpacity = 0.08;
    static constexpr double highlightInset = 0.75;
    static constexpr double highlightWidth = 1.5;
    static constexpr double cursorWidth = 1;
    static constexpr double cursorOpacity = 0.55;
    static constexpr double cornerRadius(double height) { return std::min(height / 2, 6.0); }

    std::span<const ClassifiedSession> sessions;
    Date origin; // at the left edge
    Seconds span{};
    int hours = 0;
    bool isFaded = false;
    std::optional<double> cursor;            // from 0 to 1 across
    std::optional<std::int64_t> highlighted; // a session's `id`

    double trackOpacity() const { return isFaded ? 0.05 : 0.07; }

    /// Where a session stands in a strip of this width; neighbours stay apart.
    StripRectangle rectangle(const ClassifiedSession& session, double width) const;

    /// The left edges of the lines between hours.
    std::vector<double> hourLines(double width) const;

    /// The left edge of the cursor's line.
    std::optional<double> cursorLine(double width) const;

    friend bool operator==(const StripCanvas& a, const StripCanvas& b);
};

struct DayStrips {
    static constexpr auto heading = "When you were active";
    static constexpr auto legendTitle = "Colour = kind of activity";
    static constexpr double leastLegendWidth = 130;

    struct Day {
        Date start;
        std::span<const ClassifiedSession> sessions;
        std::span<const ClassifiedSession> alongside;
        Seconds active() const; // of what was in front
    };
    struct HourMark {
        int hour = 0;
        std::string label;
        friend bool operator==(const HourMark&, const HourMark&) = default;
    };

    std::string explanation;
    std::vector<Day> days; // ascending
    HourRange hours;
    StripLayout layout;
    std::vector<HourMark> hourAxis;
    bool showsAlongside = false;
    std::vector<CategoryPill> legend;
    std::string words; // the strips for somebody who does not see them

    StripCanvas strip(const Day& day) const;
    StripCanvas mediaLine(const Day& day) const;
};

std::vector<DayStrips::Day> stripDays(const ActivityReport& report, const Calendar& calendar);
HourRange hourRange(std::span<const DayStrips::Day> days, const Calendar& calendar);

/// Every hour of the range, or every third where those would be fourteen or more.
std::vector<DayStrips::HourMark> hourAxis(HourRange hours, const Viewpoint& viewpoint);

DayStrips dayStrips(const ActivityReport& report, const Viewpoint& viewpoint);

/// How a strip's day is named at its left.
struct DayLabel {
    std::string title;
    std::optional<std::string> detail; // below the title
    std::optional<std::string> help;
    friend bool operator==(const DayLabel&, const DayLabel&) = default;
};

DayLabel dayLabel(const DayStrips::Day& day, bool isDense, const Calendar& calendar);

/// The moment under the pointer.
struct StripHover {
    Date day;
    bool isAlongside = false; // over the media line
    double fraction = 0;      // from 0 to 1 across
    Date time;
    std::optional<ClassifiedSession> session; // the nearest within four points
    friend bool operator==(const StripHover&, const StripHover&) = default;
};

/// `x` and `width` in points.
StripHover stripHover(const DayStrips& strips, const DayStrips::Day& day, bool isAlongside, double x, double width);

/// A symbol and a sentence.
struct ReadoutNote {
    std::string symbol;
    std::string text;
    friend bool operator==(const ReadoutNote&, const ReadoutNote&) = default;
};
struct ReadoutSession {
    AppIcon icon;
    std::string appName;
    std::string title;
    CategoryPill category;
    std::string times; // " · {times} · {duration}"
    friend bool operator==(const ReadoutSession&, const ReadoutSession&) = default;
};
using StripReadout = std::variant<ReadoutNote, ReadoutSession>;

StripReadout stripReadout(const std::optional<StripHover>& hover, bool manyDays, const Calendar& calendar);

/// The same in one sentence, to be read aloud.
std::string spoken(const StripReadout& readout);

/// Ways through the strips with the keyboard: to the neighbouring session, to the row above or below at the same time
/// of day, and to the ends of a row. Strips and media lines are rows alike; those without sessions are passed over.
enum class StripStep { earlier, later, above, below, first, last };

/// The middle of the session that a step leads to; at the end of the way the same again. From nowhere a step leads to
/// the first session of the first row, or for `earlier`, `above` and `last` to the last of the last row. Absent without
/// any sessions.
std::optional<StripHover> steppedHover(const DayStrips& strips, const std::optional<StripHover>& from, StripStep step);

} // namespace kestrio
