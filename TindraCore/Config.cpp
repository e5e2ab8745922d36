#include "TindraCore/Config.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>
#include <utility>
#include <vector>

namespace tindra {
namespace {

/// Percent. Less than this moves by itself from one day to the next.
constexpr double noticeablePercent = 5;

constexpr double minutesPerHour = 60;

std::int64_t wholeNumber(double value) {
    using Limits = std::numeric_limits<std::int64_t>;
    constexpr double beyond = 9'223'372'036'854'775'808.0; // 2^63, the first double that no longer fits
    if (std::isnan(value))
        return 0;
    if (value >= beyond)
        return Limits::max();
    if (value < -beyond)
        return Limits::min();
    return static_cast<std::int64_t>(std::round(value));
}

std::string joined(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0)
            text += separator;
        text += pieces[i];
    }
    return text;
}

std::string tierEntry(std::string_view appID, AppTier tier) {
    return std::string(appID).append("=").append(rawValue(tier));
}

/// Always on is what every application is that has no rule, so such a rule changes nothing.
std::vector<std::string> ruleLines(const AppTiers& tiers) {
    std::vector<std::string> lines;
    for (const auto& [appID, tier] : tiers)
        if (tier != AppTier::alwaysOn)
            lines.push_back(tierEntry(appID, tier));
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::string scheduleLine(const Schedule& schedule) {
    std::vector<std::string> weekdays;
    for (const int weekday : schedule.window.weekdays)
        weekdays.push_back(std::to_string(weekday));
    std::vector<std::string> entries;
    for (const auto& [appID, tier] : schedule.tiers)
        entries.push_back(tierEntry(appID, tier));
    // The order of the identifiers is not that of the entries: "a=…" stands behind "a-b=…".
    std::sort(entries.begin(), entries.end());
    return "S[" + std::to_string(schedule.window.start) + "-" + std::to_string(schedule.window.end) + "|" +
           joined(weekdays, ",") + "|" + joined(entries, ";") + "]";
}

std::vector<std::string> scheduleLines(const std::vector<Schedule>& schedules) {
    std::vector<std::string> lines;
    for (const auto& schedule : schedules)
        if (schedule.isEnabled)
            lines.push_back(scheduleLine(schedule));
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// Everything in the rules that changes behaviour for longer than a while: a temporary rule is no new setup, and a
/// schedule behaves the same under another name.
std::string behaviour(const OptimizerRules& rules) {
    auto lines = ruleLines(rules.tiers);
    for (auto& line : scheduleLines(rules.schedules))
        lines.push_back(std::move(line));
    for (const auto& appID : rules.neverTouch)
        lines.push_back("N:" + appID);
    return joined(lines, "\n");
}

/// FNV-1a of 64 bits with offset basis and prime as Fowler, Noll and Vo published them.
std::uint64_t fnv1a(std::string_view bytes) {
    std::uint64_t hash = 0xCBF2'9CE4'8422'2325;
    for (const char byte : bytes) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 0x0000'0100'0000'01B3;
    }
    return hash;
}

std::string hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits; // four bits each
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return {digits.data(), written.ptr};
}

std::int64_t countOfAppsWithRules(const OptimizerRules& rules) {
    std::set<std::string_view> apps;
    for (const auto& [appID, tier] : rules.tiers)
        if (tier != AppTier::alwaysOn)
            apps.insert(appID);
    for (const auto& schedule : rules.schedules)
        if (schedule.isEnabled)
            for (const auto& entry : schedule.tiers)
                apps.insert(entry.first);
    return static_cast<std::int64_t>(apps.size());
}

std::int64_t countOfEnabled(const std::vector<Schedule>& schedules) {
    return std::count_if(schedules.begin(), schedules.end(), [](const Schedule& one) { return one.isEnabled; });
}

/// Such as "1 app rule" and "2 app rules".
std::string counted(std::int64_t count, std::string_view noun) {
    return std::to_string(count).append(" ").append(noun).append(count == 1 ? "" : "s");
}

double perHour(double amount, double hours) {
    return hours > 0 ? amount / hours : 0;
}

} // namespace

OptimizerConfig::OptimizerConfig(bool isEnabled, const OptimizerTuning& tuning, const OptimizerRules& rules)
    : enabled(isEnabled),
      mode(tuning.mode),
      freezeAfterMinutes(wholeNumber(tuning.effectiveIdleMinutes())),
      checkEveryMinutes(wholeNumber(tuning.checkEveryMinutes)),
      wakeSeconds(wholeNumber(tuning.wakeSeconds)),
      efficiencyCores(tuning.useEfficiencyCores),
      appRules(countOfAppsWithRules(rules)),
      schedules(countOfEnabled(rules.schedules)),
      fingerprint(hexadecimal(fnv1a(behaviour(rules)))) {}

OptimizerConfig OptimizerConfig::off() {
    return {false, OptimizerTuning{}, OptimizerRules{}};
}

std::string OptimizerConfig::key() const {
    if (!enabled)
        return "off";
    return joined({"on", std::string(rawValue(mode)), std::to_string(freezeAfterMinutes),
                   std::to_string(checkEveryMinutes), std::to_string(wakeSeconds), efficiencyCores ? "e" : "-",
                   fingerprint},
                  "|");
}

std::string OptimizerConfig::label() const {
    if (!enabled)
        return "Optimization off";
    std::string rules = "no app rules";
    if (appRules != 0)
        rules = counted(appRules, "app rule") + (schedules > 0 ? ", " + counted(schedules, "schedule") : "");
    return std::string(tindra::label(mode)) + ", freeze after " + std::to_string(freezeAfterMinutes) +
           " min, efficiency cores " + (efficiencyCores ? "on" : "off") + ", " + rules;
}

double ConfigStats::hours() const {
    return static_cast<double>(minutes) / minutesPerHour;
}

double ConfigStats::pressureShare() const {
    return minutes < 1 ? 0 : static_cast<double>(pressureMinutes) / static_cast<double>(minutes);
}

double ConfigStats::readBackPerHour() const {
    return perHour(static_cast<double>(swapReadBytes), hours());
}

double ConfigStats::slowdownsPerHour() const {
    return perHour(static_cast<double>(slowdownMinutes), hours());
}

double ConfigStats::stallsPerHour() const {
    return perHour(static_cast<double>(stallMinutes), hours());
}

double ConfigChange::percent() const {
    return before > 0 ? (after - before) / before * 100 : 0;
}

ConfigChange::Verdict ConfigChange::verdict() const {
    if (!(before > 0)) // from nothing there is no percentage
        return after > 0 ? Verdict::worse : Verdict::same;
    if (percent() <= -noticeablePercent)
        return Verdict::better;
    return percent() >= noticeablePercent ? Verdict::worse : Verdict::same;
}

std::array<ConfigChange, 4> compare(const ConfigStats& baseline, const ConfigStats& candidate) {
    return {{
        {"Time under memory pressure", baseline.pressureShare(), candidate.pressureShare()},
        {"Memory read back from the SSD", baseline.readBackPerHour(), candidate.readBackPerHour()},
        {"Slowdowns per hour", baseline.slowdownsPerHour(), candidate.slowdownsPerHour()},
        {"Freezes of half a second or more per hour", baseline.stallsPerHour(), candidate.stallsPerHour()},
    }};
}

} // namespace tindra
