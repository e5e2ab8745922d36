// The editor of one schedule of the optimizer: what it shows, and what each of its controls does to the rules. Pure.
#pragma once

#include "Kestrio/Pages/Settings/OptimizationSettings.h"

#include <array>
#include <functional>

namespace kestrio {

struct ScheduleEditor {
    static constexpr auto namePrompt = "Name";
    static constexpr auto from = "From";
    static constexpr auto to = "to";
    static constexpr auto removeTitle = "Remove";
    static constexpr auto removeSymbol = "minus.circle";
    static constexpr auto addTitle = "Add App to This Schedule…";
    static constexpr auto deleteTitle = "Delete this schedule";
    static constexpr auto deleteSymbol = "trash";

    /// From Monday on, by the numbers that count from Sunday.
    static constexpr std::array weekdayOrder{2, 3, 4, 5, 6, 7, 1};

    struct Weekday {
        int number = 1; // 1 is Sunday
        std::string initial;
        std::string name;
        bool isOn = false;
        friend bool operator==(const Weekday&, const Weekday&) = default;
    };

    std::string id;
    std::string name;
    bool isEnabled = true;
    std::string start; // as the person writes times
    std::string end;
    std::vector<Weekday> weekdays;
    std::vector<SettingRow> apps;  // each with a picker of tiers
    std::vector<KnownApp> addable; // those that it does not speak of yet
    friend bool operator==(const ScheduleEditor&, const ScheduleEditor&) = default;
};

/// One for each schedule, in their order.
std::vector<ScheduleEditor> scheduleEditors(const tindra::OptimizerRules& rules, const std::vector<KnownApp>& apps,
                                            const Calendar& calendar);

/// "17:30" as the calendar's locale writes it.
std::string timeOfDay(int minutes, const Calendar& calendar);

/// Minutes since midnight of a time that a person typed: "9", "9:00", "17.30", "5:30 pm". Absent for anything else.
std::optional<int> minutesOfDay(std::string_view typed);

/// Moves a time by so many minutes around the clock.
int movedTime(int minutes, int by);

// The rules after an edit. An identifier that none of the schedules has leaves them unchanged.

/// The first is for office hours; those after it are numbered.
tindra::OptimizerRules addingSchedule(tindra::OptimizerRules rules, tindra::UUID id);
tindra::OptimizerRules removingSchedule(tindra::OptimizerRules rules, std::string_view id);
tindra::OptimizerRules changingSchedule(tindra::OptimizerRules rules, std::string_view id,
                                        const std::function<void(tindra::Schedule&)>& change);

} // namespace kestrio
