#include "Programs/CommandLine/ReportCommand.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Kestrio/Reports/ReportJSON.h"
#include "Programs/CommandLine/CurrentClassification.h"
#include "Programs/CommandLine/Moments.h"
#include "Programs/CommandLine/StoredSessions.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using Asked = std::variant<ReportRequest, std::string>;

/// A longer free range is drawn in days.
constexpr Seconds longestInHours{2 * 86'400.0};

std::string notAMoment(const char* option, const std::string& typed) {
    return fmt::format("{} \"{}\" is no moment that I understand; try {}", option, text::fittedToColumns(typed, 60),
                       momentForms);
}

Asked calendarRange(RangeMode mode, const char* option, const std::string& typed, Date now, const Calendar& calendar) {
    const auto anchor = parseMoment(typed, now, calendar);
    if (!anchor)
        return notAMoment(option, typed);
    return ReportRequest{interval(mode, *anchor, calendar),
                         granularity(mode),
                         {rangeTitle(mode, *anchor, now, calendar), rangeSubtitle(mode, *anchor, calendar)}};
}

Asked freeRange(const ReportOptions& options, Date now, const Calendar& calendar) {
    const auto fromText = options.from.value_or("today");
    const auto from = parseMoment(fromText, now, calendar);
    if (!from)
        return notAMoment("--from", fromText);
    const auto to = options.to ? parseMoment(*options.to, now, calendar) : now;
    if (!to)
        return notAMoment("--to", *options.to);
    if (*to <= *from)
        return "--to must be later than --from";
    const auto width = *to - *from <= longestInHours ? Granularity::hour : Granularity::day;
    const auto title = calendar.localized(*from, "dMMMyjmm") + " – " + calendar.localized(*to, "dMMMyjmm");
    return ReportRequest{{*from, *to}, width, {title, {}}};
}

Asked range(const ReportOptions& options, Date now, const Calendar& calendar) {
    const int said =
        options.day.has_value() + options.week.has_value() + options.month.has_value() + (options.from || options.to);
    if (said > 1)
        return "one range at a time: --day, --week, --month, or --from with --to";
    if (options.week)
        return calendarRange(RangeMode::week, "--week", *options.week, now, calendar);
    if (options.month)
        return calendarRange(RangeMode::month, "--month", *options.month, now, calendar);
    if (options.from || options.to)
        return freeRange(options, now, calendar);
    return calendarRange(RangeMode::day, "--day", options.day.value_or("today"), now, calendar);
}

std::string sectionNames() {
    std::string names;
    for (const auto section : allReportSections)
        names.append(names.empty() ? "" : ", ").append(rawValue(section));
    return names;
}

} // namespace

Asked reportRequest(const ReportOptions& options, Date now, const Calendar& calendar) {
    const auto section = reportSection(options.section.value_or("overview"));
    if (!section)
        return fmt::format("there is no section \"{}\"; there are {}", text::fittedToColumns(*options.section, 60),
                           sectionNames());
    auto asked = range(options, now, calendar);
    if (auto* request = std::get_if<ReportRequest>(&asked))
        request->section = *section;
    return asked;
}

int report(const ReportOptions& options) {
    const auto places = placesOrExit();
    const auto calendar = Calendar::current();
    const SystemClock clock;
    const auto now = clock.now();
    const auto asked = reportRequest(options, now, calendar);
    if (const auto* mistake = std::get_if<std::string>(&asked)) {
        complain(*mistake);
        return exitStatus::wrongUsage;
    }
    const auto& request = std::get<ReportRequest>(asked);
    const auto agent = runningAgent(places);
    const auto status = agent ? agent->status() : std::nullopt;
    return withStored(places, [&](Database* database) {
        const auto report = ReportBuilder::build(sessionsOf(database, status, request.interval), request.interval,
                                                 request.granularity, calendar, currentClassification(places, clock));
        if (options.json)
            printJSON(toJSON(report));
        else if (report.sessions.empty() && report.alongsideSessions.empty())
            complain("nothing was recorded in that time");
        else
            print(reportText(report, request.heading, request.section, now, calendar, outputStyle()));
        return exitStatus::done;
    });
}

} // namespace kestrio
