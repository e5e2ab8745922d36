#include "Kestrio/Link/WindowRequest.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(WindowRequest, isToldOnTheCommandLine) {
    const struct {
        WindowRequest request;
        std::vector<std::string> arguments;
    } rows[] = {
        {DashboardRequest{}, {"dashboard"}},
        {DashboardRequest{"resourceLog"}, {"dashboard", "--page", "resourceLog"}},
        {PanelRequest{PanelKind::today}, {"today"}},
        {PanelRequest{PanelKind::today, ScreenPoint{1270, 0}}, {"today", "--at=1270,0"}},
        {PanelRequest{PanelKind::system, ScreenPoint{-300, 14}}, {"system", "--at=-300,14"}},
        {SettingsRequest{}, {"settings"}},
        {SettingsRequest{"data"}, {"settings", "--tab", "data"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(windowArguments(row.request), row.arguments) << fmt::format("{}", fmt::join(row.arguments, " "));
}

TEST(PanelKind, isKnownByItsText) {
    EXPECT_EQ(panelKind("today"), PanelKind::today);
    EXPECT_EQ(panelKind("system"), PanelKind::system);
    for (const char* text : {"", "Today", "todays", "settings"})
        EXPECT_EQ(panelKind(text), std::nullopt) << text;
}

} // namespace
} // namespace kestrio
