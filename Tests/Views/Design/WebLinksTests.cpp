#include "Kestrio/Views/Design/WebLinks.h"
#include "Tests/Views/Design/Stage.h"

namespace kestrio {
namespace {

TEST(WebLinks, opensPagesOfTheWebAlone) {
    const struct {
        const char* address;
        bool isOpened;
    } rows[] = {{"https://example.org/a?b#c", true},
                {"http://example.org", true},
                {"https://münchen.example/", true},
                {"", false},
                {"example.org", false},
                {"file:///usr/share/applications/x.desktop", false},
                {"javascript:alert(1)", false},
                {"data:text/html,x", false},
                {"about:blank", false},
                {"https://", false},
                {"mailto:a@example.org", false}};
    for (const auto& row : rows) {
        WebLinks links(nullptr);
        QString opened;
        links.setOpener([&](const QString& address) { opened = address; });
        EXPECT_EQ(links.canOpen(row.address), row.isOpened) << row.address;
        links.open(row.address);
        EXPECT_EQ(opened, row.isOpened ? QString(row.address) : QString()) << row.address;
    }
}

TEST(OpenLinkButton, opensItsAddress) {
    Stage stage;
    QString opened;
    webLinks(stage.engine()).setOpener([&](const QString& address) { opened = address; });
    auto* const button = stage.show("OpenLinkButton { link: 'https://example.org/page' }");
    EXPECT_EQ(button->property("symbol").toString(), "arrow.up.right.square");
    stage.click(button);
    EXPECT_EQ(opened, "https://example.org/page");
}

TEST(OpenLinkButton, isNotThereForWhatIsNotOpened) {
    for (const auto* link : {"", "file:///etc/passwd"}) {
        Stage stage;
        auto* const button = stage.show(QString("OpenLinkButton { link: '%1' }").arg(link));
        EXPECT_FALSE(button->isVisible()) << link;
    }
}

} // namespace
} // namespace kestrio
