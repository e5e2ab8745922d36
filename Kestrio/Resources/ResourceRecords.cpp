#include "Kestrio/Resources/ResourceRecords.h"

#include <algorithm>
#include <array>

namespace kestrio {
namespace {

struct KindWords {
    ResourceEventKind kind;
    std::string_view storedText;
    std::string_view title;
    std::string_view symbolName;
};

using enum ResourceEventKind;

constexpr std::array<KindWords, resourceEventKindCount> kinds{{
    {freeze, "freeze", "Frozen", "snowflake"},
    {thaw, "thaw", "Resumed", "play.circle"},
    {wake, "wake", "Woke to check", "bell.badge"},
    {efficient, "efficient", "Efficiency cores", "leaf"},
    {restored, "restored", "Full speed", "hare"},
    {quit, "quit", "Quit", "xmark.circle"},
    {slowdown, "slowdown", "Slowdown", "tortoise"},
    {pressure, "pressure", "Memory pressure", "memorychip"},
    {runaway, "runaway", "Runaway CPU", "flame"},
    {override, "override", "Temporary rule", "clock.badge"},
    {optimizerOn, "optimizerOn", "Optimizer on", "bolt.circle"},
    {optimizerOff, "optimizerOff", "Optimizer off", "bolt.slash"},
    {recovered, "recovered", "Recovered", "arrow.uturn.backward.circle"},
    {appOpened, "appOpened", "App opened", "plus.app"},
    {appClosed, "appClosed", "App closed", "xmark.app"},
    {macSlept, "macSlept", "Mac went to sleep", "moon.zzz"},
    {macWoke, "macWoke", "Mac woke up", "sun.max"},
    {activity, "activity", "Active or away", "figure.walk"},
    {power, "power", "Power", "powerplug"},
    {thermal, "thermal", "Heat", "thermometer.medium"},
    {configChanged, "configChanged", "Setup changed", "slider.horizontal.3"},
}};

const KindWords& words(ResourceEventKind kind) {
    return kinds[static_cast<std::size_t>(kind)]; // in the order of the cases
}

} // namespace

std::string_view storedText(ResourceEventKind kind) {
    return words(kind).storedText;
}

std::optional<ResourceEventKind> resourceEventKind(std::string_view storedText) {
    const auto found = std::ranges::find(kinds, storedText, &KindWords::storedText);
    return found == kinds.end() ? std::nullopt : std::optional(found->kind);
}

std::string_view title(ResourceEventKind kind) {
    return words(kind).title;
}

std::string_view symbolName(ResourceEventKind kind) {
    return words(kind).symbolName;
}

} // namespace kestrio
