#include "Kestrio/Platform/Testing/ScriptedTray.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ScriptedTray, keepsWhatIsShownAndCountsWhatChanged) {
    ScriptedTray tray;
    EXPECT_FALSE(tray.isShown());
    TrayItem item;
    item.id = "kestrio";
    tray.show(item);
    tray.show(item);
    EXPECT_EQ(tray.changes, 0);
    EXPECT_TRUE(tray.isShown());
    item.title = "Another";
    tray.show(item);
    EXPECT_EQ(tray.changes, 1);
    EXPECT_EQ(tray.items.at("kestrio").title, "Another");
    tray.hasBar = false;
    EXPECT_FALSE(tray.isShown());
    tray.remove("kestrio");
    EXPECT_TRUE(tray.items.empty());
}

TEST(ScriptedTray, tellsWhatTheTestTells) {
    ScriptedTray tray;
    std::vector<TrayEvent> heard;
    auto token = tray.observe([&](const TrayEvent& event) { heard.push_back(event); });
    tray.tell(TrayMenuOpening{"kestrio"});
    token.cancel();
    tray.tell(TrayMenuOpening{"kestrio"});
    EXPECT_EQ(heard, std::vector<TrayEvent>{TrayMenuOpening{"kestrio"}});
}

} // namespace
} // namespace kestrio
