#include "Kestrio/Views/Window/WebsitesModel.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

struct WebsitesScreen : PageScreen<WebsitesModel> {
    explicit WebsitesScreen(std::vector<ActivitySession> history = exampleWorkday(), RangeMode mode = RangeMode::day)
        : PageScreen("Websites", std::move(history), mode) {}
};

TEST(WebsitesView, withoutAnythingSaysSo) {
    WebsitesScreen screen{noHistory};
    EXPECT_TRUE(screen.shows("No websites yet"));
    EXPECT_FALSE(screen.shows("Select a website"));
}

TEST(WebsitesView, itsListIsFilteredBySitesAndTheirPages) {
    WebsitesScreen screen;
    EXPECT_TRUE(screen.shows("Select a website"));
    screen.enter("Filter");
    screen.type("beta");
    EXPECT_EQ(screen.model.rows()->count(), 1);
    EXPECT_TRUE(screen.shows("b.org"));
    screen.type("x");
    EXPECT_TRUE(screen.shows("No matches."));
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.shows("a.org"));
}

TEST(WebsitesView, aSelectionOutlivesTheFilterOfTheList) {
    WebsitesScreen screen;
    screen.click("a.org");
    EXPECT_EQ(screen.model.selectedPlace(), 1);
    screen.model.setListFilter("beta");
    screen.settle();
    EXPECT_EQ(screen.model.selectedPlace(), -1) << "it has no place in the list";
    EXPECT_TRUE(screen.shows("Alpha again")) << "but what it tells stays";
}

TEST(WebsitesView, tellsOfTheSite) {
    WebsitesScreen screen;
    screen.click("a.org");
    for (const auto* const text :
         {"Pages", "Alpha", "Played alongside", "Film", "When", "2 visits  ·  2 pages  ·  Browser"})
        EXPECT_TRUE(screen.shows(text)) << text;
    screen.click("b.org");
    EXPECT_FALSE(screen.shows("Film"));
    EXPECT_FALSE(screen.shows("Played alongside"));
}

TEST(WebsitesView, changesTheCategoryOfTheSite) {
    WebsitesScreen screen;
    screen.click("b.org");
    screen.model.setCategory("work");
    screen.settle();
    EXPECT_EQ(screen.settings.get<SettingDictionary>("domainCategoryOverrides"),
              (SettingDictionary{{"b.org", "work"}}));
    EXPECT_TRUE(screen.shows("Work & Docs"));
    screen.model.setCategory("");
    EXPECT_EQ(screen.settings.get<SettingDictionary>("domainCategoryOverrides").value_or(SettingDictionary()),
              SettingDictionary());
}

TEST(WebsitesView, theCategoryMenuLeadsThereAndBack) {
    WebsitesScreen screen;
    screen.click("b.org");
    EXPECT_EQ(screen.withText("Reset to Default"), nullptr);
    screen.click("Other");
    screen.click("Social Media");
    screen.settle();
    EXPECT_EQ(screen.settings.get<SettingDictionary>("domainCategoryOverrides"),
              (SettingDictionary{{"b.org", "social"}}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !screen.shows("Entertainment"); })) << "the menu closes";
    screen.click("Social Media"); // which the fresh report shows
    screen.click("Reset to Default");
    screen.settle();
    EXPECT_EQ(screen.settings.get<SettingDictionary>("domainCategoryOverrides").value_or(SettingDictionary()),
              SettingDictionary());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !screen.shows("Entertainment"); })) << "the menu closes";
    screen.click("Other");
    EXPECT_TRUE(screen.shows("Entertainment"));
    EXPECT_FALSE(screen.shows("Reset to Default"));
}

TEST(WebsitesView, aChoiceMadeElsewhereShowsToo) {
    WebsitesScreen screen;
    screen.click("b.org");
    screen.settings.set("domainCategoryOverrides", SettingDictionary{{"b.org", "learning"}});
    screen.settle();
    EXPECT_TRUE(screen.shows("Learning & AI"));
    EXPECT_EQ(screen.model.selection(), "b.org");
}

TEST(WebsitesView, thousandsOfSitesMakeNoMoreRowsThanShow) {
    ReportBench bench;
    for (int i = 0; i < 5000; ++i)
        bench.add(8 * hour + i * 6, 5,
                  {.app = "Browser", .title = "Page", .url = "https://site" + std::to_string(i) + ".example.org/"});
    WebsitesScreen screen(bench.sessions);
    EXPECT_EQ(screen.model.rows()->count(), 5000);
    EXPECT_LT(screen.items([](QQuickItem& item) { return item.property("selected").isValid(); }).size(), 40u);
    screen.enter("Filter");
    screen.type("site4999");
    EXPECT_EQ(screen.model.rows()->count(), 1);
}

} // namespace
} // namespace kestrio
