// Addresses that were recorded are opened by a person's click and by nothing else, and only pages of the web.
#include "Kestrio/Views/Design/WebLinks.h"
#include "Kestrio/Views/Window/AppsModel.h"
#include "Kestrio/Views/Window/WebsitesModel.h"
#include "Kestrio/Views/Window/YouTubeModel.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

template <class Model>
struct LinkScreen : PageScreen<Model> {
    LinkScreen(const char* page, std::vector<ActivitySession> history) : PageScreen<Model>(page, std::move(history)) {
        webLinks(this->engine()).setOpener([this](const QString& address) { opened << address; });
    }

    std::vector<QQuickItem*> buttons() {
        return this->items([](QQuickItem& item) { return item.property("link").isValid(); });
    }

    QStringList opened;
};

TEST(Links, areOpenedByAClickAlone) {
    LinkScreen<AppsModel> screen("Apps", exampleWorkday());
    screen.click("Browser");
    screen.relive(exampleWorkday());
    EXPECT_EQ(screen.opened, QStringList());
    ASSERT_EQ(screen.buttons().size(), 4u) << "three pages and a film";
    screen.click(screen.buttons().front());
    EXPECT_EQ(screen.opened, QStringList{"https://b.org/"});
    screen.relive(exampleWorkday());
    EXPECT_EQ(screen.opened.size(), 1);
}

TEST(Links, areOpenedWithTheKeyboardToo) {
    LinkScreen<WebsitesModel> screen("Websites", exampleWorkday());
    screen.click("b.org");
    ASSERT_EQ(screen.buttons().size(), 1u);
    screen.buttons().front()->forceActiveFocus(Qt::TabFocusReason);
    screen.press(Qt::Key_Space);
    EXPECT_EQ(screen.opened, QStringList{"https://b.org/"});
}

TEST(Links, thatLeadElsewhereThanToTheWebHaveNoButton) {
    ReportBench bench;
    double start = 9 * hour;
    for (const auto* const url : {"file:///etc/passwd", "javascript:alert(1)", "data:text/html,x", "chrome://settings",
                                  "about:blank", "mailto:somebody@example.org", "https:", "not an address", ""})
        bench.add(start += 60, 50, {.app = "Browser", .title = url, .url = url});
    LinkScreen<AppsModel> screen("Apps", bench.sessions);
    screen.click("Browser");
    EXPECT_TRUE(screen.shows("file:///etc/passwd"));
    EXPECT_EQ(screen.buttons().size(), 0u);
}

TEST(Links, ofVideosLeadToTheVideo) {
    ReportBench bench;
    bench.add(9 * hour, 600,
              {.app = "Browser", .title = "Film", .url = "https://www.youtube.com/watch?v=abcdefghijk&t=90s"});
    LinkScreen<YouTubeModel> screen("YouTube", bench.sessions);
    ASSERT_EQ(screen.buttons().size(), 1u);
    screen.click(screen.buttons().front());
    EXPECT_EQ(screen.opened, QStringList{"https://www.youtube.com/watch?v=abcdefghijk"});
}

} // namespace
} // namespace kestrio
