#include "TindraCore/Rules.h"

#include "TindraCore/Hash.h"
#include "TindraCore/NumberText.h"
#include "TindraCore/RawValues.h"

#include <utility>

namespace tindra {
namespace {

constexpr int sunday = 1;
constexpr int saturday = 7;

constexpr int dayBefore(int weekday) {
    return weekday == sunday ? saturday : weekday - 1;
}

struct SourceText {
    std::string operator()(const source::Override& from) const {
        return "override(until: " + numberText(from.until.seconds) + ")";
    }
    std::string operator()(const source::Schedule& from) const { return "schedule(" + from.name + ")"; }
    std::string operator()(const source::Usual&) const { return "usual"; }
    std::string operator()(const source::Unchosen&) const { return "unchosen"; }
};

} // namespace

std::string_view rawValue(AppTier tier) {
    switch (tier) {
    case AppTier::alwaysOn: return "alwaysOn";
    case AppTier::checkPeriodically: return "checkPeriodically";
    case AppTier::canWait: return "canWait";
    }
    return {};
}

std::optional<AppTier> appTier(std::string_view rawValue) {
    return caseWithRawValue(rawValue, allAppTiers);
}

std::string_view label(AppTier tier) {
    switch (tier) {
    case AppTier::alwaysOn: return "Always on";
    case AppTier::checkPeriodically: return "Check every few minutes";
    case AppTier::canWait: return "Can wait";
    }
    return {};
}

bool DailyWindow::contains(const LocalTime& time) const {
    if (!time.weekday)
        return false;
    const int today = *time.weekday;
    const int minute = time.hour.value_or(0) * 60 + time.minute.value_or(0);

    if (start == end)
        return weekdays.contains(today);
    if (!crossesMidnight())
        return weekdays.contains(today) && start <= minute && minute < end;
    return (weekdays.contains(today) && start <= minute) || (weekdays.contains(dayBefore(today)) && minute < end);
}

EffectiveTier OptimizerRules::tier(std::string_view appID, Date date, const LocalTime& time) const {
    // Newest first. One that has ended is passed over even before it is pruned.
    for (auto rule = overrides.rbegin(); rule != overrides.rend(); ++rule)
        if (rule->appID == appID && rule->until > date)
            return {rule->tier, source::Override{rule->until}};

    for (const auto& schedule : schedules) {
        if (!schedule.isEnabled || !schedule.window.contains(time))
            continue;
        if (const auto found = schedule.tiers.find(appID); found != schedule.tiers.end())
            return {found->second, source::Schedule{schedule.name}};
    }

    if (const auto found = tiers.find(appID); found != tiers.end())
        return {found->second, source::Usual{}};

    // Nothing is ever frozen that the person did not classify.
    return {AppTier::alwaysOn, source::Unchosen{}};
}

void OptimizerRules::setOverride(std::string_view appID, AppTier newTier, Date until) {
    TierOverride rule{std::string(appID), newTier, until}; // first: `appID` may point into what is removed
    removeOverride(rule.appID);
    overrides.push_back(std::move(rule));
}

void OptimizerRules::removeOverride(std::string_view appID) {
    const std::string removed(appID);
    std::erase_if(overrides, [&](const TierOverride& rule) { return rule.appID == removed; });
}

bool OptimizerRules::pruneOverrides(Date now) {
    return std::erase_if(overrides, [&](const TierOverride& rule) { return rule.until <= now; }) > 0;
}

std::string toString(const OptimizerRules::Source& source) {
    return std::visit(SourceText{}, source);
}

} // namespace tindra

std::size_t std::hash<tindra::source::Override>::operator()(const tindra::source::Override& source) const noexcept {
    return tindra::hashOf(source.until.seconds);
}
std::size_t std::hash<tindra::source::Schedule>::operator()(const tindra::source::Schedule& source) const noexcept {
    return tindra::hashOf(source.name);
}
std::size_t std::hash<tindra::source::Usual>::operator()(const tindra::source::Usual&) const noexcept {
    return 0;
}
std::size_t std::hash<tindra::source::Unchosen>::operator()(const tindra::source::Unchosen&) const noexcept {
    return 0;
}
