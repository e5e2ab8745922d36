#include "Kestrio/Pages/Settings/ScheduleEditor.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr int minutesPerHour = 60;
constexpr int minutesPerDay = 24 * minutesPerHour;

/// A day of the first week of 2001, which began on a Monday: days are named after those.
Date dayOfWeekday(int number, const Calendar& calendar) {
    constexpr int sunday = 7;
    return calendar.date(2001, 1, number == 1 ? sunday : number - 1, 12);
}

std::vector<ScheduleEditor::Weekday> weekdays(const std::set<int>& on, const Calendar& calendar) {
    std::vector<ScheduleEditor::Weekday> days;
    for (const int number : ScheduleEditor::weekdayOrder) {
        const auto day = dayOfWeekday(number, calendar);
        days.push_back(
            {number, calendar.formatted(day, "ccccc"), calendar.formatted(day, "cccc"), on.contains(number)});
    }
    return days;
}

SettingRow tierRow(const KnownApp& app, tindra::AppTier tier) {
    return {.id = app.id,
            .title = app.name,
            .control = OptimizationSettings::tierPicker(tier),
            .icon = AppIcon{app.id},
            .titleKind = SettingTitle::name};
}

ScheduleEditor editor(const tindra::Schedule& schedule, const std::vector<KnownApp>& apps, const Calendar& calendar) {
    ScheduleEditor shown{.id = tindra::text(schedule.id),
                         .name = schedule.name,
                         .isEnabled = schedule.isEnabled,
                         .start = timeOfDay(schedule.window.start, calendar),
                         .end = timeOfDay(schedule.window.end, calendar),
                         .weekdays = weekdays(schedule.window.weekdays, calendar),
                         .apps = {},
                         .addable = {}};
    for (const auto& app : apps) {
        if (const auto found = schedule.tiers.find(app.id); found != schedule.tiers.end())
            shown.apps.push_back(tierRow(app, found->second));
        else
            shown.addable.push_back(app);
    }
    return shown;
}

/// The number that the text begins with, which goes from the text.
std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto taken = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto length = static_cast<std::size_t>(taken.ptr - text.data());
    if (taken.ec != std::errc() || number < 0 || length > 2)
        return std::nullopt;
    text.remove_prefix(length);
    return number;
}

/// The hour that a half of the day makes of it; absent for an hour that no half has.
std::optional<int> hourOfHalf(int hour, std::string_view half) {
    constexpr int noon = 12;
    if (half.empty())
        return hour;
    if (hour < 1 || hour > noon)
        return std::nullopt;
    if (half == "am" || half == "a.m.")
        return hour % noon;
    if (half == "pm" || half == "p.m.")
        return hour % noon + noon;
    return std::nullopt;
}

} // namespace

std::vector<ScheduleEditor> scheduleEditors(const tindra::OptimizerRules& rules, const std::vector<KnownApp>& apps,
                                            const Calendar& calendar) {
    std::vector<ScheduleEditor> editors;
    for (const auto& schedule : rules.schedules)
        editors.push_back(editor(schedule, apps, calendar));
    return editors;
}

std::string timeOfDay(int minutes, const Calendar& calendar) {
    const int within = movedTime(minutes, 0);
    return calendar.localized(calendar.date(2001, 1, 1, within / minutesPerHour, within % minutesPerHour), "jmm");
}

std::optional<int> minutesOfDay(std::string_view typed) {
    const auto lowercased = text::lowercased(text::trimmed(typed));
    std::string_view rest = lowercased;
    const auto hour = takeNumber(rest);
    if (!hour)
        return std::nullopt;
    int minute = 0;
    if (!rest.empty() && (rest.front() == ':' || rest.front() == '.')) {
        rest.remove_prefix(1);
        const auto digits = rest.size();
        const auto number = takeNumber(rest);
        if (!number || digits - rest.size() != 2 || *number >= minutesPerHour)
            return std::nullopt;
        minute = *number;
    }
    const auto counted = hourOfHalf(*hour, text::trimmed(rest));
    return counted && *counted * minutesPerHour < minutesPerDay ? std::optional(*counted * minutesPerHour + minute)
                                                                : std::nullopt;
}

int movedTime(int minutes, int by) {
    const int moved = (minutes + by) % minutesPerDay;
    return moved < 0 ? moved + minutesPerDay : moved;
}

tindra::OptimizerRules addingSchedule(tindra::OptimizerRules rules, tindra::UUID id) {
    constexpr int nine = 540;
    constexpr int six = 1080;
    const auto number = rules.schedules.size() + 1;
    rules.schedules.push_back({.id = id,
                               .name = number == 1 ? "Office hours" : fmt::format("Schedule {}", number),
                               .isEnabled = true,
                               .window = {.start = nine, .end = six, .weekdays = {2, 3, 4, 5, 6}},
                               .tiers = {}});
    return rules;
}

tindra::OptimizerRules removingSchedule(tindra::OptimizerRules rules, std::string_view id) {
    std::erase_if(rules.schedules, [&](const tindra::Schedule& schedule) { return tindra::text(schedule.id) == id; });
    return rules;
}

tindra::OptimizerRules changingSchedule(tindra::OptimizerRules rules, std::string_view id,
                                        const std::function<void(tindra::Schedule&)>& change) {
    for (auto& schedule : rules.schedules)
        if (tindra::text(schedule.id) == id)
            change(schedule);
    return rules;
}

} // namespace kestrio
