#include "Kestrio/Views/Window/AppsModel.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

constexpr auto browser = "org.example.Browser";

struct AppsScreen : PageScreen<AppsModel> {
    explicit AppsScreen(std::vector<ActivitySession> history = exampleWorkday(), RangeMode mode = RangeMode::day)
        : PageScreen("Apps", std::move(history), mode) {}
};

TEST(AppsView, withoutAnythingSaysSo) {
    AppsScreen screen{noHistory};
    EXPECT_TRUE(screen.shows("No activity yet"));
    EXPECT_TRUE(screen.shows("Use your computer as usual — apps, websites and videos will show up here within a few "
                             "seconds."));
    EXPECT_FALSE(screen.shows("Select an app"));
}

TEST(AppsView, listsTheAppsAndWaitsForAChoice) {
    AppsScreen screen;
    for (const auto* const name : {"Browser", "Player", "Editor", "Terminal"})
        EXPECT_TRUE(screen.shows(name)) << name;
    EXPECT_TRUE(screen.shows("31m focused · 2m alongside"));
    EXPECT_TRUE(screen.shows("Select an app"));
    EXPECT_FALSE(screen.shows("When"));
}

TEST(AppsView, aClickTellsOfTheApp) {
    AppsScreen screen;
    screen.click("Browser");
    EXPECT_EQ(screen.model.selection(), browser);
    EXPECT_FALSE(screen.shows("Select an app"));
    for (const auto* const text : {"Websites in Browser", "Pages", "Alpha again", "Played alongside", "When",
                                   "3 sessions  ·  org.example.Browser"})
        EXPECT_TRUE(screen.shows(text)) << text;
    screen.click("Editor");
    EXPECT_TRUE(screen.shows("Windows & Activity"));
    EXPECT_TRUE(screen.shows("notes.md"));
    EXPECT_FALSE(screen.shows("Websites in Browser"));
    EXPECT_FALSE(screen.shows("Played alongside"));
    screen.click("Player");
    EXPECT_TRUE(screen.shows("Only played alongside — never the focused window."));
}

TEST(AppsView, filtersTheWindowsAndStartsAnewWithTheNextApp) {
    AppsScreen screen;
    screen.click("Editor");
    screen.enter("Filter");
    screen.type("NOTES");
    EXPECT_TRUE(screen.shows("notes.md"));
    EXPECT_FALSE(screen.shows("main.cpp"));
    screen.type("x");
    EXPECT_TRUE(screen.shows("No matches."));
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.shows("main.cpp"));
    screen.type("notes");
    screen.click("Browser");
    EXPECT_EQ(screen.model.filter(), "");
    EXPECT_TRUE(screen.shows("Alpha again"));
    screen.click("Editor");
    EXPECT_TRUE(screen.shows("main.cpp"));
}

TEST(AppsView, aFreshReportKeepsFilterAndSelection) {
    AppsScreen screen;
    screen.click("Editor");
    screen.enter("Filter");
    screen.type("notes");
    auto later = exampleWorkday();
    later.push_back(later[1]);
    later.back().id = 100;
    later.back().start = later[1].start + Seconds(7200);
    later.back().end = later.back().start + Seconds(7200);
    screen.relive(later);
    EXPECT_EQ(screen.model.selectedPlace(), 0) << "the editor leads now";
    EXPECT_FALSE(screen.shows("main.cpp"));
    EXPECT_TRUE(screen.shows("notes.md"));
    EXPECT_TRUE(screen.shows("2h 6m"));
}

TEST(AppsView, aSelectionThatIsGoneLeavesThePlaceholderAndComesBack) {
    AppsScreen screen;
    screen.click("Editor");
    auto without = exampleWorkday();
    std::erase_if(without, [](const ActivitySession& session) { return session.appName == "Editor"; });
    screen.relive(without);
    EXPECT_TRUE(screen.shows("Select an app"));
    EXPECT_EQ(screen.model.selectedPlace(), -1);
    screen.relive(exampleWorkday());
    EXPECT_FALSE(screen.shows("Select an app"));
    EXPECT_TRUE(screen.shows("main.cpp"));
}

TEST(AppsView, theKeyboardWalksThroughTheList) {
    AppsScreen screen;
    screen.named("Apps", QAccessible::List)->forceActiveFocus(Qt::TabFocusReason);
    const std::pair<Qt::Key, const char*> steps[] = {
        {Qt::Key_Down, "Browser"},  {Qt::Key_Down, "Player"},       {Qt::Key_End, "Terminal"},
        {Qt::Key_Down, "Terminal"}, {Qt::Key_Up, "Editor"},         {Qt::Key_Home, "Browser"},
        {Qt::Key_Up, "Browser"},    {Qt::Key_PageDown, "Terminal"}, {Qt::Key_PageUp, "Browser"}};
    for (const auto& [key, app] : steps) {
        screen.press(key);
        EXPECT_EQ(screen.model.selection().toStdString(), std::string("org.example.") + app) << key;
    }
}

TEST(AppsView, changesTheCategoryAndTakesItBack) {
    AppsScreen screen;
    screen.click("Editor");
    screen.click("Other");
    EXPECT_FALSE(screen.shows("Reset to Default"));
    screen.click("Development");
    screen.settle();
    EXPECT_EQ(screen.settings.get<SettingDictionary>("appCategoryOverrides"),
              (SettingDictionary{{"org.example.Editor", "development"}}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !screen.shows("Entertainment"); })) << "the menu closes";
    screen.click("Development"); // which the fresh report shows
    screen.click("Reset to Default");
    screen.settle();
    EXPECT_EQ(screen.settings.get<SettingDictionary>("appCategoryOverrides").value_or(SettingDictionary()),
              SettingDictionary());
    EXPECT_TRUE(screen.shows("Other"));
}

TEST(AppsView, isReadByAssistiveTechnology) {
    AppsScreen screen;
    auto* const row = screen.named("Browser", QAccessible::ListItem);
    ASSERT_NE(row, nullptr);
    auto* const interface = QAccessible::queryAccessibleInterface(row);
    EXPECT_EQ(interface->text(QAccessible::Description), "33m, 31m focused · 2m alongside");
    ASSERT_NE(interface->actionInterface(), nullptr);
    EXPECT_TRUE(interface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    screen.settle();
    EXPECT_EQ(screen.model.selection(), browser);
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(row)->state().selected);
}

TEST(AppsView, aHugeMonthMakesNoMoreRowsThanShow) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    auto history = exampleHistory(calendar.date(2026, 11, 20, 17), calendar, {.sessionsPerWorkday = 2800});
    // A name for each session would be too many; a thousand are not.
    for (std::size_t i = 0; i < history.size(); ++i)
        if (i % 7 == 0) {
            history[i].appName = "App " + std::to_string(i % 1000);
            history[i].bundleID = "org.example.app" + std::to_string(i % 1000);
        }
    ASSERT_GT(history.size(), 40'000u);
    AppsScreen screen(std::move(history), RangeMode::month);
    EXPECT_GT(screen.model.rows()->count(), 500);
    const auto rows = screen.items([](QQuickItem& item) { return item.property("selected").isValid(); });
    EXPECT_LT(rows.size(), 40u);
    screen.named("Apps", QAccessible::List)->forceActiveFocus(Qt::TabFocusReason);
    screen.press(Qt::Key_End);
    EXPECT_EQ(screen.model.selectedPlace(), screen.model.rows()->count() - 1);
    EXPECT_TRUE(screen.shows("When"));
}

TEST(AppsView, standsLargeTextAndWritingFromRightToLeft) {
    AppsScreen screen;
    appearance(screen.engine()).setDesktop({.isDark = true, .isHighContrast = true, .textScale = 2});
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    screen.click("Browser");
    EXPECT_TRUE(screen.shows("Websites in Browser"));
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

} // namespace
} // namespace kestrio
