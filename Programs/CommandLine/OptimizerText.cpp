#include "Programs/CommandLine/OptimizerText.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;
using tindra::AppTier;
using tindra::Protection;
namespace control = tindra::control;
namespace decision = tindra::decision;
namespace source = tindra::source;

constexpr std::size_t leastWidth = 60;
constexpr int minutesOfAnHour = 60;
constexpr int hoursOfADay = 24;

Date date(tindra::Date core) {
    return Date(core.seconds);
}

std::string clockTime(tindra::Date moment, const Calendar& calendar) {
    return calendar.localized(date(moment), "jmm");
}

/// With a small letter, for the middle of a line.
std::string tierName(AppTier tier) {
    return text::lowercased(label(tier));
}

std::string protectionWords(Protection protection) {
    switch (protection) {
    case Protection::frontmost: return "in front";
    case Protection::playingAudio: return "plays sound";
    case Protection::usingMicrophone: return "uses the microphone";
    case Protection::showingVideo: return "keeps the display awake";
    case Protection::preventingSleep: return "keeps the machine awake";
    case Protection::recentlyLaunched: return "opened less than two minutes ago";
    case Protection::neverTouch: return "on your never-touch list";
    case Protection::essential: return "essential: the desktop or a long job may need it";
    }
    return {};
}

std::string withoutStop(std::string clause) {
    if (clause.ends_with('.'))
        clause.pop_back();
    return clause;
}

/// What one decision comes to for the application.
struct DecisionWords {
    const PlannedApp& app;
    const tindra::OptimizerTuning& tuning;
    const Calendar& calendar;

    std::string operator()(const decision::Thaw& thaw) const {
        switch (thaw.reason) {
        case tindra::ThawReason::opened: return "resume: in front";
        case tindra::ThawReason::alwaysOn: return "resume: always on now";
        case tindra::ThawReason::protected_:
            return app.protection ? "resume: " + protectionWords(*app.protection) : "resume";
        case tindra::ThawReason::optimizerOff: return "resume: the optimizer is off";
        }
        return {};
    }
    std::string operator()(const decision::Wake&) const { return fmt::format("wake for {:.0f} s", tuning.wakeSeconds); }
    std::string operator()(const decision::Freeze&) const { return stopped("freeze"); }
    std::string operator()(const decision::Refreeze&) const { return stopped("freeze again"); }
    std::string operator()(const decision::MakeEfficient&) const {
        return fmt::format("slow down: uses {}", Fmt::cores(app.cpu, calendar));
    }
    std::string operator()(const decision::RestorePriority&) const { return "give back its speed"; }

private:
    std::string stopped(const std::string& what) const {
        return app.refusal ? "let alone: " + withoutStop(*app.refusal) : what;
    }
};

std::string whileFrozen(const PlannedApp& app, const tindra::OptimizerTuning& tuning) {
    if (app.refusal)
        return "resume: " + withoutStop(*app.refusal);
    if (app.tier == AppTier::checkPeriodically)
        return fmt::format("frozen; wakes every {}", Fmt::duration(Seconds(tuning.checkEveryMinutes * 60)));
    return "frozen until you open it";
}

std::string whyLeftAlone(const PlannedApp& app, const tindra::OptimizerTuning& tuning) {
    if (app.protection)
        return protectionWords(*app.protection);
    if (app.tier == AppTier::alwaysOn)
        return "left running";
    const Seconds patience(tuning.effectiveIdleMinutes() * 60);
    return fmt::format("freezes in {}", Fmt::duration(std::max(Seconds(0), patience - app.idle.value_or(patience))));
}

std::string stateWords(const PlannedApp& app) {
    if (tindra::isFrozen(app.control))
        return "frozen";
    if (std::holds_alternative<control::Waking>(app.control))
        return "awake";
    return app.isSlowed ? "slowed" : "running";
}

/// As long as the person has not used it.
std::string idleWords(const PlannedApp& app) {
    const bool isInFront = app.protection == Protection::frontmost;
    return app.idle && !isInFront ? "idle " + Fmt::duration(*app.idle) : std::string();
}

std::string processCount(std::int64_t count) {
    return fmt::format("{} {}", count, count == 1 ? "process" : "processes");
}

std::string nameOf(const std::string& name, std::size_t columns) {
    return padded(text::fittedToColumns(name, columns), columns);
}

template <class Rows, class Measure>
std::size_t widest(const Rows& rows, std::size_t most, Measure measure) {
    std::size_t columns = 0;
    for (const auto& row : rows)
        columns = std::max(columns, std::min(most, text::columns(measure(row))));
    return columns;
}

// --- Schedules -------------------------------------------------------------------------------------------------------

struct Weekday {
    std::string_view name;
    int number;
};
constexpr std::array weekdays{Weekday{"mon", 2}, Weekday{"tue", 3}, Weekday{"wed", 4}, Weekday{"thu", 5},
                              Weekday{"fri", 6}, Weekday{"sat", 7}, Weekday{"sun", 1}};
const std::set<int> workingDays{2, 3, 4, 5, 6};
const std::set<int> freeDays{1, 7};
const std::set<int> allDays{1, 2, 3, 4, 5, 6, 7};

std::string dayNames(const std::set<int>& days) {
    if (days == allDays)
        return "daily";
    if (days == workingDays)
        return "weekdays";
    if (days == freeDays)
        return "weekends";
    std::string names;
    for (const auto& day : weekdays)
        if (days.contains(day.number))
            names.append(names.empty() ? "" : ",").append(day.name);
    return names.empty() ? "never" : names;
}

std::string hourText(int minutes) {
    return fmt::format("{:02}:{:02}", minutes / minutesOfAnHour, minutes % minutesOfAnHour);
}

std::string windowText(const tindra::DailyWindow& window) {
    return window.start == window.end ? "all day" : hourText(window.start) + "–" + hourText(window.end);
}

std::optional<int> typedHour(std::string_view typed) {
    const auto colon = typed.find(':');
    if (colon == std::string_view::npos || colon == 0 || typed.size() != colon + 3)
        return std::nullopt;
    const auto part = [](std::string_view digits, int limit) -> std::optional<int> {
        int value = -1;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const bool isWhole = error == std::errc() && end == digits.data() + digits.size();
        return isWhole && value >= 0 && value < limit ? std::optional(value) : std::nullopt;
    };
    const auto hour = part(typed.substr(0, colon), hoursOfADay);
    const auto minute = part(typed.substr(colon + 1), minutesOfAnHour);
    return hour && minute ? std::optional(*hour * minutesOfAnHour + *minute) : std::nullopt;
}

} // namespace

std::string tierWords(AppTier tier, const tindra::OptimizerRules::Source& source, const Calendar& calendar) {
    struct Words {
        const Calendar& calendar;
        std::string operator()(const source::Override& one) const { return " until " + clockTime(one.until, calendar); }
        std::string operator()(const source::Schedule& one) const { return " by " + one.name; }
        std::string operator()(const source::Usual&) const { return ""; }
        std::string operator()(const source::Unchosen&) const { return ", not chosen"; }
    };
    return tierName(tier) + std::visit(Words{calendar}, source);
}

std::string outlook(const PlannedApp& app, const tindra::OptimizerTuning& tuning, const Calendar& calendar) {
    const bool isFrozen = tindra::isFrozen(app.control);
    if (app.isManual && !(isFrozen && app.refusal))
        return isFrozen ? "frozen by hand, until you open it" : "slowed by hand, until you open it";
    std::string words;
    for (const auto& decision : app.decisions)
        words += (words.empty() ? "" : "; ") + std::visit(DecisionWords{app, tuning, calendar}, decision);
    if (!words.empty())
        return words;
    if (isFrozen)
        return whileFrozen(app, tuning);
    if (const auto* waking = std::get_if<control::Waking>(&app.control))
        return "checks for messages until " + clockTime(waking->until, calendar);
    return whyLeftAlone(app, tuning);
}

std::string optimizerPlanText(const OptimizerStatus& status, const std::vector<PlannedApp>& plan,
                              const Calendar& calendar, const TableStyle& style) {
    const Painter paint(style.hasColour);
    const auto width = std::max(style.width, leastWidth);
    const auto names = widest(plan, width / 4, [](const auto& app) { return app.name; });
    const auto tiers =
        widest(plan, width / 3, [&](const auto& app) { return tierWords(app.tier, app.source, calendar); });
    const auto idles = widest(plan, width / 4, idleWords);
    constexpr std::size_t states = 7; // "running"
    std::string table;
    for (const auto& app : plan) {
        const auto state = stateWords(app);
        const auto cell = padded(state, states);
        const auto room = width - std::min(width, names + states + tiers + idles + 10);
        table += fmt::format("  {}  {}  {}  {}  {}\n", nameOf(app.name, names),
                             state == "running" ? paint.dim(cell) : paint.bold(cell),
                             nameOf(tierWords(app.tier, app.source, calendar), tiers), nameOf(idleWords(app), idles),
                             text::fittedToColumns(outlook(app, status.tuning, calendar), room));
    }
    if (plan.empty())
        table = "  No application has a window.\n";
    return status.isEnabled ? table : table + "\n  The optimizer is off; switched on, it would do this.\n";
}

std::string optimizerStatusText(const OptimizerStatus& status, Date now, const Calendar& calendar,
                                const TableStyle& style) {
    const Painter paint(style.hasColour);
    const auto& tuning = status.tuning;
    std::string words = fmt::format("  The optimizer is {}.\n", paint.bold(status.isEnabled ? "on" : "off"));
    words += fmt::format("  {} mode: freezes what may wait after {} in the background; wakes what is to be checked "
                         "every {} for {:.0f} s\n",
                         label(tuning.mode), Fmt::duration(Seconds(tuning.effectiveIdleMinutes() * 60)),
                         Fmt::duration(Seconds(tuning.checkEveryMinutes * 60)), tuning.wakeSeconds);
    if (tuning.useEfficiencyCores)
        words += fmt::format("  Slows what uses {} or more in the background\n",
                             Fmt::cores(tuning.effectiveEfficiencyThreshold(), calendar));
    for (const auto& app : status.held) {
        if (app.frozen == 0 && app.slowed == 0)
            continue;
        std::string held;
        if (const auto* frozen = std::get_if<control::Frozen>(&app.control))
            held = fmt::format("frozen for {}, {}, {}", Fmt::duration(now - date(frozen->since)),
                               processCount(app.frozen), Fmt::memory(app.footprint, calendar));
        else if (std::holds_alternative<control::Waking>(app.control))
            held = "awake for a moment";
        if (app.slowed > 0)
            held += (held.empty() ? "" : ", ") + fmt::format("{} slowed", processCount(app.slowed));
        words += fmt::format("\n  {}: {}{}", text::fittedToColumns(app.name, style.width / 3), held,
                             app.isManual ? ", by hand" : "");
    }
    return words + (words.ends_with('\n') ? "" : "\n");
}

std::string tierTable(const tindra::OptimizerRules& rules, Date now, const Calendar& calendar,
                      const TableStyle& style) {
    const auto columns = widest(rules.tiers, style.width / 2, [](const auto& entry) { return entry.first; });
    std::string table;
    for (const auto& [id, tier] : rules.tiers)
        table += fmt::format("  {}  {}\n", nameOf(id, columns), tierName(tier));
    for (const auto& rule : rules.overrides)
        if (date(rule.until) > now)
            table += fmt::format("  {}  {} for now, until {}\n", nameOf(rule.appID, columns), tierName(rule.tier),
                                 clockTime(rule.until, calendar));
    for (const auto& id : rules.neverTouch)
        table += fmt::format("  {}  never touched\n", nameOf(id, columns));
    return table;
}

std::string scheduleTable(const std::vector<tindra::Schedule>& schedules, const TableStyle& style) {
    const Painter paint(style.hasColour);
    std::string table;
    for (std::size_t place = 0; place < schedules.size(); ++place) {
        const auto& schedule = schedules[place];
        table +=
            fmt::format("  {}  {}  {} {}{}\n", place + 1, paint.bold(schedule.name), dayNames(schedule.window.weekdays),
                        windowText(schedule.window), schedule.isEnabled ? "" : paint.dim("  switched off"));
        for (const auto& [id, tier] : schedule.tiers)
            table += fmt::format("       {}  {}\n", id, tierName(tier));
    }
    return table;
}

JSON tiersJSON(const tindra::OptimizerRules& rules) {
    auto tiers = JSON::object();
    for (const auto& [id, tier] : rules.tiers)
        tiers[id] = tindra::rawValue(tier);
    auto overrides = JSON::array();
    for (const auto& rule : rules.overrides)
        overrides.push_back(
            {{"app", rule.appID}, {"tier", tindra::rawValue(rule.tier)}, {"until", rule.until.seconds}});
    return {{"tiers", tiers}, {"overrides", overrides}, {"neverTouch", rules.neverTouch}};
}

JSON schedulesJSON(const std::vector<tindra::Schedule>& schedules) {
    auto array = JSON::array();
    for (const auto& schedule : schedules) {
        auto tiers = JSON::object();
        for (const auto& [id, tier] : schedule.tiers)
            tiers[id] = tindra::rawValue(tier);
        array.push_back({{"name", schedule.name},
                         {"isEnabled", schedule.isEnabled},
                         {"start", schedule.window.start},
                         {"end", schedule.window.end},
                         {"weekdays", schedule.window.weekdays},
                         {"tiers", tiers}});
    }
    return array;
}

std::optional<AppTier> typedTier(std::string_view typed) {
    const auto word = text::lowercased(text::trimmedOfBlanks(typed));
    if (word == "always-on")
        return AppTier::alwaysOn;
    if (word == "check" || word == "check-periodically")
        return AppTier::checkPeriodically;
    if (word == "can-wait")
        return AppTier::canWait;
    return tindra::appTier(typed);
}

std::optional<TypedHours> typedHours(std::string_view typed) {
    const auto dash = typed.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const auto start = typedHour(typed.substr(0, dash));
    const auto end = typedHour(typed.substr(dash + 1));
    return start && end ? std::optional(TypedHours{*start, *end}) : std::nullopt;
}

std::optional<std::set<int>> typedDays(std::string_view typed) {
    const auto words = text::lowercased(typed);
    if (words == "daily")
        return allDays;
    if (words == "weekdays")
        return workingDays;
    if (words == "weekends")
        return freeDays;
    std::set<int> days;
    std::string_view rest = words;
    while (!rest.empty()) {
        const auto word = rest.substr(0, rest.find(','));
        const auto* const day = std::ranges::find(weekdays, word, &Weekday::name);
        if (day == weekdays.end())
            return std::nullopt;
        days.insert(day->number);
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    }
    return days.empty() ? std::nullopt : std::optional(days);
}

} // namespace kestrio
