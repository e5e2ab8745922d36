#include "Kestrio/Resources/ResourceNotes.h"

#include "Kestrio/Base/Formatters.h"
#include "TindraCore/ResourceMath.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <string_view>

namespace kestrio::resourceNotes {
namespace {

constexpr double busyCores = 0.25; // from here on an application counts as busy

std::string_view word(TrackingState state) {
    switch (state) {
    case TrackingState::tracking: return "Active";
    case TrackingState::idle: return "Idle";
    case TrackingState::away: return "Away";
    case TrackingState::paused: return "Paused";
    }
    return "";
}

std::string_view word(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal: return "normal";
    case MemoryPressure::warning: return "high";
    case MemoryPressure::critical: return "critical";
    }
    return "";
}

std::string joined(const std::vector<std::string>& parts) {
    return fmt::format("{}", fmt::join(parts, ", "));
}

/// " Most memory: ...", or nothing when there is nobody to name.
std::string sentence(std::string_view beginning, const std::vector<std::string>& list) {
    return list.empty() ? "" : fmt::format(" {}: {}.", beginning, joined(list));
}

std::string withCapital(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

/// Each sign that would make a slowdown by itself.
std::vector<std::string> reasons(const SystemMinute& minute, const Calendar& calendar) {
    using tindra::MinuteHealth;
    std::vector<std::string> reasons;
    if (MinuteHealth{.lagMilliseconds = minute.lagMilliseconds}.isSlowdown())
        reasons.push_back("the Mac stalled for " + Fmt::seconds(minute.lagMilliseconds, calendar));
    if (MinuteHealth{.swapInBytes = minute.swapIn}.isSlowdown())
        reasons.push_back(Fmt::memory(minute.swapIn, calendar) + " read back from the SSD");
    if (MinuteHealth{.pressure = minute.pressure}.isSlowdown())
        reasons.emplace_back("memory was critical");
    return reasons;
}

/// The applications with the most of something, most first, as `describe` puts each.
template <class Measure, class Describe>
std::vector<std::string> most(const std::vector<AppMinute>& apps, std::size_t count, Measure measure,
                              Describe describe) {
    std::vector<const AppMinute*> order;
    for (const auto& app : apps)
        order.push_back(&app);
    std::stable_sort(order.begin(), order.end(),
                     [&](const auto* a, const auto* b) { return measure(*a) > measure(*b); });
    order.resize(std::min(count, order.size()));
    std::vector<std::string> described;
    for (const auto* app : order)
        described.push_back(describe(*app));
    return described;
}

} // namespace

std::string activityChanged(TrackingState from, TrackingState to, std::int64_t idleMinutes) {
    auto text = fmt::format("{} → {}.", word(from), word(to));
    if (to == TrackingState::idle)
        text += fmt::format(" No keyboard or mouse for {} minutes.", std::max(idleMinutes, std::int64_t{1}));
    return text;
}

std::string pressureRose(const LiveResources& live, const Calendar& calendar) {
    constexpr std::size_t named = 2;
    std::vector<std::string> largest;
    for (std::size_t i = 0; i < std::min(named, live.apps->size()); ++i) {
        const auto& app = (*live.apps)[i];
        largest.push_back(app.name + " " + Fmt::memory(app.footprint, calendar));
    }
    return fmt::format("Memory pressure {}, {} of swap in use.", word(live.pressure),
                       Fmt::memory(live.swapUsed, calendar)) +
           sentence("Most memory", largest);
}

std::string thermalChanged(std::int64_t from, std::int64_t to) {
    constexpr std::array states{"Nominal", "Fair", "Serious", "Critical"};
    const auto known = std::clamp<std::int64_t>(to, 0, states.size() - 1);
    return fmt::format("Heat {} to {}.", from > to ? "eased" : "rose", states[static_cast<std::size_t>(known)]);
}

std::string powerChanged(bool onAC, std::optional<std::int64_t> battery) {
    if (onAC)
        return "Plugged in.";
    return battery ? fmt::format("Running on battery ({}%).", *battery) : "Running on battery";
}

std::string lowPowerChanged(bool on) {
    return on ? "Low Power Mode on." : "Low Power Mode off.";
}

std::string slowdown(const SystemMinute& minute, const std::vector<AppMinute>& apps, const Calendar& calendar) {
    const auto largest = most(
        apps, 3, [](const AppMinute& app) { return app.memory; },
        [&](const AppMinute& app) { return app.name + " " + Fmt::memory(app.memory, calendar); });
    std::vector<AppMinute> busy;
    std::copy_if(apps.begin(), apps.end(), std::back_inserter(busy),
                 [](const AppMinute& app) { return app.cpu >= busyCores; });
    const auto busiest = most(
        busy, 2, [](const AppMinute& app) { return app.cpu; },
        [&](const AppMinute& app) { return app.name + " " + Fmt::cores(app.cpu, calendar); });
    return withCapital(joined(reasons(minute, calendar))) + "." + sentence("Most memory", largest) +
           sentence("Busiest", busiest);
}

std::string woke(std::optional<Seconds> asleep) {
    return asleep ? "Woke after " + Fmt::duration(*asleep) + " asleep." : "The Mac woke up.";
}

} // namespace kestrio::resourceNotes
