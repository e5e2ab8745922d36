#include "Kestrio/Pages/BarMenu.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Calendar berlin("en_GB", "Europe/Berlin");
const Date halfPastTwo = berlin.date(2026, 11, 20, 14, 30);

/// As in "Idle / Open Dashboard > Pause Tracking [30 minutes, 1 hour] / Quit": what does something has an asterisk.
std::string described(const std::vector<BarMenuEntry>& entries, const char* separator) {
    std::string text;
    for (const auto& entry : entries) {
        text += (text.empty() ? "" : separator) + entry.text + (entry.action ? "*" : "");
        if (!entry.entries.empty())
            text += " [" + described(entry.entries, ", ") + "]";
    }
    return text;
}

std::string described(const BarMenu& menu) {
    std::string text;
    for (const auto& group : menu)
        text += (text.empty() ? "" : " / ") + described(group, " > ");
    return text;
}

TEST(StatusMenu, saysTheStateAndTheWaysOn) {
    const auto menu = [](TrackingState state, std::optional<Date> until = {}) {
        return described(statusMenu(state, until, {halfPastTwo, berlin}));
    };
    constexpr auto pause = "Pause Tracking [30 minutes*, 1 hour*, Until tomorrow*, Until I resume*]";
    const auto whole = [](const char* state, const std::string& action) {
        return fmt::format("{} / Show Today* > Open Dashboard* > {} / Settings* / Quit Kestrio*", state, action);
    };
    EXPECT_EQ(menu(TrackingState::tracking), whole("Tracking", pause));
    EXPECT_EQ(menu(TrackingState::idle), whole("Idle", pause));
    EXPECT_EQ(menu(TrackingState::away), whole("Away (locked or asleep)", pause));
    EXPECT_EQ(menu(TrackingState::paused, halfPastTwo + Seconds(3600)),
              whole("Paused", "Resume (paused until 15:30)*"));
    EXPECT_EQ(menu(TrackingState::paused, distantFuture), whole("Paused", "Resume Tracking*"));
}

TEST(StatusMenu, eachEntryDoesWhatItSays) {
    const auto menu = statusMenu(TrackingState::tracking, {}, {halfPastTwo, berlin});
    EXPECT_EQ(actionOf(menu, "Show Today"), BarAction(ShowPanel{}));
    EXPECT_EQ(actionOf(menu, "Open Dashboard"), BarAction(ShowDashboard{}));
    EXPECT_EQ(actionOf(menu, "30 minutes"), BarAction(PauseTracking{Seconds(1800)}));
    EXPECT_EQ(actionOf(menu, "1 hour"), BarAction(PauseTracking{Seconds(3600)}));
    EXPECT_EQ(actionOf(menu, "Until tomorrow"), BarAction(PauseTracking{Seconds(9.5 * 3600)}));
    EXPECT_EQ(actionOf(menu, "Until I resume"), BarAction(PauseTracking{}));
    EXPECT_EQ(actionOf(menu, "Settings"), BarAction(ShowSettings{}));
    EXPECT_EQ(actionOf(menu, "Quit Kestrio"), BarAction(QuitProgram{}));
    for (const char* text : {"Tracking", "Pause Tracking", "Resume Tracking", ""})
        EXPECT_EQ(actionOf(menu, text), std::nullopt) << text;
    const auto paused = statusMenu(TrackingState::paused, distantFuture, {halfPastTwo, berlin});
    EXPECT_EQ(actionOf(paused, "Resume Tracking"), BarAction(ResumeTracking{}));
}

TEST(SystemMenu, saysTheInsightsAndLeadsOn) {
    const std::vector<SystemInsight> insights{
        {"memory", SystemInsight::Level::critical, "memorychip", "Memory is nearly full, so apps will feel slow."},
        {"cpu", SystemInsight::Level::warning, "cpu", "CPU has been busy (82%)."}};
    const auto menu = systemMenu(insights);
    EXPECT_EQ(described(menu), "Memory is nearly full, so apps will feel slow. > CPU has been busy (82%). / "
                               "Show System* > Performance* > Settings*");
    EXPECT_EQ(actionOf(menu, "Show System"), BarAction(ShowPanel{}));
    EXPECT_EQ(actionOf(menu, "Performance"), BarAction(ShowDashboard{DashboardSection::performance}));
    EXPECT_EQ(described(systemMenu({})), "Show System* > Performance* > Settings*") << "before the first sample";
}

TEST(BarTips, sayTheFigureAndTheWords) {
    EXPECT_EQ(statusTip(menuBarLabel(TrackingState::tracking, {}, {}), Seconds(7500)),
              (BarTip{"Today: 2h 5m", "Active: your time is being recorded"}));
    EXPECT_EQ(statusTip(menuBarLabel(TrackingState::idle, {}, {}), Seconds(720)),
              (BarTip{"Today: 12m", "Away: nothing is being recorded"}));
    const std::vector<SystemInsight> insights{{"a", SystemInsight::Level::warning, "", "One."},
                                              {"b", SystemInsight::Level::good, "", "Two."}};
    EXPECT_EQ(systemTip(0.424, insights), (BarTip{"CPU 42%", "One.\nTwo."}));
    EXPECT_EQ(systemTip(0, {}), (BarTip{"CPU 0%", ""}));
}

} // namespace
} // namespace kestrio
